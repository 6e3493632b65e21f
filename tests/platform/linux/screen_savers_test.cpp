// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ScreenSavers.h"

#include "support/MockObject.h"
#include "support/PrivateBus.h"

#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <gtest/gtest.h>

#include <csignal>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::MockObject;

const QString gnome = u"org.gnome.ScreenSaver"_s;
const QString mate = u"org.mate.ScreenSaver"_s;

class ScreenSaversTest : public testing::Test {
protected:
    MockObject startSaver(const QString& service) {
        const QString path = u'/' + QString(service).replace(u'.', u'/');
        m_bus.startMock({service, path, service}, service);
        return {m_bus.connect(), service, path};
    }

    static bool becomes(const ScreenSavers& savers, bool active, int milliseconds = 20000) {
        return test::waitUntil([&] { return savers.isActive() == active; }, milliseconds);
    }

    test::PrivateBus m_bus;
};

TEST_F(ScreenSaversTest, KnowsTheSaversOfTheDesktopsAndOutlivesTheirCrash) {
    for (const QString& service : {u"org.freedesktop.ScreenSaver"_s, gnome, u"org.cinnamon.ScreenSaver"_s,
                                   mate, u"org.xfce.ScreenSaver"_s}) {
        SCOPED_TRACE(service.toStdString());
        const MockObject saver = startSaver(service);
        saver.answer(service, u"GetActive"_s, u"b"_s, u"ret = True"_s);
        const ScreenSavers watched(m_bus.connect());
        EXPECT_TRUE(watched.isActive()) << "at start";
        for (const bool active : {false, true}) {
            saver.announce(service, u"ActiveChanged"_s, active);
            EXPECT_TRUE(becomes(watched, active)) << active;
        }
        saver.sendSignal(SIGKILL);
        EXPECT_TRUE(becomes(watched, false)) << "after a crash";
    }
}

TEST_F(ScreenSaversTest, StaysActiveUntilTheLastOfSeveralEnds) {
    const MockObject first = startSaver(gnome);
    const MockObject second = startSaver(mate);
    const ScreenSavers savers(m_bus.connect());
    const QSignalSpy changes(&savers, &ScreenSavers::activeChanged);
    first.announce(gnome, u"ActiveChanged"_s, true);
    ASSERT_TRUE(becomes(savers, true));
    second.announce(mate, u"ActiveChanged"_s, true);
    second.announce(mate, u"ActiveChanged"_s, false);
    first.announce(gnome, u"ActiveChanged"_s, false);
    EXPECT_TRUE(becomes(savers, false));
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(ScreenSaversTest, HearsKdeAtBothPathsAndGnomeFromItsShell) {
    const QString kde = u"org.freedesktop.ScreenSaver"_s;
    QDBusConnection desktop = m_bus.connect();
    ASSERT_TRUE(desktop.registerService(kde));
    ASSERT_TRUE(desktop.registerService(u"org.gnome.Shell.ScreenShield"_s));
    const auto announce = [&](const QString& path, const QString& interface, bool active) {
        auto signal = QDBusMessage::createSignal(path, interface, u"ActiveChanged"_s);
        signal << active;
        desktop.send(signal);
    };
    const ScreenSavers savers(m_bus.connect());
    const QSignalSpy changes(&savers, &ScreenSavers::activeChanged);
    for (const bool active : {true, false}) {
        announce(u"/ScreenSaver"_s, kde, active);
        EXPECT_TRUE(becomes(savers, active)) << "the short path, " << active;
        announce(u"/org/freedesktop/ScreenSaver"_s, kde, active);
    }
    announce(u"/org/freedesktop/ScreenSaver"_s, kde, true);
    EXPECT_TRUE(becomes(savers, true)) << "the long path";
    announce(u"/org/freedesktop/ScreenSaver"_s, kde, false);
    EXPECT_TRUE(becomes(savers, false));
    EXPECT_EQ(changes.count(), 4) << "the same word twice is told once";

    announce(u"/org/gnome/ScreenSaver"_s, gnome, true);
    EXPECT_TRUE(becomes(savers, true));
    // What only passes the shell's words on comes and goes, and the screen stays locked.
    startSaver(gnome).sendSignal(SIGKILL);
    EXPECT_FALSE(becomes(savers, false, 100));
    announce(u"/org/gnome/ScreenSaver"_s, gnome, false);
    EXPECT_TRUE(becomes(savers, false));
}

/// A saver in this very thread: it can answer only while nobody blocks the thread, so never at once.
class UnhurriedSaver final : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        return message.member() == u"GetActive" && connection.send(message.createReply(true));
    }
};

TEST_F(ScreenSaversTest, HearsASlowAnswerAfterTheStartAndAsksOneThatTakesOver) {
    QDBusConnection bus = m_bus.connect();
    UnhurriedSaver saver;
    ASSERT_TRUE(bus.registerVirtualObject(u"/org/gnome/ScreenSaver"_s, &saver));
    ASSERT_TRUE(bus.registerService(gnome));
    QElapsedTimer timer;
    timer.start();
    const ScreenSavers savers(m_bus.connect());
    EXPECT_LT(timer.elapsed(), 300) << "the answers may take 0.15 seconds";
    EXPECT_FALSE(savers.isActive());
    EXPECT_TRUE(becomes(savers, true));

    bus.unregisterService(gnome);
    EXPECT_TRUE(becomes(savers, false));
    bus.registerService(gnome);
    EXPECT_TRUE(becomes(savers, true));
}

} // namespace
} // namespace kestu
