// SPDX-License-Identifier: GPL-3.0-or-later
//
// A program of the session that calls a logout off, as one with unsaved work does, and ends.
#include <QGuiApplication>
#include <QSessionManager>

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    const auto object = [](QSessionManager& manager) {
        if (manager.allowsInteraction()) {
            manager.cancel();
            QCoreApplication::exit();
        }
    };
    // The manager is answered when this returns, so it cannot be queued.
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &application, object,
                     Qt::DirectConnection);
    return QGuiApplication::exec();
}
