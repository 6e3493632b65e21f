// SPDX-License-Identifier: GPL-3.0-or-later
//
// The main of every test with widgets: they look as in the program.
#include "ui/theme/KestuStyle.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char* argv[]) {
    qputenv("GSETTINGS_BACKEND", "memory");
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setApplicationDisplayName(QStringLiteral("KESTU"));
    QApplication::setApplicationVersion(QStringLiteral(KESTU_VERSION));
    kestu::installStyle(application);
    kestu::applyTheme(application, kestu::lightColors());
    return RUN_ALL_TESTS();
}
