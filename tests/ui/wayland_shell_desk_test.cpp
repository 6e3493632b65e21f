// SPDX-License-Identifier: GPL-3.0-or-later
//
// The application as its user meets it where no window can say where it stands.
#include "app/AppModel.h"
#include "platform/linux/StatusNotifierTray.h"
#include "support/FakePlatform.h"
#include "support/MockObject.h"
#include "support/PrivateBus.h"
#include "support/Program.h"
#include "support/SampleDay.h"
#include "support/TemporaryStore.h"
#include "ui/MainWindow.h"
#include "ui/MenuBarView.h"
#include "ui/Shell.h"

#include <QApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusVariant>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::waitUntil;

class WaylandShellTest : public testing::Test {
protected:
    WaylandShellTest() {
        test::fillSampleDay(*store.repository);
        platform.fakeSettings.booleans[u"welcomeShown"_s] = true;
        model = std::make_unique<AppModel>(store.open(), platform,
                                           AppModel::Environment{.clock = [] { return test::sampleNow; },
                                                                 .calendar = test::tokyo,
                                                                 .screen = {}});
        model->loadSettings();
        model->start();
    }

    void launch(std::function<bool()> isTrayThere) {
        shell = std::make_unique<Shell>(*model, std::move(isTrayThere));
        shell->showWindow();
        ASSERT_TRUE(waitUntil([this] { return shell->window()->isActiveWindow(); }));
    }

    bool openPanel() {
        Q_EMIT shell->statusItem().clicked();
        return waitUntil([this] { return shell->panel() && shell->panel()->isActiveWindow(); });
    }

    /// The compositor's windows, as its own tree has them.
    static bool isOnScreen(const QString& title) {
        return test::outputOf(u"swaymsg"_s, {u"-t"_s, u"get_tree"_s})
            .contains(u"\"name\": \"%1\""_s.arg(title));
    }

    test::TemporaryStore store;
    test::FakePlatform platform;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<Shell> shell;
};

TEST_F(WaylandShellTest, ThePanelIsAWindowThatGoesWithTheFocus) {
    const QString title = u"今日 — KESTU"_s;
    launch([] { return false; });
    ASSERT_TRUE(openPanel());
    EXPECT_TRUE(waitUntil([&] { return isOnScreen(title); }));
    // The desk has no other keyboard: programs must have got to know it first.
    const test::Program keyboard(u"wtype"_s, {u"-s"_s, u"300"_s, u"-k"_s, u"Escape"_s, u"-s"_s, u"300"_s});
    EXPECT_TRUE(waitUntil([&] { return !shell->panel() && !isOnScreen(title); }));

    waitUntil([] { return false; }, 300); // a click that closes the panel does not open it again
    ASSERT_TRUE(openPanel());
    test::outputOf(u"swaymsg"_s, {u"[title=\"^タイムライン\"] focus"_s});
    EXPECT_TRUE(waitUntil([&] { return !shell->panel() && !isOnScreen(title); }));

    waitUntil([] { return false; }, 300);
    test::outputOf(u"swaymsg"_s, {u"no_focus [title=\"^今日\"]"_s});
    Q_EMIT shell->statusItem().clicked();
    ASSERT_TRUE(waitUntil([&] { return isOnScreen(title); }));
    EXPECT_FALSE(shell->panel()->isActiveWindow());
    EXPECT_TRUE(waitUntil([&] { return !shell->panel() && !isOnScreen(title); }, 15000))
        << "what never had the focus does not stay for ever";
}

TEST_F(WaylandShellTest, KeepsThePlaceOfSessionsThatHavePlaces) {
    auto& stored = platform.fakeSettings.dictionaries[u"window"_s];
    stored = {{u"x"_s, u"300"_s},        {u"y"_s, u"200"_s},        {u"width"_s, u"950"_s},
              {u"height"_s, u"600"_s},   {u"frameLeft"_s, u"1"_s},  {u"frameTop"_s, u"24"_s},
              {u"frameRight"_s, u"1"_s}, {u"frameBottom"_s, u"1"_s}};
    test::outputOf(u"swaymsg"_s, {u"for_window [app_id=\".*\"] floating enable"_s});
    launch([] { return false; });
    EXPECT_EQ(shell->window()->size(), QSize(950, 600));
    shell->window()->resize(900, 640);
    shell.reset();
    EXPECT_EQ(stored[u"height"_s], u"640"_s);
    EXPECT_EQ(stored[u"x"_s], u"300"_s);
    EXPECT_EQ(stored[u"y"_s], u"200"_s);
    EXPECT_EQ(stored[u"frameTop"_s], u"24"_s);
}

TEST_F(WaylandShellTest, TheWindowStaysReachableUntilATrayComes) {
    launch([] { return isStatusNotifierTrayThere(QDBusConnection::sessionBus()); });
    shell->window()->close();
    ASSERT_TRUE(shell->window()) << "without a tray it would be lost";

    const QString watcher = u"org.kde.StatusNotifierWatcher"_s;
    const test::Program tray(u"/usr/bin/python3"_s, {u"-m"_s, u"dbusmock"_s, u"--session"_s, watcher,
                                                     u"/StatusNotifierWatcher"_s, watcher});
    const test::MockObject object(QDBusConnection::sessionBus(), watcher, u"/StatusNotifierWatcher"_s);
    ASSERT_TRUE(
        waitUntil([&] { return QDBusConnection::sessionBus().interface()->isServiceRegistered(watcher); }));
    const QString mock = u"org.freedesktop.DBus.Mock"_s;
    object.call(mock, u"AddMethod"_s, {watcher, u"RegisterStatusNotifierItem"_s, u"s"_s, u""_s, u""_s});
    object.call(mock, u"AddProperty"_s,
                {watcher, u"IsStatusNotifierHostRegistered"_s, QVariant::fromValue(QDBusVariant(true))});
    EXPECT_TRUE(waitUntil([&] {
        const auto calls = object.call(mock, u"GetMethodCalls"_s, {u"RegisterStatusNotifierItem"_s});
        return qdbus_cast<QList<QVariant>>(calls.value(0)).size() > 0;
    })) << "the icon comes into a tray that came late";
    shell->window()->close();
    EXPECT_TRUE(waitUntil([this] { return !shell->window(); }));
}

} // namespace
} // namespace kestu
