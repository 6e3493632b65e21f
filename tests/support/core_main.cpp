// SPDX-License-Identifier: GPL-3.0-or-later
//
// The main of every test that needs an event loop but no screen.
#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char* argv[]) {
    // Whatever service a test may start by its questions: the user's own settings stay as they are.
    qputenv("GSETTINGS_BACKEND", "memory");
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
