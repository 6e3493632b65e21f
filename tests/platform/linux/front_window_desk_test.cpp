// SPDX-License-Identifier: GPL-3.0-or-later
//
// Window managers that do not name the window in front, that come late and that replace each other, each on a
// display of its own.
#include "platform/linux/X11Desktop.h"

#include "support/Desk.h"
#include "support/PrivateBus.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::Program;
using test::Terminal;
using test::waitUntil;

/// A display without a window manager, for this process and what it starts.
class OwnDisplay final {
public:
    OwnDisplay() {
        m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_server.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"1280x800x24"_s,
                                   u"-nolisten"_s, u"tcp"_s, u"-noreset"_s});
        EXPECT_TRUE(waitUntil([this] { return m_server.canReadLine(); }));
        qputenv("DISPLAY", ":" + m_server.readLine().trimmed());
    }
    ~OwnDisplay() {
        qputenv("DISPLAY", m_former);
        m_server.terminate();
        m_server.waitForFinished();
    }
    OwnDisplay(const OwnDisplay&) = delete;
    OwnDisplay& operator=(const OwnDisplay&) = delete;

private:
    QByteArray m_former = qgetenv("DISPLAY");
    QProcess m_server;
};

class FrontWindowTest : public testing::Test {
protected:
    FrontWindowTest() {
        QObject::connect(&m_desktop, &X11Desktop::activeWindowChanged, [this] { ++m_changes; });
    }

    /// The class of the window in front; empty when none is.
    QString front() {
        const auto application = m_desktop.frontmostApplication();
        return application ? application->bundleId.value_or(u"?"_s) : QString();
    }

    /// Without asking in between: the news alone must come.
    bool isTold(const std::function<void()>& deed) {
        EXPECT_NE(front(), u"?"_s);
        waitUntil([] { return false; }, 100);
        m_changes = 0;
        deed();
        return waitUntil([this] { return m_changes > 0; }, 1500);
    }

    /// twm waits for a click to place a window, and ends without its fonts, unless it is told otherwise.
    [[nodiscard]] QStringList twmArguments() const {
        QFile settings(m_folder.filePath(u"twmrc"_s));
        EXPECT_TRUE(settings.open(QIODevice::WriteOnly));
        settings.write("RandomPlacement\n");
        for (const char* text : {"Title", "Resize", "Menu", "Icon", "IconManager"}) {
            settings.write(text + QByteArray("Font \"fixed\"\n"));
        }
        return {u"-f"_s, settings.fileName()};
    }

    QTemporaryDir m_folder;
    OwnDisplay m_display;
    QString m_why;
    std::unique_ptr<Xcb> m_ours = Xcb::connect(m_why);
    X11Desktop m_desktop{*m_ours, [] { return false; }};
    int m_changes = 0;
};

TEST_F(FrontWindowTest, IsTheFocusedOneUnderAManagerThatNamesNoneAndThePointedOneWithoutAny) {
    const Terminal one(u"One"_s, u"one"_s);
    const Terminal two(u"Two"_s, u"two"_s);
    {
        const Program twm(u"twm"_s, twmArguments(), {{u"LC_ALL"_s, u"C"_s}});
        ASSERT_TRUE(waitUntil([] {
            return test::outputOf(u"xprop"_s, {u"-name"_s, u"two"_s, u"WM_STATE"_s}).contains(u"Normal"_s);
        }));
        one.moveTo(0, 50);
        two.moveTo(640, 400);
        one.pointAt();
        ASSERT_TRUE(waitUntil([this] { return front() == u"One"_s; }, 5000));
        EXPECT_TRUE(isTold([&] { two.pointAt(); }));
        EXPECT_EQ(front(), u"Two"_s);
        EXPECT_LT(m_desktop.frontmostApplication()->inFrontFor.value_or(Seconds{9}).count(), 1);
        EXPECT_TRUE(isTold([] { test::moveMouse(1270, 10); }));
        EXPECT_EQ(front(), QString()) << "nothing gets the keys there";
        EXPECT_EQ(m_desktop.whyUnseen(), QString());
        EXPECT_TRUE(isTold([&] { one.pointAt(); }));
        EXPECT_EQ(front(), u"One"_s);
    }
    EXPECT_TRUE(waitUntil([this] { return front() == u"One"_s; }, 5000)) << "no manager any more";
    EXPECT_TRUE(isTold([&] { two.pointAt(); }));
    EXPECT_EQ(front(), u"Two"_s);
}

TEST_F(FrontWindowTest, IsUnseenWhereNothingTellsUntilAManagerComesThatDoes) {
    xcb_set_input_focus(m_ours->connection(), XCB_INPUT_FOCUS_NONE, XCB_INPUT_FOCUS_NONE, XCB_CURRENT_TIME);
    EXPECT_EQ(m_desktop.whyUnseen(), QString()) << "one may just be starting";
    EXPECT_TRUE(waitUntil([this] { return !m_desktop.whyUnseen().isEmpty(); }, 5000));
    const Program manager(u"xfwm4"_s, {u"--compositor=off"_s});
    EXPECT_TRUE(waitUntil([this] { return m_desktop.whyUnseen().isEmpty(); }, 15000));
    const Terminal one(u"One"_s, u"one"_s);
    EXPECT_TRUE(waitUntil([this] { return front() == u"One"_s; }, 5000));
}

TEST_F(FrontWindowTest, IsNoOtherOneWhileAManagerReplacesAnother) {
    const Program manager(u"xfwm4"_s, {u"--compositor=off"_s});
    const Terminal one(u"One"_s, u"one"_s);
    const Terminal two(u"Two"_s, u"two"_s);
    ASSERT_TRUE(waitUntil(
        [&] {
            one.activate();
            return front() == u"One"_s;
        },
        15000));
    two.moveTo(640, 400);
    two.pointAt();
    one.activate();
    EXPECT_EQ(front(), u"One"_s);
    const Program next(u"xfwm4"_s, {u"--compositor=off"_s, u"--replace"_s});
    QStringList seen;
    const auto look = [&] {
        const QString now = front();
        if (!now.isEmpty() && !seen.contains(now)) {
            seen << now;
        }
        EXPECT_EQ(m_desktop.whyUnseen(), QString());
        return !manager.isRunning();
    };
    EXPECT_TRUE(waitUntil(look, 15000));
    waitUntil([&] { return look() && false; }, 1500);
    EXPECT_EQ(seen, QStringList(u"One"_s));
    EXPECT_EQ(front(), u"One"_s);
}

} // namespace
} // namespace kestu
