// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/MainWindow.h"

#include "app/AppModel.h"
#include "ui/Commands.h"
#include "ui/ManualEntrySheet.h"
#include "ui/PermissionBanner.h"
#include "ui/Sidebar.h"
#include "ui/WelcomeSheet.h"
#include "ui/controls/Alert.h"
#include "ui/controls/Roles.h"
#include "ui/controls/Settling.h"
#include "ui/controls/Surfaces.h"
#include "ui/controls/TightLayout.h"
#include "ui/projects/ProjectsScreen.h"
#include "ui/report/ReportScreen.h"
#include "ui/settings/SettingsScreen.h"
#include "ui/timeline/DayHeader.h"
#include "ui/timeline/TimelineScreen.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QInputMethod>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace kestu {
namespace {

constexpr QSize minimumContent{640, 400};
constexpr QSize defaultContent{1100, 720};
constexpr int sidebarWidth = 200;
constexpr int narrowSidebarWidth = 180;
constexpr int compactSidebarWidth = 56;
constexpr int narrowWindow = 920;
constexpr int compactWindow = 900;

} // namespace

MainWindow::MainWindow(AppModel& model, Commands& commands)
    : m_model(model)
    , m_content(new QWidget)
    , m_sidebar(new Sidebar(model, commands))
    , m_screens(new QStackedWidget) {
    reportRole(this, QAccessible::Window);
    setMinimumSize(minimumContent);
    resize(defaultContent);
    addActions({&commands.help(), &commands.quitAction()});

    auto* columns = tight<QHBoxLayout>(m_content);
    columns->addWidget(m_sidebar);
    columns->addWidget(new Divider(Qt::Vertical));
    columns->addWidget(makeDetail(), 1);
    tight<QHBoxLayout>(this)->addWidget(m_content);
    reportRole(m_screens, QAccessible::Client); // or a "layered pane" is read out on the way into each screen

    connect(&m_model, &AppModel::screenChanged, this, &MainWindow::refreshScreen);
    connect(&m_model, &AppModel::accessibilityGrantedChanged, this, &MainWindow::refreshBanner);
    connect(&m_model, &AppModel::whyUnseenChanged, this, &MainWindow::refreshBanner);
    connect(&m_model, &AppModel::errorMessageChanged, this, &MainWindow::refreshError);
    connect(&m_model, &AppModel::manualDraftChanged, this, &MainWindow::refreshManualEntry);
    addShortcuts();
    refreshScreen();
    refreshBanner();
    m_sidebar->screenList()->setFocus();
    if (!m_model.welcomeShown()) {
        showWelcome();
    }
    refreshManualEntry();
    refreshError();
}

QWidget* MainWindow::makeDetail() {
    m_banner = new QWidget;
    auto* banner = tight<QVBoxLayout>(m_banner);
    banner->addWidget(new PermissionBanner(m_model));
    banner->addWidget(new Divider(Qt::Horizontal));

    auto* detail = new QWidget;
    auto* layout = tight<QVBoxLayout>(detail);
    layout->addWidget(m_banner);
    layout->addWidget(m_screens, 1);
    return detail;
}

/// They belong to the content, so that they rest while a sheet covers it.
void MainWindow::addShortcuts() {
    const auto add = [this](
                         const QKeySequence& keys, SidebarItem item,
                         const std::function<void()>& then = [] {}) {
        connect(new QShortcut(keys, m_content), &QShortcut::activated, this, [this, item, then] {
            m_model.setScreen(item);
            then();
        });
    };
    for (const SidebarEntry& entry : sidebarEntries) {
        add(keysOf(entry.item), entry.item);
    }
    add(QKeySequence(Qt::CTRL | Qt::Key_Comma), SidebarItem::settings);
    add(QKeySequence(dayKeys::add), SidebarItem::timeline, [this] { proposeEntry(m_model); });
    add(QKeySequence(dayKeys::today), SidebarItem::timeline, [this] {
        if (!m_model.isTodaySelected()) {
            m_model.goToToday();
        }
    });
}

void MainWindow::showMessage(const QString& title, const QString& text) {
    Alert::tell(this, title, text);
}

void MainWindow::showWelcome() {
    (new WelcomeSheet(this, m_model))->present();
}

QWidget* MainWindow::makeScreen(SidebarItem item) {
    switch (item) {
    case SidebarItem::timeline:
        return new TimelineScreen(m_model);
    case SidebarItem::projects:
        return new ProjectsScreen(m_model);
    case SidebarItem::settings:
        return new SettingsScreen(m_model);
    case SidebarItem::report:
        return new ReportScreen(m_model);
    }
    return nullptr;
}

void MainWindow::refreshScreen() {
    const auto index = static_cast<size_t>(m_model.screen());
    QWidget*& screen = m_screenOf[index];
    if (!screen) {
        screen = makeScreen(m_model.screen());
        m_screens->addWidget(screen);
    }
    m_screens->setCurrentWidget(screen);
    settle(*this);
    // The report has the application's name alone.
    setWindowTitle(m_model.screen() == SidebarItem::report ? QStringLiteral("KESTU")
                                                           : sidebarEntries[index].label.toString());
    reportTitle(this);
}

void MainWindow::refreshBanner() {
    m_banner->setVisible(!m_model.whyUnseen().isEmpty() || !m_model.accessibilityGranted());
}

void MainWindow::refreshError() {
    const auto message = m_model.errorMessage();
    if (!message) {
        return; // the alert is what clears it
    }
    if (m_errorAlert) {
        m_errorAlert->disconnect(this); // another error takes its place
        m_errorAlert->close();
    }
    m_errorAlert = Alert::tell(this, QStringLiteral("エラー"), *message);
    connect(m_errorAlert, &Sheet::closed, this, [this] {
        m_errorAlert = nullptr;
        m_model.clearErrorMessage();
    });
}

void MainWindow::refreshManualEntry() {
    const auto& draft = m_model.manualDraft();
    if (m_manualEntry && (!draft || draft->id != m_manualEntry->draftId())) {
        m_manualEntry->close();
        m_manualEntry = nullptr;
    }
    if (draft && !m_manualEntry) {
        m_manualEntry = new ManualEntrySheet(this, m_model);
        m_manualEntry->present();
    }
}

void MainWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        m_model.refreshAccessibility();
    }
    QWidget::changeEvent(event);
}

bool MainWindow::holdsDraft() {
    QGuiApplication::inputMethod()->commit();
    const auto widgets = findChildren<QWidget*>();
    return std::any_of(widgets.begin(), widgets.end(), [](const QWidget* widget) {
        const auto* holder = dynamic_cast<const DraftHolder*>(widget);
        return holder && holder->holdsDraft();
    });
}

void MainWindow::discardThen(const std::function<void()>& next) {
    if (!m_discardQuestion) {
        m_discardQuestion = Alert::askToDiscard(this, next);
    }
}

void MainWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (mayClose && !mayClose()) {
        return;
    }
    if (!m_mayLoseDraft && holdsDraft()) {
        discardThen([this] {
            m_mayLoseDraft = true;
            close();
            m_mayLoseDraft = false; // it may have been minimised
        });
        return;
    }
    m_model.setManualDraft(std::nullopt); // its sheet goes with the window
    event->accept();
}

void MainWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    settle(*this);
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    const bool isCompact = width() < compactWindow;
    m_sidebar->setCompact(isCompact);
    m_sidebar->setFixedWidth(isCompact                ? compactSidebarWidth
                             : width() < narrowWindow ? narrowSidebarWidth
                                                      : sidebarWidth);
    QWidget::resizeEvent(event);
}

} // namespace kestu
