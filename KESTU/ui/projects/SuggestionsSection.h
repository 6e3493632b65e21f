// SPDX-License-Identifier: GPL-3.0-or-later
//
// The rules that the assistant proposes and that wait for approval, or how to get some. It belongs to the
// screen of categories.
#pragma once

#include <QWidget>

#include <optional>
#include <vector>

class QHBoxLayout;
class QPushButton;
class QVBoxLayout;

namespace kestu {

class AppModel;
class CountBadge;
class SuggestionRow;
class TextLabel;

class SuggestionsSection final : public QWidget {
    Q_OBJECT

public:
    explicit SuggestionsSection(AppModel& model);

    /// Forgets that something was copied.
    void reset();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QHBoxLayout* makeHeader();
    void copyRequest();
    void refresh();
    [[nodiscard]] std::optional<std::size_t> focusedAccept() const;
    void focusAccept(std::size_t place);
    void refreshTargets();
    void refreshImpacts();

    AppModel& m_model;
    CountBadge* m_count;
    QPushButton* m_copy;
    TextLabel* m_none;
    QVBoxLayout* m_column;
    std::vector<SuggestionRow*> m_rows;
};

} // namespace kestu
