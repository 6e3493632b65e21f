// SPDX-License-Identifier: GPL-3.0-or-later
//
// A project or tag with its rules. Its height is known before it has any contents, so that a long list lays
// itself out at once and makes them when they come into view. It belongs to the list of its kind.
#pragma once

#include "ui/projects/Category.h"

#include <QPointer>
#include <QWidget>

class QVBoxLayout;

namespace kestu {

class AddRuleRow;
class Alert;
class AppModel;
class CategoryHeader;
class RuleRow;

class CategoryCard final : public QWidget {
    Q_OBJECT

public:
    CategoryCard(AppModel& model, const Category& category);

    [[nodiscard]] RowId id() const { return m_category.id; }
    void setRecord(const Category& category);
    /// Those of this category, in order.
    void setRules(std::vector<Rule> rules);

    [[nodiscard]] bool isFilled() const { return m_header != nullptr; }
    void fill();

    /// Puts what Tab reaches in the card behind `previous`; returns the last of it, or `previous` while there
    /// is nothing.
    QWidget* chainAfter(QWidget* previous);
    [[nodiscard]] QWidget* lastStopAfter(QWidget* previous) const;

protected:
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool syncRules();
    void chainRules();
    void confirmDelete();

    AppModel& m_model;
    Category m_category;
    std::vector<Rule> m_rules;
    CategoryHeader* m_header = nullptr;
    QVBoxLayout* m_ruleColumn = nullptr;
    std::vector<RuleRow*> m_rows;
    AddRuleRow* m_addRule = nullptr;
    QPointer<Alert> m_confirmation;
};

} // namespace kestu
