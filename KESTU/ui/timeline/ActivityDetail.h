// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the selected activity is, and what can be changed about it alone: its project, its tags, that it
// exists. It belongs to the side panel, which gives it the activity's pieces; it grows in place while that is
// recorded.
#pragma once

#include "classify/Resolution.h"
#include "ui/controls/TagChip.h"
#include "ui/parts/KeyedRows.h"

#include <optional>
#include <vector>

class QLayout;
class QPushButton;

namespace kestu {

class AppModel;
class CategoryPicker;
class TextLabel;

/// How far the detail reaches beyond the texts of the panel: borderless buttons are wider than what they say.
inline constexpr QMargins sideRoom{6, 0, 4, 0};

class ActivityDetail final : public QWidget {
    Q_OBJECT

public:
    explicit ActivityDetail(AppModel& model, QWidget* parent = nullptr);

    /// At least one: what the day shows of one activity.
    void setPieces(const std::vector<ResolvedActivity>& pieces);

Q_SIGNALS:
    void rearranged();

private:
    [[nodiscard]] QLayout* makeHeader();
    [[nodiscard]] QLayout* makeTexts();
    [[nodiscard]] QLayout* makeProject();
    [[nodiscard]] QLayout* makeTagTexts();
    [[nodiscard]] QLayout* makeButtons();
    void showTexts();
    void showProject();
    void showTags();
    [[nodiscard]] bool isGivenByRuleAlone(TagId id) const;
    [[nodiscard]] TagChip::Look lookOf(TagId id) const;
    [[nodiscard]] TagChip* makeChip(TagId id);
    void chooseProject();
    void toggleTag(TagId id);

    AppModel& m_model;
    std::vector<ResolvedActivity> m_pieces;
    std::optional<ResolvedActivity> m_item; // the first piece
    TextLabel* m_heading;
    TextLabel* m_name;
    TextLabel* m_title;
    TextLabel* m_address;
    TextLabel* m_time;
    CategoryPicker* m_project;
    QWidget* m_tags;
    KeyedRows<TagChip> m_chips;
    QPushButton* m_edit;
};

} // namespace kestu
