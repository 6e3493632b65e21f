// SPDX-License-Identifier: GPL-3.0-or-later
//
// The figures of a period that stand above everything else, in four cards of one row; of two rows where one
// is too narrow. Owned by the report.
#pragma once

#include <QWidget>

#include <array>

class QHBoxLayout;

namespace kestu {

class TextLabel;
struct ReportFigures;

class StatCards final : public QWidget {
public:
    explicit StatCards(QWidget* parent = nullptr);

    void display(const ReportFigures& figures);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    struct Value {
        TextLabel* figure = nullptr;
        TextLabel* note = nullptr;
    };

    std::array<Value, 4> m_values;
    std::array<QWidget*, 4> m_cards{};
    std::array<QHBoxLayout*, 2> m_rows{};
};

} // namespace kestu
