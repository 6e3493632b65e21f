// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/projects/RuleRow.h"

#include "app/AppModel.h"
#include "ui/controls/Badge.h"
#include "ui/controls/IconButton.h"
#include "ui/parts/Texts.h"
#include "ui/projects/RulePickers.h"
#include "ui/theme/KestuStyle.h"

#include <QHBoxLayout>

namespace kestu {

RuleRow::RuleRow(AppModel& model, const Rule& rule)
    : m_model(model)
    , m_rule(rule)
    , m_field(new RuleFieldPicker)
    , m_value(new Badge(Badge::Kind::pill, {}))
    , m_op(new RuleOperatorPicker)
    , m_delete(new IconButton(QStringLiteral("minus.circle"), QStringLiteral("削除"))) {
    setFixedHeight(metrics::controlHeight);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 2, 0);
    row->setSpacing(8);
    row->addWidget(m_field);
    row->addWidget(new TextLabel(QStringLiteral("が"), TextStyle::callout, ink::secondary));
    row->addWidget(m_value);
    row->addWidget(m_op);
    row->addStretch(1);
    row->addWidget(m_delete);
    refresh();
    connect(m_field, &QComboBox::activated, this, &RuleRow::store);
    connect(m_op, &QComboBox::activated, this, &RuleRow::store);
    setOnce(m_delete);
    connect(m_delete, &QAbstractButton::clicked, this, [this] { m_model.deleteRule(m_rule.id); });
}

void RuleRow::setRecord(const Rule& rule) {
    if (m_rule != rule) {
        m_rule = rule;
        refresh();
    }
}

void RuleRow::refresh() {
    m_field->setField(m_rule.field);
    m_value->setText(m_rule.value);
    m_op->setOp(m_rule.op);
    m_delete->setAccessibleDescription(sentenceOf(m_rule.field, m_rule.op, m_rule.value));
}

void RuleRow::store() {
    Rule changed = m_rule;
    changed.field = m_field->field();
    changed.op = m_op->op();
    if (changed != m_rule) {
        m_model.updateRule(changed);
        refresh(); // what could not be stored is not shown
    }
}

} // namespace kestu
