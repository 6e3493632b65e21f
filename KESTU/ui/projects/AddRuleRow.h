// SPDX-License-Identifier: GPL-3.0-or-later
//
// The unfinished sentence at the foot of a category's card, which becomes its next rule. It belongs to the
// card.
#pragma once

#include "storage/Records.h"
#include "ui/controls/DraftHolder.h"

#include <QWidget>

class QLineEdit;
class QPushButton;

namespace kestu {

class AppModel;
class Composition;
class RuleFieldPicker;
class RuleOperatorPicker;

class AddRuleRow final : public QWidget, public DraftHolder {
    Q_OBJECT

public:
    AddRuleRow(AppModel& model, const RuleTarget& target);

    [[nodiscard]] bool holdsDraft() const override { return !typed().isEmpty(); }

private:
    [[nodiscard]] QString typed() const;
    void refresh();
    void add();

    AppModel& m_model;
    RuleTarget m_target;
    RuleFieldPicker* m_field;
    QLineEdit* m_value;
    Composition* m_composition;
    RuleOperatorPicker* m_op;
    QPushButton* m_add;
};

} // namespace kestu
