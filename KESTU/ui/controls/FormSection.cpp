// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/FormSection.h"

#include "ui/controls/TextLabel.h"

#include <QPainter>
#include <QVBoxLayout>

namespace kestu {
namespace {

constexpr int partGap = 6;
constexpr int rowPadding = 14;
constexpr int rowHeight = 44;
constexpr int labelWidth = 92;
constexpr int cardEdge = 1;

/// Paints the hairline above itself, so that rows may come and go without a look at their neighbours.
class FormRow final : public QWidget {
public:
    FormRow() { setMinimumHeight(rowHeight); }

protected:
    void paintEvent(QPaintEvent*) override {
        if (y() > cardEdge) {
            const QRect line(rowPadding, 0, width() - rowPadding, 1);
            QPainter(this).fillRect(line, colorsOf(palette()).divider);
        }
    }
};

} // namespace

FormSection::FormSection(const QString& title, Card::Kind card, QWidget* parent)
    : QWidget(parent)
    , m_column(new QVBoxLayout(this)) {
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(partGap);
    if (!title.isEmpty()) {
        auto* heading = new TextLabel(title, TextStyle::callout);
        heading->setFont(semibold(heading->font()));
        heading->setContentsMargins(2, 0, 2, 0);
        m_column->addWidget(heading);
    }
    auto* rows = new Card(card);
    m_rows = new QVBoxLayout(rows);
    m_rows->setContentsMargins(cardEdge, cardEdge, cardEdge, cardEdge);
    m_rows->setSpacing(0);
    m_column->addWidget(rows);
}

void FormSection::setFooter(const QString& text) {
    auto* footer = new TextLabel(text, TextStyle::caption, ink::secondary, Overflow::wrap);
    footer->setContentsMargins(2, 0, 2, 0);
    m_column->addWidget(footer);
}

void FormSection::addRow(const QString& label, QWidget* control) {
    const bool speaksForItself = qobject_cast<QLabel*>(control) || !control->accessibleName().isEmpty();
    if (!speaksForItself) {
        control->setAccessibleName(label);
    }
    auto* name = new TextLabel(label, TextStyle::callout);
    name->setMinimumWidth(labelWidth);
    name->setBuddy(control); // a picker reports its choice as its name, and is known by its label
    QBoxLayout* row = startRow(m_rows->count());
    row->addWidget(name);
    row->addWidget(control, 1, Qt::AlignRight | Qt::AlignVCenter);
}

QWidget* FormSection::addRow(QWidget* content) {
    return insertRow(m_rows->count(), content);
}

QWidget* FormSection::insertRow(int index, QWidget* content) {
    QBoxLayout* row = startRow(index);
    row->addWidget(content, 1);
    return row->parentWidget();
}

void FormSection::removeRow(QWidget* row) {
    m_rows->removeWidget(row);
    row->hide();
    row->deleteLater();
}

QBoxLayout* FormSection::startRow(int index) {
    auto* whole = new FormRow;
    auto* row = new QHBoxLayout(whole);
    row->setContentsMargins(rowPadding, 8, rowPadding, 8);
    row->setSpacing(12);
    m_rows->insertWidget(index, whole);
    return row;
}

} // namespace kestu
