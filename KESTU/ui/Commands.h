// SPDX-License-Identifier: GPL-3.0-or-later
//
// The commands that stand in more than one place: in the window's menu, in the status item's menu and in the
// panel. Owned by the shell.
#pragma once

#include <QAction>
#include <QActionGroup>
#include <QObject>

class QMenu;

namespace kestu {

class AppModel;
enum class HelpPage;

class Commands final : public QObject {
    Q_OBJECT

public:
    explicit Commands(AppModel& model);

    /// Pausing, for a desktop without a tray has no other place for it; how the screens look; and the
    /// commands of the application menu.
    void fillWindowMenu(QMenu& menu);

    /// Those commands, led by the panel's three controls: some desktops offer nothing but this menu.
    void fillStatusMenu(QMenu& menu);

    [[nodiscard]] QAction& help() { return m_help; }
    [[nodiscard]] QAction& quitAction() { return m_quit; }

    /// A newer version was found; it is named in the menus from then on.
    void offerVersion(const QString& version);

    void open();

Q_SIGNALS:
    void openRequested();
    void quitRequested();
    void updateCheckRequested();

private:
    void addThemeChoices();
    void refreshThemeChoice();
    void refreshTracking();
    void showPage(HelpPage page);
    void fillCommon(QMenu& menu);

    AppModel& m_model;
    QAction m_toggleTracking;
    QActionGroup m_themeChoices;
    QAction m_open;
    QAction m_newVersion;
    QAction m_checkForUpdates;
    QAction m_help;
    QAction m_support;
    QAction m_terms;
    QAction m_quit;
};

/// What the button that pauses and resumes says.
[[nodiscard]] QString trackingCommandText(bool isTracking);

} // namespace kestu
