// SPDX-License-Identifier: GPL-3.0-or-later
//
// The screen of categories: what the assistant proposes, and the projects or tags with their rules. Every
// change is stored at once. It belongs to the main window; the model outlives it.
#pragma once

#include "storage/Records.h"

#include <QWidget>

#include <array>

class QScrollArea;
class QVBoxLayout;

namespace kestu {

class AddCategoryRow;
class AppModel;
class CategoryList;
class SegmentedPicker;
class SuggestionsSection;
class TextLabel;

class ProjectsScreen final : public QWidget {
    Q_OBJECT

public:
    explicit ProjectsScreen(AppModel& model);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    [[nodiscard]] QWidget* makeColumn();
    [[nodiscard]] CategoryList* list(CategoryKind kind);
    void showKind(CategoryKind kind);
    void fillInView();

    AppModel& m_model;
    CategoryKind m_kind = CategoryKind::project;
    QScrollArea* m_scroll;
    QVBoxLayout* m_column = nullptr;
    SuggestionsSection* m_suggestions;
    SegmentedPicker* m_picker;
    TextLabel* m_explanation;
    AddCategoryRow* m_add;
    std::array<CategoryList*, 2> m_lists{}; // by kind; made when first shown
};

} // namespace kestu
