// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LoginManager.h"

#include "support/Files.h"
#include "support/MockLogin.h"

#include <QDBusArgument>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

#include <csignal>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::waitUntil;

const QString managerInterface = u"org.freedesktop.login1.Manager"_s;
const QStringList ours{u"KESTU: sleep delay"_s};

class LoginManagerTest : public testing::Test {
protected:
    LoginManagerTest() { m_login.start(); }

    /// "who: what mode", for each inhibitor that someone holds.
    QStringList inhibitors() {
        const auto reply = m_login.manager().call(managerInterface, u"ListInhibitors"_s);
        const auto list = reply.value(0).value<QDBusArgument>();
        QStringList held;
        list.beginArray();
        while (!list.atEnd()) {
            QString what, who, why, mode;
            list.beginStructure();
            list >> what >> who >> why >> mode;
            list.endStructure();
            held << u"%1: %2 %3"_s.arg(who, what, mode);
        }
        list.endArray(); // else it leaks
        return held;
    }

    bool inhibitorsBecome(const QStringList& expected) {
        return waitUntil([&] { return inhibitors() == expected; });
    }

    test::PrivateBus m_bus;
    test::MockLogin m_login{m_bus};
};

TEST_F(LoginManagerTest, DelaysASleepUntilItHasBeenReportedAndTheNextOneAgain) {
    LoginManager manager(m_bus.connect());
    ASSERT_TRUE(inhibitorsBecome(ours));
    waitUntil([] { return false; }, 100); // until the answer has arrived here too
    const QSignalSpy changes(&manager, &LoginManager::asleepChanged);
    QStringList heldWhileReporting;
    QObject::connect(&manager, &LoginManager::asleepChanged, &manager, [&](bool asleep) {
        if (asleep) {
            QThread::msleep(50); // one let go too early is missed by then
            heldWhileReporting = inhibitors();
        }
    });

    m_login.announceSleep(true);
    m_login.announceSleep(true);
    EXPECT_TRUE(inhibitorsBecome({}));
    EXPECT_EQ(heldWhileReporting, ours);
    EXPECT_TRUE(manager.isAsleep());

    m_login.announceSleep(false);
    EXPECT_TRUE(inhibitorsBecome(ours));
    EXPECT_FALSE(manager.isAsleep());
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(LoginManagerTest, FollowsTheLockedHintAndNotTheRequestToLock) {
    LoginManager manager(m_bus.connect());
    const QSignalSpy changes(&manager, &LoginManager::lockedChanged);
    m_login.session(u"auto"_s).call(u"org.freedesktop.login1.Session"_s, u"Lock"_s);
    m_login.setLocked(u"auto"_s, true); // arrives after the request, so the request has been seen by then
    EXPECT_TRUE(waitUntil([&] { return manager.isLocked(); }));
    m_login.setLocked(u"auto"_s, false);
    EXPECT_TRUE(waitUntil([&] { return !manager.isLocked(); }));
    EXPECT_EQ(changes, (QList{QVariantList{true}, QVariantList{false}}));
}

TEST_F(LoginManagerTest, PrefersItsOwnSessionAndReadsHowThingsStandAtStart) {
    m_login.addSession(u"own"_s);
    m_login.manager().answer(managerInterface, u"GetSessionByPID"_s, u"o"_s,
                             u"ret = '/org/freedesktop/login1/session/own'"_s, u"u"_s);
    m_login.setLocked(u"own"_s, true);
    LoginManager manager(m_bus.connect());
    EXPECT_TRUE(manager.isLocked());

    m_login.setLocked(u"auto"_s, true); // someone else's lock
    m_login.setLocked(u"own"_s, false);
    EXPECT_TRUE(waitUntil([&] { return !manager.isLocked(); }));
}

TEST_F(LoginManagerTest, FindsALoginManagerThatComesBack) {
    LoginManager manager(m_bus.connect(), 1min);
    ASSERT_TRUE(inhibitorsBecome(ours));
    m_login.announceSleep(true);
    ASSERT_TRUE(waitUntil([&] { return manager.isAsleep(); }));

    m_login.manager().sendSignal(SIGKILL);
    m_login.start(); // it knows of no sleep
    EXPECT_TRUE(waitUntil([&] { return !manager.isAsleep(); }));
    EXPECT_TRUE(inhibitorsBecome(ours));
}

TEST_F(LoginManagerTest, FindsOneThatStartsAfterKestu) {
    m_login.manager().sendSignal(SIGKILL);
    const LoginManager manager(m_bus.connect(), 300ms);
    m_login.start(); // its session comes after its name
    m_login.setLocked(u"auto"_s, true);
    EXPECT_TRUE(waitUntil([&] { return manager.isLocked(); }));
    EXPECT_TRUE(inhibitorsBecome(ours));
}

TEST_F(LoginManagerTest, ForgetsTheLockOfALoginManagerThatStaysAway) {
    m_login.setLocked(u"auto"_s, true);
    LoginManager manager(m_bus.connect(), 400ms);
    m_login.manager().sendSignal(SIGKILL);
    EXPECT_FALSE(waitUntil([&] { return !manager.isLocked(); }, 100)) << "it may be restarting";
    EXPECT_TRUE(waitUntil([&] { return !manager.isLocked(); }));
}

TEST_F(LoginManagerTest, AsksWithGrowingPausesUntilOneThatIsSlowAtLoginAnswers) {
    m_login.setLocked(u"auto"_s, true);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"questions"_s);
    m_login.manager().answer(managerInterface, u"GetSession"_s, u"o"_s, uR"(import time
with open('%1', 'a') as questions:
    questions.write('%f\n' % time.monotonic())
with open('%1') as questions:
    if len(questions.readlines()) < 5:
        raise dbus.exceptions.DBusException('no session yet')
ret = '/org/freedesktop/login1/session/auto')"_s.arg(path),
                             u"s"_s);
    const LoginManager manager(m_bus.connect(), 100ms);
    EXPECT_TRUE(waitUntil([&] { return manager.isLocked(); }));
    waitUntil([] { return false; }, 300); // it has answered: no more questions

    std::vector<double> times;
    for (const QByteArray& line : test::contentsOf(path).trimmed().split('\n')) {
        times.push_back(line.toDouble());
    }
    ASSERT_EQ(times.size(), 5U);
    for (std::size_t question = 1; question < times.size(); ++question) {
        EXPECT_GT(times[question] - times[question - 1], 0.09 * (1 << (question - 1)));
    }
}

TEST_F(LoginManagerTest, WaitsBrieflyForOneThatHangsAndAsksItAgain) {
    m_login.setLocked(u"auto"_s, true);
    const QDBusConnection connection = m_bus.connect();
    m_login.manager().sendSignal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    const LoginManager manager(connection, 300ms);
    EXPECT_LT(timer.elapsed(), 300) << "the answer may take 0.15 seconds";
    EXPECT_FALSE(manager.isLocked());

    waitUntil([] { return false; }, 400); // it is asked once more in vain
    m_login.manager().sendSignal(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return manager.isLocked(); }));
}

} // namespace
} // namespace kestu
