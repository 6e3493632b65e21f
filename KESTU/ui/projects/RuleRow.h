// SPDX-License-Identifier: GPL-3.0-or-later
//
// One rule of a category as a sentence whose field and comparison can be changed. It belongs to the card of
// its category.
#pragma once

#include "storage/Records.h"

#include <QWidget>

namespace kestu {

class AppModel;
class Badge;
class IconButton;
class RuleFieldPicker;
class RuleOperatorPicker;

class RuleRow final : public QWidget {
    Q_OBJECT

public:
    RuleRow(AppModel& model, const Rule& rule);

    [[nodiscard]] RuleId id() const { return m_rule.id; }
    void setRecord(const Rule& rule);

private:
    void refresh();
    void store();

    AppModel& m_model;
    Rule m_rule;
    RuleFieldPicker* m_field;
    Badge* m_value;
    RuleOperatorPicker* m_op;
    IconButton* m_delete;
};

} // namespace kestu
