// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/projects/CategoryList.h"

#include "app/AppModel.h"
#include "ui/controls/Surfaces.h"
#include "ui/parts/Texts.h"
#include "ui/projects/CategoryCard.h"
#include "ui/projects/RowSync.h"

#include <QScreen>

namespace kestu {
namespace {

constexpr int cardGap = 20;

QWidget* makeEmptyState(CategoryKind kind) {
    return new EmptyState(
        kind == CategoryKind::project ? QStringLiteral("folder.badge.plus") : QStringLiteral("tag"),
        labelOf(kind) + QStringLiteral("がありません"),
        QStringLiteral("上で追加するか、タイムラインの「未分類」から振り分けると作れます。"));
}

} // namespace

CategoryList::CategoryList(AppModel& model, CategoryKind kind, QWidget* before, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_kind(kind)
    , m_before(before)
    , m_empty(makeEmptyState(kind)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_empty);
    m_column = new QVBoxLayout;
    m_column->setSpacing(cardGap);
    layout->addLayout(m_column);
    m_fillTimer.setInterval(0);
    connect(&m_fillTimer, &QTimer::timeout, this, &CategoryList::fillNext);
    connect(&m_model, kind == CategoryKind::project ? &AppModel::projectsChanged : &AppModel::tagsChanged,
            this, &CategoryList::refreshCategories);
    connect(&m_model, &AppModel::rulesChanged, this, &CategoryList::refreshRules);
    refreshCategories();
}

void CategoryList::refreshCategories() {
    const auto make = [this](const Category& category) { return new CategoryCard(m_model, category); };
    if (syncRows(*m_column, m_cards, categoriesOf(m_model, m_kind), make)) {
        QWidget* last = m_before;
        for (CategoryCard* card : m_cards) {
            last = card->chainAfter(last);
        }
        refreshRules();
        fillBetween(0, screen()->size().height()); // before the layout tells what is in view
    }
    m_empty->setVisible(m_cards.empty());
}

void CategoryList::refreshRules() {
    QHash<RowId, std::vector<Rule>> ruled;
    for (const Rule& rule : m_model.rules()) {
        if (rule.target.kind == m_kind) {
            ruled[rule.target.id].push_back(rule);
        }
    }
    for (CategoryCard* card : m_cards) {
        card->setRules(ruled.take(card->id()));
    }
}

void CategoryList::fillBetween(int top, int bottom) {
    int y = 0;
    for (CategoryCard* card : m_cards) {
        if (y > bottom) {
            break;
        }
        const int end = y + card->minimumHeight();
        if (end >= top && !card->isFilled()) {
            fill(*card);
        }
        y = end + cardGap;
    }
    if (isVisible()) {
        m_fillTimer.start();
    }
}

void CategoryList::fill(CategoryCard& card) {
    card.fill();
    const CategoryCard* above = nullptr;
    for (const CategoryCard* other : m_cards) {
        if (other == &card) {
            break;
        }
        above = other->isFilled() ? other : above;
    }
    card.chainAfter(above ? above->lastStopAfter(m_before) : m_before);
}

void CategoryList::fillNext() {
    for (CategoryCard* card : m_cards) {
        if (!card->isFilled()) {
            fill(*card);
            return;
        }
    }
    m_fillTimer.stop();
}

void CategoryList::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    m_fillTimer.start();
}

void CategoryList::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    m_fillTimer.stop();
}

} // namespace kestu
