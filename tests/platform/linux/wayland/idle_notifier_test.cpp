// SPDX-License-Identifier: GPL-3.0-or-later
//
// With times that are short, for the test waits for them.
#include "platform/linux/wayland/IdleNotifier.h"

#include "platform/linux/wayland/Compositor.h"
#include "platform/linux/wayland/FakeSway.h"

#include <QElapsedTimer>

#include <ext-idle-notify-server.h>

namespace kestu {
namespace {

using namespace std::chrono_literals;
using test::waitUntil;

constexpr IdleTimes times{.threshold = 400ms, .probe = 100ms, .slack = 100ms, .probePause = 300ms};

class IdleNotifierTest : public CompositorTest {
protected:
    IdleNotifierTest() { m_sway.shows("null", 1, false); }

    void open(int version, int seats = 1) {
        Fake::Offer offer{{Fake::notifier, version}};
        offer.insert(offer.begin(), static_cast<std::size_t>(seats), {Fake::seat, 1});
        start(offer);
        m_connection.open();
        ASSERT_TRUE(idle().canTell());
    }

    IdleNotifier& idle() { return m_isSway ? m_onSway : m_elsewhere; }
    double seconds() { return idle().secondsSinceLastInput().count(); }

    void tellIdle(int seat = 0) {
        does(
            [seat](Fake& fake) { fake.tell(Fake::notification, seat, ext_idle_notification_v1_send_idled); });
    }

    void tellResumed(int seat = 0) {
        does([seat](Fake& fake) {
            fake.tell(Fake::notification, seat, ext_idle_notification_v1_send_resumed);
        });
    }

    void pass(std::chrono::milliseconds time) {
        waitUntil([] { return false; }, static_cast<int>(time.count()));
    }

    /// Nobody is there, and has not been for at least 0.4 seconds.
    void leave() {
        pass(600ms);
        tellIdle();
        tellIdle(1);
        ASSERT_GE(seconds(), 0.4);
    }

    QString m_swayPath = m_folder.filePath(QStringLiteral("sway"));
    test::FakeSway m_sway{m_swayPath};
    SwayTree m_tree{m_swayPath};
    SwayTree m_noTree{QString()};
    bool m_isSway = false;
    IdleNotifier m_onSway{m_connection, m_tree, times};
    IdleNotifier m_elsewhere{m_connection, m_noTree, times};
};

TEST_F(IdleNotifierTest, CountsFromTheLastInputOfAnySeat) {
    for (const int version : {1, 2}) {
        SCOPED_TRACE(version);
        open(version, 2);
        EXPECT_LT(seconds(), 0.3);
        pass(700ms);
        EXPECT_NEAR(seconds(), 0.5, 0.01) << "else it would have been told";
        tellIdle(0);
        EXPECT_NEAR(seconds(), 0.4, 0.15) << "but it is only one of two seats";
        tellIdle(1);
        const double before = seconds();
        EXPECT_NEAR(before, 0.4, 0.15);
        pass(300ms);
        EXPECT_NEAR(seconds(), before + 0.3, 0.15) << "it grows now";
        tellResumed(1);
        EXPECT_LT(seconds(), 0.2);
        m_compositor->does([version](Fake& fake) { EXPECT_EQ(fake.isInputAlone(), version == 2); });
        m_compositor.reset();
        EXPECT_TRUE(waitUntil([&] { return !idle().canTell(); }));
        EXPECT_EQ(seconds(), 0) << "unknown";
    }
}

TEST_F(IdleNotifierTest, TakesNoNewNotificationForAnInput) {
    open(1);
    leave();
    does([](Fake& fake) { fake.add(Fake::seat); });
    ASSERT_TRUE(awaitCount(Fake::notification, 4)); // two seats, two listeners
    const double before = seconds();
    pass(400ms);
    tellIdle(1);
    EXPECT_GE(seconds(), before + 0.35) << "it counts from its beginning";
    does([](Fake& fake) { fake.remove(Fake::notifier); });
    EXPECT_TRUE(waitUntil([&] { return !idle().canTell(); }));
    EXPECT_EQ(seconds(), 0);
    does([](Fake& fake) { fake.add(Fake::notifier, 1); });
    EXPECT_TRUE(waitUntil([&] { return idle().canTell(); }));
    EXPECT_LT(seconds(), 0.3) << "up to now nobody knew";
}

TEST_F(IdleNotifierTest, TakesAChangeForLifeOnlyWhileAnInhibitorIsHeld) {
    open(1);
    leave();
    idle().noteChange();
    ASSERT_TRUE(awaitCount(Fake::probe, 1));
    idle().noteChange();
    does([](Fake& fake) { fake.tell(Fake::probe, 0, ext_idle_notification_v1_send_idled); });
    EXPECT_TRUE(awaitCount(Fake::probe, 0)) << "answered: none is held";
    const double away = seconds();
    pass(300ms);
    EXPECT_GE(seconds(), away + 0.25) << "a title that changes itself is nobody";

    idle().noteChange();
    ASSERT_TRUE(awaitCount(Fake::probe, 1));
    EXPECT_GE(seconds(), away + 0.25);
    EXPECT_TRUE(waitUntil([&] { return seconds() < 0.4; }, 1000)) << "silenced: one is held";
    EXPECT_TRUE(awaitCount(Fake::probe, 0));
    pass(700ms);
    EXPECT_NEAR(seconds(), 0.5, 0.02) << "silence under it is presence";
    tellIdle();
    pass(200ms);
    EXPECT_NEAR(seconds(), 0.6, 0.15) << "until a new notification tells of its end";
}

TEST_F(IdleNotifierTest, NeedsNoProbeWhereInputAloneIsTold) {
    open(2);
    leave();
    const double away = seconds();
    idle().noteChange();
    pass(300ms);
    EXPECT_EQ(count(Fake::probe), 0);
    EXPECT_GE(seconds(), away + 0.25);
}

TEST_F(IdleNotifierTest, KnowsAnInhibitorsBeginningAndEndOnSway) {
    m_isSway = true;
    open(1);
    leave();
    const double away = seconds();
    m_sway.shows("null", 1, false, true);
    tellResumed();
    EXPECT_GE(seconds(), away) << "that was no input";
    pass(600ms);
    EXPECT_GE(seconds(), away + 0.5) << "and its silence is nobody's";
    m_sway.shows("null", 1, false);
    EXPECT_GE(seconds(), away + 0.5) << "its end neither";
    pass(400ms);
    tellIdle();
    EXPECT_GE(seconds(), away + 0.9);

    m_sway.shows("null", 1, false, true);
    tellResumed();
    EXPECT_GE(seconds(), away + 0.9);
    idle().noteChange();
    EXPECT_LT(seconds(), 0.2) << "somebody switched windows under the film";
    pass(700ms);
    EXPECT_NEAR(seconds(), 0.5, 0.02);
    tellIdle();
    m_sway.says({});
    tellResumed();
    EXPECT_LT(seconds(), 0.45) << "whoever cannot be asked must not make an input nobody's";
}

} // namespace
} // namespace kestu
