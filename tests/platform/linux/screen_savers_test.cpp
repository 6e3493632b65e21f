// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ScreenSavers.h"

#include "support/MockObject.h"
#include "support/PrivateBus.h"

#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <csignal>
#include <vector>

namespace kestu {

namespace {

using test::MockObject;
using test::PrivateBus;
using test::waitUntil;

const QString changed = QStringLiteral("ActiveChanged");
const QString gnome = QStringLiteral("org.gnome.ScreenSaver");
const QString gnomePath = QStringLiteral("/org/gnome/ScreenSaver");

/// A saver in this very thread: it can answer only while nobody blocks the thread, so never at once.
class UnhurriedSaver final : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        return message.member() == u"GetActive" && connection.send(message.createReply(true));
    }
};

} // namespace

TEST(ScreenSavers, KnowsTheSaversOfTheDesktopsAndOutlivesTheirCrash) {
    struct Saver {
        QString service;
        QString path;
    };
    const std::vector<Saver> savers{
        {QStringLiteral("org.freedesktop.ScreenSaver"), QStringLiteral("/org/freedesktop/ScreenSaver")},
        {gnome, gnomePath},
        {QStringLiteral("org.cinnamon.ScreenSaver"), QStringLiteral("/org/cinnamon/ScreenSaver")},
        {QStringLiteral("org.mate.ScreenSaver"), QStringLiteral("/org/mate/ScreenSaver")},
        {QStringLiteral("org.xfce.ScreenSaver"), QStringLiteral("/org/xfce/ScreenSaver")},
    };
    PrivateBus bus;
    for (const Saver& saver : savers) {
        SCOPED_TRACE(saver.service.toStdString());
        bus.startMock({saver.service, saver.path, saver.service}, saver.service);
        const MockObject mock(bus.connect(), saver.service, saver.path);
        mock.answer(saver.service, QStringLiteral("GetActive"), QString(), QStringLiteral("b"),
                    QStringLiteral("ret = True"));
        ScreenSavers watched(bus.connect());
        EXPECT_TRUE(watched.isActive()) << "at start";

        mock.announce(saver.service, changed, false);
        EXPECT_TRUE(waitUntil([&] { return !watched.isActive(); }));
        mock.announce(saver.service, changed, true);
        EXPECT_TRUE(waitUntil([&] { return watched.isActive(); }));
        mock.sendSignal(SIGKILL);
        EXPECT_TRUE(waitUntil([&] { return !watched.isActive(); })) << "after a crash";
    }
}

TEST(ScreenSavers, StaysActiveUntilTheLastOfSeveralEnds) {
    const QString mate = QStringLiteral("org.mate.ScreenSaver");
    const QString matePath = QStringLiteral("/org/mate/ScreenSaver");
    PrivateBus bus;
    bus.startMock({gnome, gnomePath, gnome}, gnome);
    bus.startMock({mate, matePath, mate}, mate);
    const MockObject first(bus.connect(), gnome, gnomePath);
    const MockObject second(bus.connect(), mate, matePath);
    ScreenSavers savers(bus.connect());
    const QSignalSpy changes(&savers, &ScreenSavers::activeChanged);

    first.announce(gnome, changed, true);
    ASSERT_TRUE(waitUntil([&] { return savers.isActive(); }));
    second.announce(mate, changed, true);
    second.announce(mate, changed, false);
    first.announce(gnome, changed, false);
    EXPECT_TRUE(waitUntil([&] { return !savers.isActive(); }));
    EXPECT_EQ(changes.count(), 2);
}

TEST(ScreenSavers, HearsASlowAnswerAfterTheStartAndAsksOneThatTakesOver) {
    PrivateBus bus;
    QDBusConnection saverBus = bus.connect();
    UnhurriedSaver saver;
    ASSERT_TRUE(saverBus.registerVirtualObject(gnomePath, &saver));
    ASSERT_TRUE(saverBus.registerService(gnome));
    QElapsedTimer timer;
    timer.start();
    ScreenSavers savers(bus.connect());
    EXPECT_LT(timer.elapsed(), 300);
    EXPECT_FALSE(savers.isActive());
    EXPECT_TRUE(waitUntil([&] { return savers.isActive(); }));

    saverBus.unregisterService(gnome);
    EXPECT_TRUE(waitUntil([&] { return !savers.isActive(); }));
    saverBus.registerService(gnome);
    EXPECT_TRUE(waitUntil([&] { return savers.isActive(); }));
}

} // namespace kestu
