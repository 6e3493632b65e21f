// SPDX-License-Identifier: GPL-3.0-or-later
//
// Puts everything together: the platform, the store, what runs on them, and the ways in which it ends.
#include "app/KestuApp.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/SingleInstance.h"
#include "platform/linux/TerminationSignals.h"
#include "storage/RepositoryOpener.h"
#include "ui/FailureDialog.h"

#include <QApplication>
#include <QTimer>
#include <QWindow>

#include <cstdio>
#include <cstdlib>

namespace {

using namespace kestu;

void say(const QString& line) {
    std::fprintf(stderr, "%s\n", line.toUtf8().constData());
}

void bringToFront() {
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        window->show();
        window->raise();
        window->requestActivate();
    }
}

int handOverToFirst(const SingleInstance& instance) {
    say(instance.askFirstToFront() ? QStringLiteral("KESTU はすでに起動しています。前面に表示します。")
                                   : QStringLiteral("KESTU はすでに起動しています。"));
    return EXIT_SUCCESS;
}

std::unique_ptr<Repository> openStore(const StoreLocation& location) {
    return openRepository(location, systemNow, [] {
        say(QStringLiteral("記録の多いデータベースを準備しています。しばらくお待ちください。"));
    });
}

int record(QApplication& application, const SingleInstance& instance,
           std::unique_ptr<Repository> repository) {
    const LinuxPlatformStart started = startLinuxPlatform();
    if (!started.warning.isEmpty()) {
        say(started.warning);
    }
    KestuApp kestuApp(std::move(repository), *started.platform, systemNow);
    const TerminationSignals signalsToEnd;
    QObject::connect(&signalsToEnd, &TerminationSignals::terminationRequested, &application,
                     &QCoreApplication::quit);
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &application, [&] { kestuApp.stop(); });
    QObject::connect(&instance, &SingleInstance::activationRequested, &application, bringToFront);
    QTimer::singleShot(0, &application, [&] { kestuApp.start(); });
    return QApplication::exec();
}

} // namespace

int main(int argc, char* argv[]) {
    const bool isWithoutDisplay = !isDisplayReachable();
    if (isWithoutDisplay) {
        // Asking Qt for a display that is not there would abort, before anything could be said.
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("KESTU"));
    QApplication::setApplicationVersion(QStringLiteral(KESTU_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("kestu"));
    QApplication::setQuitOnLastWindowClosed(false);

    const StoreLocation location = storeLocationFromEnvironment();
    const SingleInstance instance(prepareDatabasePath(location));
    if (instance.outcome() == SingleInstance::Outcome::second) {
        return handOverToFirst(instance);
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
    return record(application, instance, std::move(repository));
}
