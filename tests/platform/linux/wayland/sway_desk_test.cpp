// SPDX-License-Identifier: GPL-3.0-or-later
//
// On a real sway: everything that a session of it tells.
#include "platform/linux/wayland/WaylandSession.h"

#include "support/PrivateBus.h"
#include "support/Program.h"

#include <QDBusConnection>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <memory>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::waitUntil;

void tellSway(const QStringList& command) {
    test::outputOf(u"swaymsg"_s, command);
}

/// A terminal whose window stays as it is.
class Foot final {
public:
    Foot(const QString& appId, const QString& title)
        : m_program(u"foot"_s, {u"--app-id"_s, appId, u"--title"_s, title, u"sleep"_s, u"600"_s}) {}

    [[nodiscard]] qint64 pid() const { return m_program.pid(); }

private:
    test::Program m_program;
};

class SwayDeskTest : public testing::Test {
protected:
    /// "ID TITLE" of what is in front.
    QString front() {
        const auto application = m_session.workspace().frontmostApplication();
        return application ? application->bundleId.value_or(u"?"_s) + u' ' +
                                 m_session.workspace().focusedWindowTitle(application->processId)
                           : u"none"_s;
    }

    std::int64_t process() {
        const auto application = m_session.workspace().frontmostApplication();
        return application ? application->processId : 0;
    }

    bool awaitFront(const QString& wanted) {
        const bool isThere = waitUntil([&] { return front() == wanted; });
        EXPECT_TRUE(isThere) << front().toStdString();
        return isThere;
    }

    bool m_isHeld = false;
    WaylandSession m_session{QDBusConnection(u"none"_s), [this] { return m_isHeld; }};
};

TEST_F(SwayDeskTest, FollowsTheWindowInFrontItsTitleAndItsProcess) {
    EXPECT_EQ(m_session.source(), u"wlr-foreign-toplevel"_s);
    EXPECT_EQ(m_session.windows().kind, Ability::Kind::yes);
    EXPECT_EQ(front(), u"none"_s);
    int switches = 0;
    QObject::connect(&m_session, &DesktopSession::activated, [&] { ++switches; });

    const Foot a(u"org.example.A"_s, u"窓 A"_s);
    ASSERT_TRUE(awaitFront(u"org.example.A 窓 A"_s));
    EXPECT_EQ(process(), a.pid());
    const Foot b(u"org.example.B"_s, u"窓 B"_s);
    ASSERT_TRUE(awaitFront(u"org.example.B 窓 B"_s));
    EXPECT_EQ(process(), b.pid());

    for (int turn = 0; turn < 20; ++turn) {
        const bool isA = turn % 2 == 0;
        switches = 0;
        tellSway({isA ? u"[app_id=org.example.A] focus"_s : u"[app_id=org.example.B] focus"_s});
        ASSERT_TRUE(waitUntil([&] { return switches > 0; }));
        EXPECT_EQ(front(), isA ? u"org.example.A 窓 A"_s : u"org.example.B 窓 B"_s);
        EXPECT_EQ(process(), isA ? a.pid() : b.pid());
    }
    m_isHeld = true;
    EXPECT_EQ(front(), u"none"_s);
    m_isHeld = false;
    tellSway({u"workspace 9"_s});
    EXPECT_TRUE(awaitFront(u"none"_s)) << "an empty workspace";
    tellSway({u"workspace 1"_s});
    EXPECT_TRUE(awaitFront(u"org.example.B 窓 B"_s));
}

TEST_F(SwayDeskTest, HearsATitleThatChanges) {
    int titles = 0;
    QObject::connect(&m_session, &DesktopSession::titleChanged, [&] { ++titles; });
    const QTemporaryDir folder;
    const QString pipe = folder.filePath(u"pipe"_s);
    ASSERT_EQ(::mkfifo(pipe.toUtf8().constData(), 0600), 0);
    auto terminal = std::make_unique<test::Program>(
        u"foot"_s,
        QStringList{u"--app-id"_s, u"org.example.T"_s, u"sh"_s, u"-c"_s,
                    u"printf '\\033]2;前\\007'; read -r line <\"$0\"; printf '\\033]2;後\\007'; sleep 600"_s,
                    pipe});
    ASSERT_TRUE(awaitFront(u"org.example.T 前"_s));
    titles = 0;
    QFile into(pipe);
    ASSERT_TRUE(into.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    into.write("\n");
    EXPECT_TRUE(waitUntil([&] { return titles > 0; })) << "without a question";
    EXPECT_TRUE(awaitFront(u"org.example.T 後"_s));
    terminal.reset();
    EXPECT_TRUE(awaitFront(u"none"_s));
}

TEST_F(SwayDeskTest, TellsIdlenessInputAndInhibitors) {
    EXPECT_EQ(m_session.idle().kind, Ability::Kind::yes);
    const Foot player(u"org.example.Player"_s, u"film"_s);
    ASSERT_TRUE(awaitFront(u"org.example.Player film"_s));
    const auto seconds = [&] { return m_session.userInput().secondsSinceLastInput().count(); };
    test::outputOf(u"wtype"_s, {u"-k"_s, u"a"_s});
    QElapsedTimer sinceKey;
    sinceKey.start();
    ASSERT_TRUE(waitUntil([&] { return seconds() > 10.7; }, 20000));
    EXPECT_NEAR(seconds(), static_cast<double>(sinceKey.elapsed()) / 1000, 0.3);

    const auto keeps = [&] {
        return m_session.keepsDisplayOn(*m_session.workspace().frontmostApplication(), QDeadlineTimer(300));
    };
    EXPECT_EQ(keeps(), false);
    tellSway({u"[app_id=org.example.Player] inhibit_idle open"_s});
    EXPECT_EQ(keeps(), true);
    const double away = seconds();
    EXPECT_GE(away, 10.7) << "an inhibitor's beginning is no input";
    tellSway({u"[app_id=org.example.Player] inhibit_idle none"_s});
    EXPECT_EQ(keeps(), false);
    EXPECT_GE(seconds(), away);
    ASSERT_TRUE(waitUntil([&] { return seconds() > away + 11; }, 20000)) << "nor is its end";
    test::outputOf(u"wtype"_s, {u"-k"_s, u"a"_s});
    EXPECT_TRUE(waitUntil([&] { return seconds() < 1; }, 1000));
}

TEST_F(SwayDeskTest, TellsWhenTheDisplayIsOff) {
    DisplayPower& power = m_session.displayPower();
    ASSERT_EQ(power.state(), DisplayPower::State::on);
    // sway 1.7 without a screen cannot switch its output off, and says so by leaving it on.
    tellSway({u"output"_s, u"HEADLESS-1"_s, u"dpms"_s, u"off"_s});
    const QString outputs = test::outputOf(u"swaymsg"_s, {u"-r"_s, u"-t"_s, u"get_outputs"_s});
    if (!outputs.contains(u"\"dpms\": false"_s)) {
        GTEST_SKIP() << "this sway leaves an output without a screen on";
    }
    EXPECT_TRUE(waitUntil([&] { return power.state() == DisplayPower::State::asleep; }));
    tellSway({u"output"_s, u"HEADLESS-1"_s, u"dpms"_s, u"on"_s});
    EXPECT_TRUE(waitUntil([&] { return power.state() == DisplayPower::State::on; }));
}

} // namespace
} // namespace kestu
