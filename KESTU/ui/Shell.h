// SPDX-License-Identifier: GPL-3.0-or-later
//
// What surrounds the screens: the main window and the panel while they are open, the status item, and the
// rule that something of them can always be reached. Owned by main.
#pragma once

#include "ui/Commands.h"
#include "ui/StatusItem.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>

namespace kestu {

class AppModel;
class MainWindow;
class MenuBarView;
struct UpdateAnswer;

class Shell final : public QObject {
public:
    /// `model` outlives this; `isTrayThere` says whether the desktop has a tray at this moment.
    Shell(AppModel& model, std::function<bool()> isTrayThere);
    ~Shell() override;

    /// Opens the main window, or brings it to the front: where the desktop lets only those come there whom
    /// the user has called, by the token that says so.
    void showWindow(const QByteArray& activationToken = {});

    /// Asks once, quietly, whether there is a newer version.
    void checkForUpdatesQuietly();

    [[nodiscard]] MainWindow* window() const; // null while closed
    [[nodiscard]] MenuBarView* panel() const; // null while closed
    [[nodiscard]] StatusItem& statusItem() { return m_statusItem; }

private:
    void makeWindow();
    [[nodiscard]] bool closeOrMinimise();
    void quit();
    void togglePanel();
    void placePanel();
    void correctPanel();
    void checkForUpdates();
    void showAnswer(const UpdateAnswer& answer);
    void stayReachable();
    [[nodiscard]] bool lookForTray();

    AppModel& m_model;
    std::function<bool()> m_isTrayThere;
    Commands m_commands;
    StatusItem m_statusItem;
    QPointer<MainWindow> m_window;
    QPointer<MenuBarView> m_panel;
    QRect m_panelAnchor; // what the panel stands beside
    QPoint m_panelPlace; // where it was put
    bool m_isPanelCorrected = false;
    QElapsedTimer m_sincePanelClosed;
    QTimer m_trayWatch;
};

} // namespace kestu
