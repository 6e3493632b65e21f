// SPDX-License-Identifier: GPL-3.0-or-later
//
// Keeps a column of widgets in step with a list of records: a record that stays keeps its widget, and with it
// the focus, half-typed text and open menus. The widgets belong to the layout's owner.
#pragma once

#include "storage/Records.h"

#include <QBoxLayout>
#include <QHash>
#include <QWidget>

#include <algorithm>
#include <vector>

namespace kestu {

/// A row has id() and setRecord(value). Its place in `layout` is that of its value. Returns whether a row
/// came or moved: one that only goes leaves the order of Tab as it was.
template<typename Row, typename Value, typename Make>
bool syncRows(QBoxLayout& layout, std::vector<Row*>& rows, const std::vector<Value>& values, Make make) {
    QHash<RowId, Row*> left;
    for (Row* row : rows) {
        left.insert(row->id(), row);
    }
    std::vector<Row*> next;
    next.reserve(values.size());
    for (const Value& value : values) {
        Row* row = left.take(value.id);
        if (row) {
            row->setRecord(value);
        } else {
            row = make(value);
        }
        next.push_back(row);
    }
    if (next == rows) {
        return false;
    }
    const auto goes = [&left](const Row* row) { return left.contains(row->id()); };
    rows.erase(std::remove_if(rows.begin(), rows.end(), goes), rows.end());
    const bool isRearranged = next != rows;
    rows = next;
    for (std::size_t index = 0; index < rows.size(); ++index) {
        const int place = static_cast<int>(index);
        if (layout.indexOf(rows[index]) != place) {
            layout.insertWidget(place, rows[index]);
        }
    }
    for (Row* gone : left) {
        layout.removeWidget(gone);
        gone->hide();
        gone->deleteLater(); // its own button may be what is being clicked
    }
    return isRearranged;
}

/// What Tab reaches within `box`, in the order in which it was made.
[[nodiscard]] inline std::vector<QWidget*> stopsIn(const QWidget& box) {
    std::vector<QWidget*> stops;
    for (QWidget* widget : box.findChildren<QWidget*>()) {
        if (widget->focusPolicy() & Qt::TabFocus && widget->window() == box.window()) {
            stops.push_back(widget); // not what is within an open menu
        }
    }
    return stops;
}

/// Puts the stops of `box` behind `previous`; returns the last one.
inline QWidget* chainStops(QWidget* previous, const QWidget& box) {
    for (QWidget* stop : stopsIn(box)) {
        QWidget::setTabOrder(previous, stop);
        previous = stop;
    }
    return previous;
}

} // namespace kestu
