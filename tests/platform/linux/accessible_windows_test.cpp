// SPDX-License-Identifier: GPL-3.0-or-later
//
// The partial mode against a made-up accessibility bus.
#include "platform/linux/wayland/AccessibleWindows.h"

#include "support/AccessibleDesk.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <QElapsedTimer>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <csignal>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::waitUntil;

class AccessibleWindowsTest : public testing::Test {
protected:
    void begin() {
        m_windows.setNeeded(true);
        ASSERT_TRUE(waitUntil([this] { return m_windows.ability().kind == Ability::Kind::partly; }));
    }

    /// "PID TITLE" of the window in front; empty when none is known.
    QString front() {
        const auto seen = m_windows.front();
        return seen ? u"%1 %2"_s.arg(seen->facts.processId).arg(seen->title) : QString();
    }
    bool comesToFront(pid_t program, const QString& title) {
        return waitUntil([&] { return front() == u"%1 %2"_s.arg(program).arg(title); }, 5000);
    }
    bool nothingIsInFront() {
        return waitUntil([this] { return front().isEmpty(); }, 5000);
    }

    /// The window marked in that description has come to the front, or none has.
    void activate(pid_t program, const QString& file, const char* windows) {
        m_desk.describe(file, windows);
        kill(program, SIGUSR1);
    }

    [[nodiscard]] qsizetype connections() {
        QDBusConnection bus = m_desk.accessibility->connect();
        const QStringList names = bus.interface()->registeredServiceNames();
        const qsizetype count = names.filter(QRegularExpression(u"^:"_s)).size();
        QDBusConnection::disconnectFromBus(bus.name());
        return count;
    }

    test::AccessibleDesk m_desk;
    AccessibleWindows m_windows{m_desk.session.connect(), 0ms};
};

TEST_F(AccessibleWindowsTest, TellTheOneThatIsActiveAndNeverAnother) {
    m_desk.startDesk();
    const pid_t editor = m_desk.startProgram(u"editor"_s, "編集\n設定");
    const pid_t mail = m_desk.startProgram(u"mail"_s, "受信箱");
    begin();
    EXPECT_EQ(front(), QString()) << "none says that it is in front";

    const Moment before = Moment::clock::now();
    activate(editor, u"editor"_s, "編集\n*設定");
    ASSERT_TRUE(comesToFront(editor, u"設定"_s));
    EXPECT_GE(m_windows.front()->since, before);

    activate(mail, u"mail"_s, "*受信箱");
    EXPECT_TRUE(nothingIsInFront()) << "two say so: one of them is wrong";
    activate(editor, u"editor"_s, "編集\n設定");
    ASSERT_TRUE(comesToFront(mail, u"受信箱"_s));

    activate(mail, u"mail"_s, "受信箱");
    EXPECT_TRUE(nothingIsInFront()) << "what is there now is not on the bus";
}

TEST_F(AccessibleWindowsTest, LeaveOutOurselvesAndTheShell) {
    m_desk.startDesk();
    const pid_t shell = m_desk.startProgram(u"shell"_s, "*Main stage", u"org.gnome.Shell"_s);
    const pid_t mail = m_desk.startProgram(u"mail"_s, "*受信箱");
    test::MockObject(m_desk.accessibility->connect(), u"org.a11y.atspi.Registry"_s,
                     u"/org/a11y/atspi/registry"_s)
        .call(u"org.a11y.atspi.Registry"_s, u"Embed"_s,
              {QVariant::fromValue(QDBusObjectPath(u"/org/a11y/atspi/accessible/root"_s))});
    begin();
    EXPECT_TRUE(comesToFront(mail, u"受信箱"_s));
    kill(shell, SIGUSR1);
    waitUntil([] { return false; }, 300);
    EXPECT_EQ(front(), u"%1 受信箱"_s.arg(mail));
}

