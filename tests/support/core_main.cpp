// SPDX-License-Identifier: GPL-3.0-or-later
//
// The main of every test that needs an event loop but no screen.
#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char* argv[]) {
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
