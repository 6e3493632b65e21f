// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/MutterDisplayPower.h"
#include "platform/linux/wayland/MutterIdle.h"

#include "support/MockObject.h"
#include "support/PrivateBus.h"

#include <QDBusVariant>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <gtest/gtest.h>

#include <csignal>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::MockObject;
using test::waitUntil;
using State = DisplayPower::State;

const QString idleMonitor = u"org.gnome.Mutter.IdleMonitor"_s;
const QString idlePath = u"/org/gnome/Mutter/IdleMonitor/Core"_s;
const QString displayConfig = u"org.gnome.Mutter.DisplayConfig"_s;
const QString displayPath = u"/org/gnome/Mutter/DisplayConfig"_s;
const QString mockInterface = u"org.freedesktop.DBus.Mock"_s;

TEST(MutterIdleTest, AsksEachTimeAndTakesNoAnswerForInput) {
    test::PrivateBus bus;
    EXPECT_EQ(MutterIdle::open(bus.connect()), nullptr);
    bus.startMock({idleMonitor, idlePath, idleMonitor}, idleMonitor);
    const MockObject monitor(bus.connect(), idleMonitor, idlePath);
    const auto idle = MutterIdle::open(bus.connect());
    ASSERT_NE(idle, nullptr);
    EXPECT_EQ(idle->secondsSinceLastInput(), Seconds{0}) << "it has no such method";
    for (const auto& [code, seconds] : {std::pair{u"ret = 2441"_s, 2.441}, std::pair{u"ret = 7"_s, 0.007}}) {
        monitor.answer(idleMonitor, u"GetIdletime"_s, u"t"_s, code);
        EXPECT_DOUBLE_EQ(idle->secondsSinceLastInput().count(), seconds);
    }
    monitor.answer(idleMonitor, u"GetIdletime"_s, u"s"_s, u"ret = 'long'"_s);
    EXPECT_EQ(idle->secondsSinceLastInput(), Seconds{0});

    monitor.answer(idleMonitor, u"GetIdletime"_s, u"t"_s, u"ret = 9000"_s);
    monitor.sendSignal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    for (int tick = 0; tick < 20; ++tick) {
        EXPECT_EQ(idle->secondsSinceLastInput(), Seconds{0});
    }
    EXPECT_LT(timer.elapsed(), 300) << "a shell that hangs costs more than one wait";
    monitor.sendSignal(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return idle->secondsSinceLastInput() == Seconds{9}; }));
    monitor.sendSignal(SIGKILL);
    EXPECT_EQ(idle->secondsSinceLastInput(), Seconds{0});
}

void setMode(const MockObject& config, int mode) {
    config.call(u"org.freedesktop.DBus.Properties"_s, u"Set"_s,
                {displayConfig, u"PowerSaveMode"_s, QVariant::fromValue(QDBusVariant(mode))});
}

MockObject startDisplays(test::PrivateBus& bus, int mode) {
    bus.startMock({displayConfig, displayPath, displayConfig}, displayConfig);
    MockObject config(bus.connect(), displayConfig, displayPath);
    config.call(mockInterface, u"AddProperty"_s,
                {displayConfig, u"PowerSaveMode"_s, QVariant::fromValue(QDBusVariant(mode))});
    return config;
}

TEST(MutterDisplayPowerTest, KnowsTheModeAtTheStartAndHearsEachChange) {
    test::PrivateBus bus;
    EXPECT_EQ(MutterDisplayPower::open(bus.connect()), nullptr);
    const MockObject config = startDisplays(bus, 3);
    const auto power = MutterDisplayPower::open(bus.connect());
    ASSERT_NE(power, nullptr);
    EXPECT_TRUE(power->tellsChanges());
    EXPECT_EQ(power->state(), State::asleep);
    const QSignalSpy changes(power.get(), &DisplayPower::changed);
    for (const auto& [mode, state] :
         {std::pair{0, State::on}, std::pair{1, State::asleep}, std::pair{-1, State::unknown},
          std::pair{2, State::asleep}, std::pair{7, State::unknown}, std::pair{3, State::asleep}}) {
        setMode(config, mode);
        EXPECT_TRUE(waitUntil([&, wanted = state] { return power->state() == wanted; }, 2000)) << mode;
    }
    EXPECT_EQ(changes.count(), 6);
    config.sendSignal(SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return power->state() == State::unknown; }))
        << "recording would be held for ever";
    startDisplays(bus, 0);
    setMode(MockObject(bus.connect(), displayConfig, displayPath), 3);
    EXPECT_TRUE(waitUntil([&] { return power->state() == State::asleep; }));
}

} // namespace
} // namespace kestu
