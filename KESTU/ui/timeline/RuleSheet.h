// SPDX-License-Identifier: GPL-3.0-or-later
//
// Sorts one group of unassigned time: into a project or tag, also a new one, and if wanted with a rule for
// the same work in the future and the past. It edits values of its own, and only 保存 gives them to the
// model. Its host owns it; it follows the model's projects and tags while it is open.
#pragma once

#include "app/AppModel.h"
#include "ui/controls/Sheet.h"

#include <vector>

class QComboBox;
class QLineEdit;

namespace kestu {

class CategoryPicker;
class Composition;
class FormSection;
class SegmentedPicker;
class SwitchButton;
class TextLabel;

/// "Firefox · example.jp", or the application's name alone.
[[nodiscard]] QString groupLabel(const UnassignedGroup& group);

class RuleSheet final : public Sheet {
    Q_OBJECT

public:
    RuleSheet(QWidget* host, AppModel& model, UnassignedGroup group);

    [[nodiscard]] bool holdsDraft() const override;

private:
    [[nodiscard]] FormSection* makeGroup() const;
    [[nodiscard]] FormSection* makeTarget();
    [[nodiscard]] FormSection* makeRule();
    [[nodiscard]] QWidget* makeSwitch();
    [[nodiscard]] QWidget* makeValue();
    void addButtons();
    void chooseKind(CategoryKind kind);
    void chooseTarget();
    void chooseField(RuleField field);
    void resetCondition();
    void showTargets();
    void refresh();
    void save();
    [[nodiscard]] std::optional<RowId> firstTarget() const;
    [[nodiscard]] bool hasTarget(RowId id) const;
    [[nodiscard]] bool canSave() const;

    AppModel& m_model;
    const UnassignedGroup m_group;
    Classification m_choice;
    Classification m_opened;   // what it was at first
    QString m_nameOfOtherKind; // a half-typed tag is no project
    SegmentedPicker* m_kind;
    TextLabel* m_targetLabel;
    CategoryPicker* m_target;
    TextLabel* m_nameLabel;
    QLineEdit* m_name;
    Composition* m_nameComposition;
    QWidget* m_nameRow = nullptr;
    SwitchButton* m_makeRule;
    QComboBox* m_field;
    QLineEdit* m_value;
    Composition* m_valueComposition;
    QComboBox* m_op;
    std::vector<QWidget*> m_ruleRows;
    QPushButton* m_save = nullptr;
};

} // namespace kestu
