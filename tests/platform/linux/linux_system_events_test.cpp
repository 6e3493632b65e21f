// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LinuxSystemEvents.h"

#include "support/MockLogin.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

#include <csignal>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using State = DisplayPower::State;
using test::waitUntil;

const QString saver = u"org.gnome.ScreenSaver"_s;

class FakeDisplays final : public DisplayPower {
public:
    State now = State::unknown;
    int asked = 0;

    State state() override {
        ++asked;
        return now;
    }
};

class LinuxSystemEventsTest : public testing::Test {
protected:
    void startServices() {
        m_login.start();
        m_bus.startMock({u"--template"_s, u"gnome_screensaver"_s}, saver);
    }

    void setSaver(bool active) { m_saver.call(saver, u"SetActive"_s, {active}); }

    void listenTo(const SystemEvents& events) {
        const std::pair<SystemSignal, QString> signalNames[] = {
            {&SystemEvents::willSleep, u"sleep"_s},
            {&SystemEvents::didWake, u"wake"_s},
            {&SystemEvents::screensDidSleep, u"displays off"_s},
            {&SystemEvents::screensDidWake, u"displays on"_s},
            {&SystemEvents::screenLocked, u"lock"_s},
            {&SystemEvents::screenUnlocked, u"unlock"_s},
            {&SystemEvents::applicationActivated, u"activated"_s},
        };
        for (const auto& [signal, name] : signalNames) {
            QObject::connect(&events, signal, [this, told = name] { m_heard << told; });
        }
    }

    /// Everything that was told since the last time, in order.
    void expectToHear(const QStringList& expected) {
        waitUntil([&] { return m_heard == expected; });
        EXPECT_EQ(m_heard.join(u", "_s).toStdString(), expected.join(u", "_s).toStdString());
        m_heard.clear();
    }

    QStringList m_heard;
    FakeDisplays m_displays;
    test::PrivateBus m_bus;
    QDBusConnection m_connection = m_bus.connect();
    test::MockLogin m_login{m_bus};
    test::MockObject m_saver{m_connection, saver, u"/org/gnome/ScreenSaver"_s};
    const QDBusConnection m_nowhere{u"nowhere"_s};
};

TEST_F(LinuxSystemEventsTest, EveryBeginIsToldAndOnlyTheEndThatLeavesNoOtherReason) {
    startServices();
    m_login.setLocked(u"auto"_s, true);
    m_displays.now = State::on;
    LinuxSystemEvents events(m_connection, m_connection, m_displays, 1ms);
    listenTo(events);
    EXPECT_TRUE(events.isHeld()) << "locked before the start";

    // The hint and the saver are one lock.
    setSaver(true);
    m_login.setLocked(u"auto"_s, false);
    setSaver(false);
    expectToHear({u"unlock"_s});
    m_login.announceSleep(true);
    m_login.announceSleep(false);
    expectToHear({u"sleep"_s, u"wake"_s});

    // A machine that wakes behind its locker, and shows the locker on displays that go out.
    m_login.announceSleep(true);
    setSaver(true);
    m_login.announceSleep(false);
    expectToHear({u"sleep"_s, u"lock"_s});
    EXPECT_TRUE(events.isHeld());
    m_displays.now = State::asleep;
    expectToHear({u"displays off"_s});
    m_displays.now = State::on;
    const int asked = m_displays.asked;
    ASSERT_TRUE(waitUntil([&] { return m_displays.asked > asked; }));
    setSaver(false);
    expectToHear({u"unlock"_s});
    EXPECT_FALSE(events.isHeld());
}

TEST_F(LinuxSystemEventsTest, AsksHowThingsStandAndBelievesTheAnswerMoreThanWhatItHeard) {
    startServices();
    LinuxSystemEvents events(m_connection, m_connection, m_displays, 1h);
    listenTo(events);
    m_login.announceSleep(true);
    expectToHear({u"sleep"_s});
    EXPECT_TRUE(events.isHeld());
    EXPECT_FALSE(events.isHeldNow()) << "a wake that nobody announced";
    EXPECT_FALSE(events.isHeld());
    m_login.announceSleep(true);
    m_login.announceSleep(false);
    expectToHear({u"sleep"_s, u"wake"_s});

    const auto setSaverQuietly = [&](const QString& isActive) {
        m_saver.answer(saver, u"GetActive"_s, u"b"_s, u"ret = "_s + isActive);
    };
    setSaverQuietly(u"True"_s);
    EXPECT_TRUE(events.isHeldNow()) << "a lock that nobody announced";
    expectToHear({});
    m_saver.announce(saver, u"ActiveChanged"_s, false);
    expectToHear({u"unlock"_s});

    setSaverQuietly(u"False"_s);
    m_displays.now = State::asleep;
    EXPECT_TRUE(events.isHeldNow());
    m_displays.now = State::on;
    EXPECT_FALSE(events.isHeldNow());
    expectToHear({});
}

TEST_F(LinuxSystemEventsTest, PollsTheDisplaysOnlyWhereTheyCanBeKnown) {
    const LinuxSystemEvents blind(m_nowhere, m_nowhere, m_displays, 1ms);
    m_displays.now = State::asleep;
    waitUntil([] { return false; }, 50);
    EXPECT_EQ(m_displays.asked, 1);
    EXPECT_FALSE(blind.isHeld());

    LinuxSystemEvents events(m_nowhere, m_nowhere, m_displays, 1ms);
    listenTo(events);
    EXPECT_TRUE(events.isHeld());
    m_displays.now = State::on;
    expectToHear({u"displays on"_s});
    events.noteActivation();
    expectToHear({u"activated"_s});
}

TEST_F(LinuxSystemEventsTest, StartsInTimeWhateverIsMissingOrHangs) {
    startServices();
    m_login.manager().sendSignal(SIGSTOP);
    m_saver.sendSignal(SIGSTOP);
    test::PrivateBus emptyBus;
    const std::pair<const char*, QDBusConnection> desks[] = {
        {"no bus", m_nowhere},
        {"an empty bus", emptyBus.connect()},
        {"services that hang", m_connection},
    };
    for (const auto& [name, bus] : desks) {
        QElapsedTimer timer;
        timer.start();
        LinuxSystemEvents events(bus, bus, m_displays);
        EXPECT_LT(timer.restart(), 450) << name << ": the start may wait 0.3 seconds";
        EXPECT_FALSE(events.isHeld()) << name;
        EXPECT_FALSE(events.isHeldNow()) << name;
        EXPECT_LT(timer.elapsed(), 450) << name << ": so may each question";
    }
}

} // namespace
} // namespace kestu