TEST_F(AccessibleWindowsTest, FollowTheTitleAndTheEndOfTheWindowInFront) {
    m_desk.startDesk();
    const pid_t mail = m_desk.startProgram(u"mail"_s, "*受信箱");
    begin();
    ASSERT_TRUE(comesToFront(mail, u"受信箱"_s));
    const Moment since = m_windows.front()->since;
    int told = 0;
    QObject::connect(&m_windows, &WindowSource::titleChanged, &m_windows, [&told] { ++told; });
    const Moment before = Moment::clock::now();
    m_desk.describe(u"mail"_s, "*下書き");
    kill(mail, SIGUSR2);
    ASSERT_TRUE(waitUntil([&] { return told == 1; }, 1000));
    EXPECT_EQ(front(), u"%1 下書き"_s.arg(mail));
    EXPECT_EQ(m_windows.front()->since, since);
    EXPECT_GE(m_windows.front()->titledSince, before);

    kill(mail, SIGKILL);
    EXPECT_TRUE(nothingIsInFront()) << "a program that crashes says nothing";
    const pid_t next = m_desk.startProgram(u"next"_s, "*次");
    EXPECT_TRUE(comesToFront(next, u"次"_s)) << "one that joins with its window in front";
}

TEST_F(AccessibleWindowsTest, KnowNothingOfAProgramThatHangsAndAllOfTheOthers) {
    m_desk.startDesk();
    const pid_t hung = m_desk.startProgram(u"hung"_s, "*固まる");
    const pid_t mail = m_desk.startProgram(u"mail"_s, "受信箱");
    begin();
    ASSERT_TRUE(comesToFront(hung, u"固まる"_s));
    kill(hung, SIGSTOP);
    QElapsedTimer timer;
    waitUntil([] { return false; }, 1100);
    timer.start();
    EXPECT_EQ(front(), u"%1 固まる"_s.arg(hung)) << "it may be only busy";
    EXPECT_LT(timer.elapsed(), 150);
    EXPECT_TRUE(nothingIsInFront()) << "but it would not tell that it is left";

    activate(mail, u"mail"_s, "*受信箱");
    EXPECT_TRUE(comesToFront(mail, u"受信箱"_s));
    kill(hung, SIGCONT);
}

TEST_F(AccessibleWindowsTest, CostNothingWhileABetterSourceTells) {
    m_desk.startDesk();
    m_desk.startProgram(u"mail"_s, "*受信箱");
    const qsizetype before = connections();
    waitUntil([] { return false; }, 200);
    EXPECT_EQ(connections(), before);
    EXPECT_EQ(m_windows.ability(), Ability());
    begin();
    EXPECT_EQ(connections(), before + 1);
    m_windows.setNeeded(false);
    EXPECT_TRUE(waitUntil([&] { return connections() == before; }));
    EXPECT_EQ(front(), QString());
    begin();
    EXPECT_TRUE(waitUntil([this] { return !front().isEmpty(); }, 5000));
}

TEST_F(AccessibleWindowsTest, SayWhatIsMissingAndLeaveTheSwitchToTheUser) {
    // Who holds the launcher's name and answers nothing: else the question would start the system's own.
    const QString launcher = u"org.a11y.Bus"_s;
    QDBusConnection silent = m_desk.session.connect();
    ASSERT_TRUE(silent.registerService(launcher));
    m_windows.setNeeded(true);
    ASSERT_TRUE(waitUntil([this] { return !m_windows.ability().note.isEmpty(); }));
    EXPECT_EQ(m_windows.ability().kind, Ability::Kind::no);
    m_desk.startDesk(); // waits for the name
    m_desk.startProgram(u"mail"_s, "*受信箱");
    ASSERT_TRUE(silent.unregisterService(launcher));
    begin();
    EXPECT_TRUE(m_windows.ability().mayBeRequested);
    const QString note = m_windows.ability().note;

    AccessibilityBus ofUser(m_desk.session.connect());
    EXPECT_FALSE(ofUser.isEnabled());
    m_desk.setSwitch(true);
    EXPECT_TRUE(waitUntil([this] { return !m_windows.ability().mayBeRequested; }));
    EXPECT_TRUE(note.startsWith(m_windows.ability().note)) << "only the way to more of them is gone";

    ASSERT_TRUE(waitUntil([this] { return !front().isEmpty(); }, 5000));
    silent.interface()->registerService(launcher, QDBusConnectionInterface::QueueService);
    m_desk.endBus();
    EXPECT_TRUE(waitUntil([this] { return m_windows.ability().kind == Ability::Kind::no; }));
    EXPECT_EQ(front(), QString());
    m_desk.startDesk();
    const pid_t again = m_desk.startProgram(u"again"_s, "*戻る");
    ASSERT_TRUE(silent.unregisterService(launcher));
    EXPECT_TRUE(waitUntil([&] { return front() == u"%1 戻る"_s.arg(again); })) << "with the next bus";
}

} // namespace
} // namespace kestu
