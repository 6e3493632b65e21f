// SPDX-License-Identifier: GPL-3.0-or-later
//
// Puts everything together: the platform, the store, what runs on them, and the ways in which it ends.
#include "app/AppModel.h"
#include "app/KestuApp.h"
#include "app/ReportCommand.h"
#include "app/SelfCheck.h"
#include "base/WindowRole.h"
#include "platform/Accessibility.h"
#include "platform/Appearance.h"
#include "platform/Platform.h"
#include "platform/Workspace.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/ReaderSwitch.h"
#include "platform/linux/SessionKind.h"
#include "platform/linux/SingleInstance.h"
#include "platform/linux/StatusNotifierTray.h"
#include "platform/linux/TerminationSignals.h"
#include "storage/RepositoryOpener.h"
#include "ui/FailureDialog.h"
#include "ui/Shell.h"
#include "ui/WindowPlace.h"
#include "ui/theme/KestuStyle.h"

#include <QApplication>
#include <QDBusConnection>
#include <QEventLoop>
#include <QSystemTrayIcon>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>

namespace {

using namespace kestu;
using namespace std::chrono_literals;

// Who is asked for the windows over a bus needs a moment, and the best may be the slowest.
constexpr auto sourcePatience = 2s;

void say(const QString& line) {
    std::fprintf(stderr, "%s\n", line.toUtf8().constData());
}

/// By which the desktop lets our window come to the front, because the user has started us: of this time
/// only, so the programs that we start must not find it. (The X11 one Qt takes away itself.)
QByteArray takeActivationToken() {
    const QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN");
    qunsetenv("XDG_ACTIVATION_TOKEN");
    return token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token;
}

int handOverToFirst(const SingleInstance& instance, const QByteArray& activationToken) {
    say(instance.askFirstToFront(activationToken)
            ? QStringLiteral("KESTU はすでに起動しています。前面に表示します。")
            : QStringLiteral("KESTU はすでに起動しています。"));
    return EXIT_SUCCESS;
}

std::unique_ptr<Repository> openStore(const StoreLocation& location) {
    return openRepository(location, systemNow, [] {
        say(QStringLiteral("記録の多いデータベースを準備しています。しばらくお待ちください。"));
    });
}

/// Whether the desktop has a tray at this moment.
std::function<bool()> trayQuestion() {
    if (mayPlaceWindows()) {
        return QSystemTrayIcon::isSystemTrayAvailable;
    }
    return [] { return isStatusNotifierTrayThere(QDBusConnection::sessionBus()); };
}

/// How the user has started KESTU.
struct Start {
    bool isInBackground = false; // the session has, not the user: nothing is opened
    QByteArray activationToken{};
};

/// Light or dark as the user chose; else as the desktop says; where it says nothing, as its own palette
/// looks.
const Colors& wantedColors(ThemeChoice choice, const Appearance& appearance, const QPalette& desktopPalette) {
    if (choice != ThemeChoice::system) {
        return choice == ThemeChoice::dark ? darkColors() : lightColors();
    }
    if (const auto scheme = appearance.colorScheme()) {
        return *scheme == ColorScheme::dark ? darkColors() : lightColors();
    }
    return colorsOf(desktopPalette);
}

/// The session's manager asks KESTU to end by the event behind quit(). Qt would first ask the windows, and
/// one that refuses (without a tray, or while it is written in) would keep KESTU running until the display is
/// taken away under it, with the row open.
class EndsWhenAsked final : public QObject {
protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() != QEvent::Quit) {
            return false;
        }
        QCoreApplication::exit();
        return true;
    }
};

int record(QApplication& application, const SingleInstance& instance, std::unique_ptr<Repository> repository,
           const QPalette& desktopPalette, const Start& start) {
    const std::unique_ptr<Platform> platform = startLinuxPlatform();
    Appearance& appearance = platform->appearance();
    KestuApp kestuApp(
        std::move(repository), *platform,
        {.clock = systemNow,
         .calendar = systemCalendar,
         .screen = qEnvironmentVariable("KESTU_SCREEN"),
         .assistantServer = QCoreApplication::applicationDirPath() + QStringLiteral("/kestu-mcp")});
    Shell shell(kestuApp.model(), trayQuestion());
    const auto refreshColors = [&] {
        applyTheme(application, wantedColors(kestuApp.model().themeChoice(), appearance, desktopPalette));
    };
    QObject::connect(&appearance, &Appearance::colorSchemeChanged, &application, refreshColors);
    QObject::connect(&kestuApp.model(), &AppModel::themeChoiceChanged, &application, refreshColors);
    refreshColors();
    const auto refreshTray = [&] {
        const auto ink = appearance.trayInk();
        shell.statusItem().setInk(ink ? std::optional(QColor(ink->red, ink->green, ink->blue))
                                      : std::nullopt);
    };
    QObject::connect(&appearance, &Appearance::trayInkChanged, &application, refreshTray);
    refreshTray();
    const TerminationSignals signalsToEnd;
    // Not quit(), which asks the windows first: without a tray they refuse to close.
    QObject::connect(&signalsToEnd, &TerminationSignals::terminationRequested, &application,
                     [] { QCoreApplication::exit(); });
    EndsWhenAsked endsWhenAsked;
    application.installEventFilter(&endsWhenAsked);
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &application, [&] { kestuApp.stop(); });
    QObject::connect(&instance, &SingleInstance::activationRequested, &shell, &Shell::showWindow);
    QTimer::singleShot(0, &application, [&] {
        kestuApp.start();
        if (!start.isInBackground) {
            shell.showWindow(start.activationToken);
        }
        shell.checkForUpdatesQuietly();
    });
    QTimer::singleShot(sourcePatience, &application, [&] {
        if (!kestuApp.model().whyUnseen().isEmpty()) {
            say(kestuApp.model().whyUnseen());
        }
    });
    return QApplication::exec();
}

