// SPDX-License-Identifier: GPL-3.0-or-later
//
// The partial mode with real programs: one of a toolkit, and a terminal that is not on the accessibility bus.
#include "platform/linux/wayland/AccessibleWindows.h"
#include "support/Desk.h"
#include "support/PrivateBus.h"

#include <gtest/gtest.h>

#include <csignal>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::waitUntil;

constexpr int patience = 20000; // milliseconds

TEST(AccessibleWindowsDeskTest, TellsTheProgramsThatAreOnTheBusAndNothingOfTheOthers) {
    AccessibleWindows windows(QDBusConnection::sessionBus(), 0ms);
    windows.setNeeded(true);
    const auto title = [&windows] {
        const auto seen = windows.front();
        return seen ? seen->title : QString();
    };
    const auto bringToFront = [](const QString& name) {
        test::outputOf(u"xdotool"_s, {u"search"_s, u"--sync"_s, u"--name"_s, name, u"windowactivate"_s});
    };
    const test::Terminal terminal(u"Plain"_s, u"plain"_s);
    test::Program first(u"zenity"_s, {u"--info"_s, u"--title=First"_s, u"--text=a"_s});
    EXPECT_TRUE(waitUntil([&] { return title() == u"First"; }, patience)) << "a program that just starts";
    EXPECT_EQ(windows.front()->facts.processId, first.pid());
    test::Program second(u"zenity"_s, {u"--info"_s, u"--title=Second"_s, u"--text=b"_s});
    EXPECT_TRUE(waitUntil([&] { return title() == u"Second"; }, patience));

    terminal.activate();
    EXPECT_TRUE(waitUntil([&] { return title().isEmpty(); }, patience));
    bringToFront(u"First"_s);
    EXPECT_TRUE(waitUntil([&] { return title() == u"First"; }, patience));
    first.send(SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return title() != u"First"; }, patience));
}

} // namespace
} // namespace kestu
