// SPDX-License-Identifier: GPL-3.0-or-later
//
// The day's times without a record, each to be entered by hand. It belongs to the side panel and follows the
// model; a row stays the same while its gap does.
#pragma once

#include "ui/parts/KeyedRows.h"

#include <QWidget>

#include <optional>

namespace kestu {

class AppModel;
class GapRow;
class TextLabel;

class GapList final : public QWidget {
    Q_OBJECT

public:
    explicit GapList(AppModel& model, QWidget* parent = nullptr);

    [[nodiscard]] bool isEmpty() const { return m_rows.rows().empty(); }

Q_SIGNALS:
    void rearranged();

private:
    void refresh();
    void takeFocusBack();
    [[nodiscard]] GapRow* makeRow();

    AppModel& m_model;
    TextLabel* m_total;
    KeyedRows<GapRow> m_rows;
    std::optional<std::size_t> m_opened; // whose draft is in the sheet
};

} // namespace kestu