/// Writes what a command left behind; a text that does not arrive is a failure too.
int finish(const CommandResult& result) {
    const QByteArray output = result.output.toUtf8();
    std::fputs(result.errors.toUtf8().constData(), stderr);
    const bool isWritten = std::fwrite(output.constData(), 1, static_cast<std::size_t>(output.size()),
                                       stdout) == static_cast<std::size_t>(output.size()) &&
                           std::fflush(stdout) == 0;
    if (!isWritten) {
        std::perror("kestu");
        return EXIT_FAILURE;
    }
    return result.exitCode;
}

/// Beside a KESTU that runs, if one does: nothing is stored.
CommandResult check() {
    const std::unique_ptr<Platform> platform = startLinuxPlatform();
    Accessibility& accessibility = platform->accessibility();
    QEventLoop waiting;
    const auto look = [&] {
        if (accessibility.abilities().windows.kind == Ability::Kind::yes) {
            waiting.quit();
        }
    };
    QObject::connect(&accessibility, &Accessibility::abilitiesChanged, &waiting, look);
    QTimer::singleShot(0, &waiting, look);
    QTimer::singleShot(sourcePatience, &waiting, &QEventLoop::quit);
    waiting.exec();
    return reportOf({.session = qEnvironmentVariable("XDG_SESSION_TYPE"),
                     .desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP"),
                     .qtPlatform = QGuiApplication::platformName(),
                     .hasTray = trayQuestion()(),
                     .whyUnseen = platform->workspace().whyUnseen(),
                     .abilities = accessibility.abilities()});
}

std::optional<int> commandExitCode(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
    }
    if (!isCommand(arguments)) {
        return std::nullopt;
    }
    const QCoreApplication application(argc, argv);
    return finish(runCommand(
        arguments,
        {.location = storeLocationFromEnvironment(), .calendar = systemCalendar(), .now = systemNow()}));
}

} // namespace

int main(int argc, char* argv[]) {
    if (const auto exitCode = commandExitCode(argc, argv)) {
        return *exitCode;
    }
    const bool isWithoutDisplay = !isDisplayReachable();
    if (isWithoutDisplay) {
        // Asking Qt for a display that is not there would abort, before anything could be said.
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    offerWindowsToReaders();
    Start start{.activationToken = takeActivationToken()};
    QApplication application(argc, argv);
    QStringList arguments = QApplication::arguments().sliced(1);
    start.isInBackground = arguments.removeOne(QStringLiteral("--background"));
    if (arguments == QStringList(QStringLiteral("--check"))) {
        return finish(check());
    }
    if (!arguments.isEmpty()) {
        return finish(usageError(QStringLiteral("不明な引数です：%1").arg(arguments.first())));
    }
    QApplication::setApplicationName(QStringLiteral("KESTU"));
    QApplication::setApplicationDisplayName(QStringLiteral("KESTU"));
    QApplication::setApplicationVersion(QStringLiteral(KESTU_VERSION));
    QApplication::setDesktopFileName(applicationId);
    QApplication::setQuitOnLastWindowClosed(false);
    const QPalette desktopPalette = QApplication::palette();
    installStyle(application);
    applyTheme(application, colorsOf(desktopPalette));

    const StoreLocation location = storeLocationFromEnvironment();
    const SingleInstance instance(prepareDatabasePath(location));
    if (instance.outcome() == SingleInstance::Outcome::second) {
        return handOverToFirst(instance, start.activationToken);
    }
    std::unique_ptr<Repository> repository;
    try {
        repository = openStore(location);
    } catch (const DatabaseError& error) {
        say(storeFailureMessage(error));
        if (!isWithoutDisplay) {
            showFailure(storeFailureMessage(error));
        }
        return EXIT_FAILURE;
    }
    if (isWithoutDisplay) {
        say(QStringLiteral("画面がないため起動できません。デスクトップの中で起動してください。"));
        return EXIT_FAILURE;
    }
    return record(application, instance, std::move(repository), desktopPalette, start);
}
