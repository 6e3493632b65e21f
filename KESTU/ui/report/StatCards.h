// SPDX-License-Identifier: GPL-3.0-or-later
//
// The figures of a period that stand above everything else, in four cards of one row. Owned by the report.
#pragma once

#include <QWidget>

#include <array>

namespace kestu {

class TextLabel;
struct ReportFigures;

class StatCards final : public QWidget {
public:
    explicit StatCards(QWidget* parent = nullptr);

    void display(const ReportFigures& figures);

private:
    struct Value {
        TextLabel* figure = nullptr;
        TextLabel* note = nullptr;
    };

    std::array<Value, 4> m_values;
};

} // namespace kestu
