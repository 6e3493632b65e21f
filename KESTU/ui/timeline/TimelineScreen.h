// SPDX-License-Identifier: GPL-3.0-or-later
//
// One day: its header, its note, what it went to and its hours at the left, what can be done with it at the
// right; where there is no room for both, that is a drawer over the day. It belongs to its parent widget.
#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>

class QHBoxLayout;
class QScrollArea;

namespace kestu {

class AppModel;
class DayHeader;
class EmptyState;
class HourRows;
class ProjectSummary;
class SidePanel;

class TimelineScreen final : public QWidget {
    Q_OBJECT

public:
    explicit TimelineScreen(AppModel& model);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] QScrollArea* makeColumn();
    void addShortcuts();
    void addShortcut(const QKeySequence& keys, const std::function<void()>& action);
    void arrange();
    void placePanel();
    void openPanel();
    void closePanel();
    void togglePanel();
    void refreshContent();
    void refreshDay();

    AppModel& m_model;
    DayHeader* m_header;
    EmptyState* m_empty;
    ProjectSummary* m_summary;
    HourRows* m_hours;
    QScrollArea* m_column;
    SidePanel* m_panel;
    QWidget* m_panelEdge;
    QHBoxLayout* m_columns;
    bool m_isDrawer = false;
    bool m_isOpen = false; // the drawer
    QPointer<QWidget> m_focusBefore;
};

} // namespace kestu
