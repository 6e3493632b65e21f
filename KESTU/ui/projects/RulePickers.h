// SPDX-License-Identifier: GPL-3.0-or-later
//
// The two menus within the sentence of a rule: what it looks at, and how it compares. The mouse wheel passes
// through them, so that scrolling over a rule does not change it. They belong to their parent widgets.
#pragma once

#include "storage/Records.h"
#include "ui/controls/Picker.h"

namespace kestu {

class RulePicker : public Picker {
    Q_OBJECT

protected:
    RulePicker(const QString& name, int width);

    void wheelEvent(QWheelEvent* event) override;
};

class RuleFieldPicker final : public RulePicker {
    Q_OBJECT

public:
    RuleFieldPicker();

    [[nodiscard]] RuleField field() const;
    void setField(RuleField field);
};

class RuleOperatorPicker final : public RulePicker {
    Q_OBJECT

public:
    RuleOperatorPicker();

    [[nodiscard]] RuleOperator op() const;
    void setOp(RuleOperator op);
};

} // namespace kestu
