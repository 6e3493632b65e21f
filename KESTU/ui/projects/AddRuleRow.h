// SPDX-License-Identifier: GPL-3.0-or-later
//
// The unfinished sentence at the foot of a category's card, which becomes its next rule. It belongs to the
// card.
#pragma once

#include "storage/Records.h"

#include <QWidget>

class QLineEdit;
class QPushButton;

namespace kestu {

class AppModel;
class RuleFieldPicker;
class RuleOperatorPicker;

class AddRuleRow final : public QWidget {
    Q_OBJECT

public:
    AddRuleRow(AppModel& model, const RuleTarget& target);

private:
    void refresh();
    void add();

    AppModel& m_model;
    RuleTarget m_target;
    RuleFieldPicker* m_field;
    QLineEdit* m_value;
    RuleOperatorPicker* m_op;
    QPushButton* m_add;
};

} // namespace kestu
