// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/FormSection.h"

#include "ui/controls/Surfaces.h"
#include "ui/controls/TextLabel.h"

#include <QVBoxLayout>

namespace kestu {
namespace {

constexpr int titleGap = 6;
constexpr int rowPadding = 14;
constexpr int rowHeight = 44;
constexpr int labelWidth = 92;

} // namespace

FormSection::FormSection(const QString& title, QWidget* parent)
    : QWidget(parent) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(titleGap);
    if (!title.isEmpty()) {
        auto* heading = new TextLabel(title, TextStyle::callout);
        heading->setFont(semibold(heading->font()));
        heading->setContentsMargins(2, 0, 2, 0);
        column->addWidget(heading);
    }
    auto* card = new Card(Card::Kind::onSheet);
    m_rows = new QVBoxLayout(card);
    m_rows->setContentsMargins(0, 0, 0, 0);
    m_rows->setSpacing(0);
    column->addWidget(card);
}

void FormSection::addRow(const QString& label, QWidget* control) {
    const bool speaksForItself = qobject_cast<QLabel*>(control) || !control->accessibleName().isEmpty();
    if (!speaksForItself) {
        control->setAccessibleName(label);
    }
    auto* name = new TextLabel(label, TextStyle::callout);
    name->setMinimumWidth(labelWidth);
    name->setBuddy(control); // a picker reports its choice as its name, and is known by its label
    QBoxLayout* row = startRow();
    row->addWidget(name);
    row->addWidget(control, 1, Qt::AlignRight | Qt::AlignVCenter);
}

QWidget* FormSection::addRow(QWidget* content) {
    QBoxLayout* row = startRow();
    row->addWidget(content, 1);
    return row->parentWidget()->parentWidget();
}

QBoxLayout* FormSection::startRow() {
    auto* whole = new QWidget;
    auto* column = new QVBoxLayout(whole);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    if (m_rows->count() > 0) {
        auto* line = new QHBoxLayout;
        line->setContentsMargins(rowPadding, 0, 0, 0);
        line->addWidget(new Divider);
        column->addLayout(line);
    }
    auto* body = new QWidget;
    body->setMinimumHeight(rowHeight);
    auto* row = new QHBoxLayout(body);
    row->setContentsMargins(rowPadding, 8, rowPadding, 8);
    row->setSpacing(12);
    column->addWidget(body);
    m_rows->addWidget(whole);
    return row;
}

} // namespace kestu
