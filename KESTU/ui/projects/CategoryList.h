// SPDX-License-Identifier: GPL-3.0-or-later
//
// The cards of all projects or of all tags, or that there are none. The cards in view are filled at once, the
// others one after the other while nothing else is to be done. It belongs to the screen of categories.
#pragma once

#include "storage/Records.h"

#include <QTimer>
#include <QWidget>

#include <vector>

class QVBoxLayout;

namespace kestu {

class AppModel;
class CategoryCard;

class CategoryList final : public QWidget {
    Q_OBJECT

public:
    /// Tab goes on from `before`, in the same window as `parent`, to the first card.
    CategoryList(AppModel& model, CategoryKind kind, QWidget* before, QWidget* parent);

    /// Fills the cards between two heights of this widget, so that nobody sees an empty one.
    void fillBetween(int top, int bottom);

protected:
    void hideEvent(QHideEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void refreshCategories();
    void refreshRules();
    void fill(CategoryCard& card);
    void fillNext();

    AppModel& m_model;
    CategoryKind m_kind;
    QWidget* m_before;
    QWidget* m_empty;
    QVBoxLayout* m_column;
    std::vector<CategoryCard*> m_cards;
    QTimer m_fillTimer;
};

} // namespace kestu
