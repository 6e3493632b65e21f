// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one ordinary window: the sidebar, the chosen screen, and over them the welcome sheet and the error
// alert. The shell makes it anew each time it is opened.
#pragma once

#include "app/SidebarItem.h"

#include <QPointer>
#include <QWidget>

#include <array>
#include <functional>

class QStackedWidget;

namespace kestu {

class Alert;
class AppModel;
class Commands;
class ManualEntrySheet;
class Sidebar;

class MainWindow final : public QWidget {
    Q_OBJECT

public:
    MainWindow(AppModel& model, Commands& commands);

    /// Called by the user's wish to close; true: the window may go, false: it stays.
    std::function<bool()> mayClose;

    /// Whether something in it is typed that is stored nowhere; a name that is still composed is stored.
    [[nodiscard]] bool holdsDraft();
    /// Calls `next` once the user has agreed to lose it.
    void discardThen(const std::function<void()>& next);

    /// A message with the one button OK.
    void showMessage(const QString& title, const QString& text);

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] QWidget* makeDetail();
    [[nodiscard]] QWidget* makeScreen(SidebarItem item);
    void addShortcuts();
    void showWelcome();
    void refreshScreen();
    void refreshBanner();
    void refreshError();
    void refreshManualEntry();

    AppModel& m_model;
    QWidget* m_content;
    Sidebar* m_sidebar;
    QWidget* m_banner;
    QStackedWidget* m_screens;
    std::array<QWidget*, sidebarEntries.size()> m_screenOf{}; // null until first shown
    Alert* m_errorAlert = nullptr;
    QPointer<Alert> m_discardQuestion;
    bool m_mayLoseDraft = false;
    QPointer<ManualEntrySheet> m_manualEntry; // while the model has a draft
};

} // namespace kestu
