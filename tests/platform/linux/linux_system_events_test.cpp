// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LinuxSystemEvents.h"

#include "support/MockObject.h"
#include "support/PrivateBus.h"

#include <QElapsedTimer>
#include <QStringList>

#include <gtest/gtest.h>

#include <csignal>

namespace kestu {

namespace {

using namespace std::chrono_literals;
using test::MockObject;
using test::waitUntil;

const QString login = QStringLiteral("org.freedesktop.login1");
const QString loginPath = QStringLiteral("/org/freedesktop/login1");
const QString loginInterface = QStringLiteral("org.freedesktop.login1.Manager");
const QString saver = QStringLiteral("org.gnome.ScreenSaver");
const QString saverPath = QStringLiteral("/org/gnome/ScreenSaver");

class FakeDisplays final : public DisplayPower {
public:
    State now = State::unknown;
    int asked = 0;

    State state() override {
        ++asked;
        return now;
    }
};

/// Writes down what is told, in order.
class Listener final {
public:
    explicit Listener(SystemEvents& events) {
        hear(events, &SystemEvents::willSleep, QStringLiteral("sleep"));
        hear(events, &SystemEvents::didWake, QStringLiteral("wake"));
        hear(events, &SystemEvents::screensDidSleep, QStringLiteral("displays off"));
        hear(events, &SystemEvents::screensDidWake, QStringLiteral("displays on"));
        hear(events, &SystemEvents::screenLocked, QStringLiteral("lock"));
        hear(events, &SystemEvents::screenUnlocked, QStringLiteral("unlock"));
        hear(events, &SystemEvents::applicationActivated, QStringLiteral("activated"));
    }

    bool hears(const QStringList& expected) const {
        return waitUntil([&] { return m_heard == expected; });
    }

    [[nodiscard]] std::string heard() const { return m_heard.join(QStringLiteral(", ")).toStdString(); }

private:
    void hear(SystemEvents& events, SystemSignal signal, const QString& name) {
        QObject::connect(&events, signal, &m_context, [this, name] { m_heard << name; });
    }

    QObject m_context;
    QStringList m_heard;
};

class LinuxSystemEventsTest : public testing::Test {
protected:
    void startServices() {
        m_bus.startMock({QStringLiteral("--template"), QStringLiteral("logind")}, login);
        m_bus.startMock({QStringLiteral("--template"), QStringLiteral("gnome_screensaver")}, saver);
    }

    void announceSleep(bool starting) {
        m_login.announce(loginInterface, QStringLiteral("PrepareForSleep"), starting);
    }

    void setSaver(bool active) { m_saver.call(saver, QStringLiteral("SetActive"), {active}); }

    FakeDisplays m_displays;
    test::PrivateBus m_bus;
    QDBusConnection m_connection = m_bus.connect();
    MockObject m_login{m_connection, login, loginPath};
    MockObject m_saver{m_connection, saver, saverPath};
};

} // namespace

TEST_F(LinuxSystemEventsTest, AMachineThatWakesBehindItsLockerIsToldOnlyAtTheUnlock) {
    startServices();
    LinuxSystemEvents events(m_connection, m_connection, m_displays);
    const Listener listener(events);
    EXPECT_FALSE(events.isHeld());

    announceSleep(true);
    EXPECT_TRUE(listener.hears({QStringLiteral("sleep")})) << listener.heard();
    setSaver(true);
    announceSleep(false);
    setSaver(false);
    EXPECT_TRUE(listener.hears({QStringLiteral("sleep"), QStringLiteral("lock"), QStringLiteral("unlock")}))
        << listener.heard();
    EXPECT_FALSE(events.isHeld());
}

TEST_F(LinuxSystemEventsTest, TheHintAndTheSaverAreOneLock) {
    startServices();
    const auto mock = QStringLiteral("org.freedesktop.DBus.Mock");
    constexpr uint user = 1000;
    m_login.call(mock, QStringLiteral("AddSession"),
                 {QStringLiteral("auto"), QStringLiteral("seat0"), user, QStringLiteral("someone"), true});
    const MockObject session(m_connection, login, QStringLiteral("/org/freedesktop/login1/session/auto"));
    const auto setHint = [&](bool locked) {
        session.call(QStringLiteral("org.freedesktop.login1.Session"), QStringLiteral("SetLockedHint"),
                     {locked});
    };
    setHint(true);
    LinuxSystemEvents events(m_connection, m_connection, m_displays);
    const Listener listener(events);
    EXPECT_TRUE(events.isHeld()) << "locked before the start";

    setSaver(true);
    setHint(false);
    setSaver(false);
    EXPECT_TRUE(listener.hears({QStringLiteral("unlock")})) << listener.heard();
}

TEST_F(LinuxSystemEventsTest, PollsTheDisplaysOnlyWhereTheyCanBeKnown) {
    const QDBusConnection nowhere(QStringLiteral("nowhere"));
    LinuxSystemEvents blind(nowhere, nowhere, m_displays, 1ms);
    m_displays.now = DisplayPower::State::asleep;
    waitUntil([] { return false; }, 50);
    EXPECT_EQ(m_displays.asked, 1);
    EXPECT_FALSE(blind.isHeld());

    LinuxSystemEvents events(nowhere, nowhere, m_displays, 1ms);
    const Listener listener(events);
    EXPECT_TRUE(events.isHeld());
    m_displays.now = DisplayPower::State::on;
    EXPECT_TRUE(listener.hears({QStringLiteral("displays on")})) << listener.heard();
    m_displays.now = DisplayPower::State::asleep;
    EXPECT_TRUE(listener.hears({QStringLiteral("displays on"), QStringLiteral("displays off")}))
        << listener.heard();
    events.noteActivation();
    EXPECT_TRUE(listener.hears(
        {QStringLiteral("displays on"), QStringLiteral("displays off"), QStringLiteral("activated")}));
}

TEST_F(LinuxSystemEventsTest, StartsInTimeWhateverIsMissingOrHangs) {
    startServices();
    m_login.sendSignal(SIGSTOP);
    m_saver.sendSignal(SIGSTOP);
    test::PrivateBus emptyBus;
    struct Desk {
        const char* name;
        QDBusConnection bus;
    };
    const QDBusConnection nowhere(QStringLiteral("nowhere"));
    for (const Desk& desk : {Desk{"no bus", nowhere}, Desk{"an empty bus", emptyBus.connect()},
                             Desk{"services that hang", m_connection}}) {
        QElapsedTimer timer;
        timer.start();
        const LinuxSystemEvents events(desk.bus, desk.bus, m_displays);
        EXPECT_LT(timer.elapsed(), 400) << desk.name << ": the start may wait 0.3 seconds";
        EXPECT_FALSE(events.isHeld()) << desk.name;
    }
}

} // namespace kestu
