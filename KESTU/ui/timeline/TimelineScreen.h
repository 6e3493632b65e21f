// SPDX-License-Identifier: GPL-3.0-or-later
//
// One day: its header, its note, what it went to and its hours at the left, what can be done with it at the
// right. It belongs to its parent widget.
#pragma once

#include <QWidget>

#include <functional>

class QScrollArea;

namespace kestu {

class AppModel;
class DayHeader;
class EmptyState;
class HourRows;
class ProjectSummary;

class TimelineScreen final : public QWidget {
    Q_OBJECT

public:
    explicit TimelineScreen(AppModel& model);

private:
    [[nodiscard]] QScrollArea* makeColumn();
    void addShortcuts();
    void addShortcut(const QKeySequence& keys, const std::function<void()>& action);
    void refreshContent();
    void refreshDay();

    AppModel& m_model;
    DayHeader* m_header;
    EmptyState* m_empty;
    ProjectSummary* m_summary;
    HourRows* m_hours;
    QScrollArea* m_column;
};

} // namespace kestu
