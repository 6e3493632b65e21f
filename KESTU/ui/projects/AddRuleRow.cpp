// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/projects/AddRuleRow.h"

#include "app/AppModel.h"
#include "base/Text.h"
#include "ui/controls/Composition.h"
#include "ui/controls/TextLabel.h"
#include "ui/projects/RulePickers.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

namespace kestu {

AddRuleRow::AddRuleRow(AppModel& model, const RuleTarget& target)
    : m_model(model)
    , m_target(target)
    , m_field(new RuleFieldPicker)
    , m_value(new QLineEdit)
    , m_composition(new Composition(m_value))
    , m_op(new RuleOperatorPicker)
    , m_add(new QPushButton(QStringLiteral("ルールを追加"))) {
    m_value->setPlaceholderText(QStringLiteral("値"));
    m_value->setAccessibleName(m_value->placeholderText());
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(m_field);
    row->addWidget(new TextLabel(QStringLiteral("が"), TextStyle::callout, ink::secondary));
    row->addWidget(m_value, 1);
    row->addWidget(m_op);
    row->addWidget(m_add);
    refresh();
    connect(m_value, &QLineEdit::textChanged, this, &AddRuleRow::refresh);
    connect(m_composition, &Composition::changed, this, &AddRuleRow::refresh);
    connect(m_value, &QLineEdit::returnPressed, this, &AddRuleRow::add);
    connect(m_add, &QPushButton::clicked, this, &AddRuleRow::add);
}

QString AddRuleRow::typed() const {
    return trimmedWhiteSpace(m_value->text() + m_composition->text());
}

void AddRuleRow::refresh() {
    m_add->setEnabled(!typed().isEmpty());
}

void AddRuleRow::add() {
    m_composition->finish();
    if (!m_add->isEnabled() || !m_model.addRule(m_target, m_field->field(), m_op->op(), m_value->text())) {
        return;
    }
    m_value->setFocus(); // for the next one; the button is about to be disabled
    m_value->clear();
}

} // namespace kestu
