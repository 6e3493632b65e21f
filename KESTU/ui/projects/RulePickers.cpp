// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/projects/RulePickers.h"

#include "ui/Texts.h"

#include <QWheelEvent>

namespace kestu {
namespace {

constexpr int fieldWidth = 118;
constexpr int operatorWidth = 104;

template<typename Choices, typename Choice>
int placeOf(const Choices& choices, Choice choice) {
    return static_cast<int>(std::find(choices.begin(), choices.end(), choice) - choices.begin());
}

} // namespace

RulePicker::RulePicker(const QString& name, int width) {
    setAccessibleName(name);
    setFixedWidth(width);
    setFocusPolicy(Qt::StrongFocus);
}

void RulePicker::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

RuleFieldPicker::RuleFieldPicker()
    : RulePicker(QStringLiteral("対象"), fieldWidth) {
    for (const RuleField field : allRuleFields) {
        addItem(labelOf(field));
    }
}

RuleField RuleFieldPicker::field() const {
    return allRuleFields.at(static_cast<std::size_t>(currentIndex()));
}

void RuleFieldPicker::setField(RuleField field) {
    setCurrentIndex(placeOf(allRuleFields, field));
}

RuleOperatorPicker::RuleOperatorPicker()
    : RulePicker(QStringLiteral("条件"), operatorWidth) {
    for (const RuleOperator op : allRuleOperators) {
        addItem(labelOf(op));
    }
}

RuleOperator RuleOperatorPicker::op() const {
    return allRuleOperators.at(static_cast<std::size_t>(currentIndex()));
}

void RuleOperatorPicker::setOp(RuleOperator op) {
    setCurrentIndex(placeOf(allRuleOperators, op));
}

} // namespace kestu
