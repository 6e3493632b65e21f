// SPDX-License-Identifier: GPL-3.0-or-later
//
// The icon in the desktop's tray, once there is one. A click opens the panel, the other button the menu.
// Owned by the shell.
#pragma once

#include <QColor>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include <optional>

namespace kestu {

class AppModel;
class Commands;

class StatusItem final : public QObject {
    Q_OBJECT

public:
    StatusItem(AppModel& model, Commands& commands);

    /// Shows the icon. Not before there is a tray where Qt would take its first look at it for the last.
    void appear();

    /// Its place on the screen; empty where the desktop does not tell.
    [[nodiscard]] QRect geometry() const { return m_icon ? m_icon->geometry() : QRect(); }

    [[nodiscard]] QMenu& menu() { return m_menu; }

    /// The name of the icon that is shown.
    [[nodiscard]] QString iconName() const;

    /// Without one while the panel is open, which the desktop would cover with it; Xfce still names the
    /// program.
    void setToolTipShown(bool shown);

    [[nodiscard]] QString toolTip() const { return m_icon ? m_icon->toolTip() : QString(); }

    /// What the tray wants symbols drawn in; none where it does not tell.
    void setInk(const std::optional<QColor>& ink);

Q_SIGNALS:
    void clicked();

private:
    void refreshIcon();
    void refreshToolTip();

    AppModel& m_model;
    std::optional<QColor> m_ink;
    bool m_isToolTipShown = true;
    QMenu m_menu;
    std::optional<QSystemTrayIcon> m_icon;
};

} // namespace kestu
