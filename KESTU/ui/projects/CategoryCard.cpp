// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/projects/CategoryCard.h"

#include "app/AppModel.h"
#include "ui/controls/Alert.h"
#include "ui/controls/Painted.h"
#include "ui/controls/Roles.h"
#include "ui/projects/AddRuleRow.h"
#include "ui/projects/CategoryHeader.h"
#include "ui/projects/RowSync.h"
#include "ui/projects/RuleRow.h"

#include <QHideEvent>
#include <QPainter>

namespace kestu {
namespace {

constexpr int padding = 15; // the hairline included
constexpr int gap = 10;
constexpr int ruleGap = 6;

int heightWith(int rules) {
    const int list = rules > 0 ? rules * (metrics::controlHeight + ruleGap) - ruleGap + gap : 0;
    return 2 * padding + 2 * metrics::controlHeight + gap + list;
}

QString lossOf(CategoryKind kind) {
    return kind == CategoryKind::project
               ? QStringLiteral("ルールも一緒に消えます。記録そのものは残り、未分類に戻ります。")
               : QStringLiteral("ルールも一緒に消えます。記録そのものは残り、このタグが外れます。");
}

} // namespace

CategoryCard::CategoryCard(AppModel& model, const Category& category)
    : m_model(model)
    , m_category(category) {
    reportRole(this, QAccessible::Grouping);
    setAccessibleName(category.name);
    setFixedHeight(heightWith(0));
}

void CategoryCard::setRecord(const Category& category) {
    if (m_category == category) {
        return;
    }
    m_category = category;
    setAccessibleName(category.name);
    if (m_header) {
        m_header->setRecord(category);
    }
}

void CategoryCard::setRules(std::vector<Rule> rules) {
    if (m_rules == rules) {
        return;
    }
    m_rules = std::move(rules);
    setFixedHeight(heightWith(static_cast<int>(m_rules.size())));
    if (isFilled() && syncRules()) {
        chainRules();
    }
}

void CategoryCard::fill() {
    m_header = new CategoryHeader(m_model, m_category);
    m_addRule = new AddRuleRow(m_model, {.kind = m_category.kind, .id = m_category.id});
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(gap);
    column->addWidget(m_header);
    m_ruleColumn = new QVBoxLayout;
    m_ruleColumn->setSpacing(ruleGap);
    column->addLayout(m_ruleColumn);
    column->addWidget(m_addRule);
    connect(m_header, &CategoryHeader::deleteAsked, this, &CategoryCard::confirmDelete);
    syncRules();
}

/// Whether a rule came, went or moved.
bool CategoryCard::syncRules() {
    return syncRows(*m_ruleColumn, m_rows, m_rules,
                    [this](const Rule& rule) { return new RuleRow(m_model, rule); });
}

QWidget* CategoryCard::chainAfter(QWidget* previous) {
    if (isFilled()) {
        chainStops(previous, *m_header);
        chainRules();
    }
    return lastStopAfter(previous);
}

QWidget* CategoryCard::lastStopAfter(QWidget* previous) const {
    return isFilled() ? stopsIn(*m_addRule).back() : previous;
}

void CategoryCard::chainRules() {
    QWidget* last = stopsIn(*m_header).back();
    for (const RuleRow* row : m_rows) {
        last = chainStops(last, *row);
    }
    chainStops(last, *m_addRule);
}

void CategoryCard::confirmDelete() {
    const QString title = QStringLiteral("「%1」を削除しますか？").arg(m_category.name);
    m_confirmation = Alert::confirm(window(), title, lossOf(m_category.kind), QStringLiteral("キャンセル"),
                                    QStringLiteral("削除"));
    connect(m_confirmation, &Alert::agreed, this,
            [this] { m_model.deleteCategory(m_category.kind, m_category.id); });
}

/// The question goes with the card, when another process has deleted the category meanwhile.
void CategoryCard::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (m_confirmation && !event->spontaneous()) {
        m_confirmation->close();
    }
}

void CategoryCard::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsOf(palette());
    QPainter painter(this);
    paintRounded(painter, rect(), metrics::radiusCard, colors.card, {.color = colors.cardBorder, .width = 1});
}

} // namespace kestu
