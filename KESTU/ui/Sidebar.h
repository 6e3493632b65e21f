// SPDX-License-Identifier: GPL-3.0-or-later
//
// The left column of the main window: the screens to choose from, and at its foot whether KESTU records.
#pragma once

#include <QKeySequence>
#include <QWidget>

class QBoxLayout;
class QListWidget;

namespace kestu {

class AppModel;
class Commands;
class TrackingStatus;
enum class SidebarItem;

/// The keys that choose a screen.
[[nodiscard]] QKeySequence keysOf(SidebarItem item);

class Sidebar final : public QWidget {
public:
    Sidebar(AppModel& model, Commands& commands);

    [[nodiscard]] QWidget* screenList() const;

    /// Icons alone, with the names of the screens as tooltips.
    void setCompact(bool compact);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refreshScreen();
    void refreshBadge();
    void refreshHelp();

    AppModel& m_model;
    QListWidget* m_list;
    TrackingStatus* m_status;
    QWidget* m_menu;
    QBoxLayout* m_foot;
    bool m_isCompact = false;
};

} // namespace kestu
