// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/WaylandConnection.h"

#include "platform/linux/wayland/Compositor.h"

#include <QElapsedTimer>
#include <QSignalSpy>

namespace kestu {
namespace {

using namespace std::chrono_literals;
using test::waitUntil;

class WaylandConnectionTest : public CompositorTest {
protected:
    QSignalSpy m_added{&m_connection, &WaylandConnection::globalAdded};
    QSignalSpy m_removed{&m_connection, &WaylandConnection::globalRemoved};
    QSignalSpy m_dispatched{&m_connection, &WaylandConnection::dispatched};
    QSignalSpy m_broken{&m_connection, &WaylandConnection::broken};
};

TEST_F(WaylandConnectionTest, KnowsWhatIsOfferedWhenItIsOpen) {
    start({{Fake::seat, 1}, {Fake::notifier, 2}});
    m_connection.open();
    EXPECT_FALSE(m_connection.isBroken());
    EXPECT_EQ(m_added.size(), 2);
    m_compositor->does([](Fake& fake) {
        fake.add(Fake::output);
        fake.remove(Fake::seat);
    });
    EXPECT_TRUE(waitUntil([&] { return m_removed.size() == 1; })) << "told by the event loop";
    EXPECT_EQ(m_added.size(), 3);
}

TEST_F(WaylandConnectionTest, DoesNotWaitForACompositorThatHangs) {
    start({{Fake::seat, 1}});
    m_compositor->hang();
    QElapsedTimer timer;
    timer.start();
    m_connection.open();
    EXPECT_GE(timer.elapsed(), 290);
    EXPECT_LT(timer.elapsed(), 450);
    EXPECT_FALSE(m_connection.isBroken());
    EXPECT_EQ(m_added.size(), 0);
    m_compositor->wake();
    EXPECT_TRUE(waitUntil([&] { return m_added.size() == 1; })) << "what comes later is taken then";
}

TEST_F(WaylandConnectionTest, FindsACompositorThatComesAndComesBack) {
    m_connection.open();
    EXPECT_TRUE(m_connection.isBroken());
    EXPECT_EQ(m_broken.size(), 0) << "there was none";
    for (int time = 1; time <= 2; ++time) {
        start({{Fake::seat, 1}});
        ASSERT_TRUE(waitUntil([&] { return m_added.size() == time; }));
        m_compositor.reset();
        ASSERT_TRUE(waitUntil([&] { return m_connection.isBroken(); }));
        EXPECT_EQ(m_broken.size(), time) << "said once";
    }
    const auto told = m_dispatched.size();
    waitUntil([] { return false; }, 100);
    EXPECT_EQ(m_dispatched.size(), told);
    EXPECT_EQ(m_broken.size(), 2);
}

TEST_F(WaylandConnectionTest, HasNoSocketInASessionOfNoCompositor) {
    const QByteArray display = qgetenv("WAYLAND_DISPLAY");
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    const struct {
        const char* display;
        const char* folder;
        QString socket;
    } rows[] = {{"wayland-7", "/run/user/7", QStringLiteral("/run/user/7/wayland-7")},
                {"/tmp/own", "/run/user/7", QStringLiteral("/tmp/own")},
                {"wayland-7", "", QString()},
                {nullptr, "/run/user/7", QStringLiteral("/run/user/7/wayland-0")}};
    for (const auto& row : rows) {
        row.display ? qputenv("WAYLAND_DISPLAY", row.display) : qunsetenv("WAYLAND_DISPLAY");
        qputenv("XDG_RUNTIME_DIR", row.folder);
        EXPECT_EQ(WaylandConnection::sessionSocket(), row.socket);
    }
    display.isNull() ? qunsetenv("WAYLAND_DISPLAY") : qputenv("WAYLAND_DISPLAY", display);
    folder.isNull() ? qunsetenv("XDG_RUNTIME_DIR") : qputenv("XDG_RUNTIME_DIR", folder);
}

} // namespace
} // namespace kestu
