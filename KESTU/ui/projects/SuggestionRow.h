// SPDX-License-Identifier: GPL-3.0-or-later
//
// A rule that the assistant proposes, with its reason, and the choice between taking and rejecting it. It
// belongs to the section of suggestions.
#pragma once

#include "storage/Records.h"

#include <QWidget>

#include <optional>

class QHBoxLayout;
class QAbstractButton;
class QPushButton;

namespace kestu {

class AppModel;
class IconView;
class TextLabel;

class SuggestionRow final : public QWidget {
    Q_OBJECT

public:
    SuggestionRow(AppModel& model, const RuleSuggestion& suggestion);

    [[nodiscard]] SuggestionId id() const { return m_suggestion.id; }
    [[nodiscard]] QAbstractButton& acceptButton() const;
    void setRecord(const RuleSuggestion& suggestion);
    /// Whether accepting it makes a new project or tag.
    void setNew(bool isNew);
    /// The seconds that it would classify, when they are known.
    void setImpact(std::optional<double> seconds);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QHBoxLayout* makeSentence();
    [[nodiscard]] QHBoxLayout* makeButtons();
    void refresh();

    AppModel& m_model;
    RuleSuggestion m_suggestion;
    TextLabel* m_field;
    TextLabel* m_value;
    TextLabel* m_op;
    IconView* m_kind;
    TextLabel* m_target;
    TextLabel* m_new;
    TextLabel* m_reason;
    TextLabel* m_impact;
    QPushButton* m_dismiss;
    QPushButton* m_accept;
};

} // namespace kestu
