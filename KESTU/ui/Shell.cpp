// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Shell.h"

#include "app/AppModel.h"
#include "ui/MainWindow.h"
#include "ui/MenuBarView.h"
#include "ui/WindowPlace.h"
#include "ui/theme/Icons.h"

#include <QCoreApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include <chrono>
#include <utility>

namespace kestu {
namespace {

using namespace std::chrono_literals;

/// Trays come late and go without a word: the desktop's panel may be restarted.
constexpr auto trayWatchInterval = 5s;

/// A click on the status item takes the focus from an open panel first: it is meant to close it.
constexpr qint64 samePress = 250; // milliseconds

constexpr const char* activationTokenName = "XDG_ACTIVATION_TOKEN";

QString textOf(const UpdateAnswer& answer) {
    switch (answer.kind) {
    case UpdateAnswer::Kind::available:
        return QStringLiteral("新しいバージョン %1 があります。パッケージマネージャーから更新してください。")
            .arg(answer.version);
    case UpdateAnswer::Kind::upToDate:
        return QStringLiteral("お使いのバージョン %1 は最新です。")
            .arg(QCoreApplication::applicationVersion());
    case UpdateAnswer::Kind::unavailable:
        break;
    }
    return QStringLiteral("アップデートを確認できませんでした。パッケージマネージャーで確認してください。");
}

} // namespace

Shell::Shell(AppModel& model, std::function<bool()> isTrayThere)
    : m_model(model)
    , m_isTrayThere(std::move(isTrayThere))
    , m_commands(model)
    , m_statusItem(model, m_commands) {
    QGuiApplication::setWindowIcon(iconOf(u"kestu"));
    connect(&m_commands, &Commands::openRequested, this, [this] { showWindow(); });
    connect(&m_commands, &Commands::quitRequested, this, &Shell::quit);
    connect(&m_commands, &Commands::updateCheckRequested, this, &Shell::checkForUpdates);
    connect(&m_statusItem, &StatusItem::clicked, this, &Shell::togglePanel);
    connect(&m_trayWatch, &QTimer::timeout, this, &Shell::stayReachable);
    m_trayWatch.start(trayWatchInterval);
    if (mayPlaceWindows()) {
        m_statusItem.appear(); // into whichever tray comes
    } else {
        static_cast<void>(lookForTray());
    }
}

Shell::~Shell() {
    delete m_panel;
    if (m_window) {
        m_window->hide(); // which remembers its place
    }
    delete m_window;
}

MainWindow* Shell::window() const {
    return m_window;
}

MenuBarView* Shell::panel() const {
    return m_panel;
}

void Shell::makeWindow() {
    if (!m_window) {
        m_window = new MainWindow(m_model, m_commands);
        m_window->setAttribute(Qt::WA_DeleteOnClose);
        m_window->mayClose = [this] { return closeOrMinimise(); };
        new WindowPlace(*m_window, m_model); // the window's
    }
}

void Shell::showWindow(const QByteArray& activationToken) {
    makeWindow();
    if (!activationToken.isEmpty()) {
        qputenv(activationTokenName, activationToken); // Qt has no other way to take one
    }
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    qunsetenv(activationTokenName); // it was for this one time, and for no program that we start
}

bool Shell::lookForTray() {
    const bool isThere = m_isTrayThere();
    if (isThere) {
        m_statusItem.appear();
    }
    return isThere;
}

bool Shell::closeOrMinimise() {
    if (lookForTray()) {
        return true;
    }
    m_window->showMinimized();
    return false;
}

/// Not QCoreApplication::quit(), which asks the windows to close: without a tray they refuse.
void Shell::quit() {
    const auto exit = [] { QCoreApplication::exit(); };
    if (m_window && m_window->holdsDraft()) {
        showWindow();
        m_window->discardThen(exit);
    } else {
        exit();
    }
}

void Shell::togglePanel() {
    if (m_panel || (m_sincePanelClosed.isValid() && m_sincePanelClosed.elapsed() < samePress)) {
        delete m_panel;
        return;
    }
    m_panel = new MenuBarView(m_model, m_commands);
    m_panel->setAttribute(Qt::WA_DeleteOnClose);
    m_statusItem.setToolTipShown(false);
    connect(m_panel, &QObject::destroyed, this, [this] {
        m_sincePanelClosed.start();
        m_statusItem.setToolTipShown(true);
    });
    m_panel->adjustSize();
    if (mayPlaceWindows()) {
        m_panelAnchor =
            QRect(QCursor::pos(), QSize(1, 1)); // where the desktop does not tell the icon's place
        placePanel();
        connect(m_panel, &MenuBarView::resized, this, &Shell::placePanel);
        m_isPanelCorrected = false;
        connect(m_panel, &MenuBarView::moved, this, &Shell::correctPanel);
    }
    m_panel->show();
    m_panel->raise();
    m_panel->activateWindow();
}

void Shell::placePanel() {
    const QRect icon = m_statusItem.geometry();
    m_panelAnchor = icon.isEmpty() ? m_panelAnchor : icon;
    const QScreen* screen = QGuiApplication::screenAt(m_panelAnchor.center());
    screen = screen ? screen : QGuiApplication::primaryScreen();
    m_panelPlace = panelPosition(m_panel->size(), m_panelAnchor, screen->availableGeometry());
    m_panel->move(m_panelPlace);
}

/// i3 puts a new window aside by the frame that it does not get. Once: who insists is the window manager.
void Shell::correctPanel() {
    if (m_panel->isVisible() && !m_isPanelCorrected && m_panel->pos() != m_panelPlace) {
        m_isPanelCorrected = true;
        placePanel();
    }
}

void Shell::checkForUpdates() {
    m_model.checkForUpdates([this, context = QPointer<Shell>(this)](const UpdateAnswer& answer) {
        if (context) {
            showAnswer(answer);
        }
    });
}

void Shell::showAnswer(const UpdateAnswer& answer) {
    showWindow();
    m_window->showMessage(QStringLiteral("アップデート"), textOf(answer));
}

void Shell::checkForUpdatesQuietly() {
    m_model.checkForUpdates([this, context = QPointer<Shell>(this)](const UpdateAnswer& answer) {
        if (context && answer.kind == UpdateAnswer::Kind::available) {
            m_commands.offerVersion(answer.version);
        }
    });
}

void Shell::stayReachable() {
    // On Wayland it would come to the front, or take half the screen: not every compositor minimises. There
    // one starts KESTU once more to see it.
    if (!lookForTray() && !m_window && mayPlaceWindows()) {
        makeWindow();
        // It was not asked for: whoever works now keeps the front, also where windows cannot be minimised.
        m_window->setAttribute(Qt::WA_ShowWithoutActivating);
        m_window->showMinimized();
        m_window->setAttribute(Qt::WA_ShowWithoutActivating, false);
    }
}

} // namespace kestu
