// SPDX-License-Identifier: GPL-3.0-or-later
//
// A titled card of rows, as forms are made of: a label at the left, its control at the right, hairlines
// between; below the card may stand a note. It belongs to its parent widget.
#pragma once

#include "ui/controls/Surfaces.h"

class QBoxLayout;
class QVBoxLayout;

namespace kestu {

class FormSection final : public QWidget {
    Q_OBJECT

public:
    /// No heading without a title.
    explicit FormSection(const QString& title, Card::Kind card = Card::Kind::onSheet,
                         QWidget* parent = nullptr);

    /// A row of a label and its control, which takes the label as its accessible name if it has none.
    void addRow(const QString& label, QWidget* control);

    /// A row of its own. Returns what hides and shows it with its hairline.
    QWidget* addRow(QWidget* content);
    QWidget* insertRow(int index, QWidget* content);
    /// Takes away what addRow or insertRow returned. It lives on until what goes on in it has ended.
    void removeRow(QWidget* row);

    void setFooter(const QString& text);

private:
    QBoxLayout* startRow(int index);

    QVBoxLayout* m_column;
    QVBoxLayout* m_rows;
};

} // namespace kestu
