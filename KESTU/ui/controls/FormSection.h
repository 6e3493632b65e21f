// SPDX-License-Identifier: GPL-3.0-or-later
//
// A titled card of rows, as forms are made of: a label at the left, its control at the right, hairlines
// between.
#pragma once

#include <QWidget>

class QBoxLayout;
class QVBoxLayout;

namespace kestu {

class FormSection final : public QWidget {
    Q_OBJECT

public:
    /// No heading without a title.
    explicit FormSection(const QString& title, QWidget* parent = nullptr);

    /// A row of a label and its control, which takes the label as its accessible name if it has none.
    void addRow(const QString& label, QWidget* control);

    /// A row of its own. Returns what hides and shows it with its hairline.
    QWidget* addRow(QWidget* content);

private:
    QBoxLayout* startRow();

    QVBoxLayout* m_rows;
};

} // namespace kestu
