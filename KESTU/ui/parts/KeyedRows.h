// SPDX-License-Identifier: GPL-3.0-or-later
//
// Rows that follow a list: one that the list still has stays the same widget, with its focus and the pointer
// on it, wherever it moves to. The list's widget owns this; the rows belong to the layout's widget.
#pragma once

#include <QHash>
#include <QLayout>
#include <QStringList>
#include <QWidget>

#include <utility>
#include <vector>

namespace kestu {

template<typename Row>
class KeyedRows final {
public:
    /// `layout` holds nothing but the rows.
    explicit KeyedRows(QLayout& layout)
        : m_layout(layout) {}

    [[nodiscard]] const std::vector<Row*>& rows() const { return m_rows; }
    [[nodiscard]] QLayout& layout() const { return m_layout; }

    /// One row for each key, in this order; `make(index)` makes those that are missing. False when all stay
    /// as they are.
    template<typename Make>
    bool arrange(const QStringList& keys, const Make& make) {
        if (keys == m_keys) {
            return false;
        }
        const QStringList keysBefore = std::exchange(m_keys, keys);
        std::vector<Row*> before = std::exchange(m_rows, {});
        QHash<QString, std::size_t> places;
        for (std::size_t place = before.size(); place-- > 0;) {
            m_layout.removeWidget(before[place]);
            places.insert(keysBefore[static_cast<qsizetype>(place)], place);
        }
        for (qsizetype index = 0; index < keys.size(); ++index) {
            const auto place = places.constFind(keys[index]);
            Row* known = place == places.cend() ? nullptr : std::exchange(before[*place], nullptr);
            m_rows.push_back(known ? known : make(static_cast<std::size_t>(index)));
            m_layout.addWidget(m_rows.back());
        }
        for (Row* row : before) {
            drop(row);
        }
        return true;
    }

private:
    static void drop(Row* row) {
        if (row) {
            row->hide();
            row->deleteLater(); // a click on it may be what changed the list
        }
    }

    QLayout& m_layout;
    QStringList m_keys;
    std::vector<Row*> m_rows;
};

} // namespace kestu
