// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LoginManager.h"

#include "support/MockObject.h"
#include "support/PrivateBus.h"

#include <QDBusArgument>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>

namespace kestu {

namespace {

using namespace std::chrono_literals;
using test::MockObject;
using test::waitUntil;

const QString service = QStringLiteral("org.freedesktop.login1");
const QString managerPath = QStringLiteral("/org/freedesktop/login1");
const QString managerInterface = QStringLiteral("org.freedesktop.login1.Manager");
const QString sessionInterface = QStringLiteral("org.freedesktop.login1.Session");
const QString mockInterface = QStringLiteral("org.freedesktop.DBus.Mock");

class LoginManagerTest : public testing::Test {
protected:
    /// A login manager whose session "auto" is the one that the user sees.
    void startLoginManager() {
        m_bus.startMock({QStringLiteral("--template"), QStringLiteral("logind")}, service);
        addSession(QStringLiteral("auto"));
    }

    void addSession(const QString& id) {
        constexpr uint user = 1000;
        m_manager.call(mockInterface, QStringLiteral("AddSession"),
                       {id, QStringLiteral("seat0"), user, QStringLiteral("someone"), true});
    }

    void setLocked(const QString& id, bool locked) {
        session(id).call(sessionInterface, QStringLiteral("SetLockedHint"), {locked});
    }

    MockObject session(const QString& id) {
        return {m_connection, service, QStringLiteral("/org/freedesktop/login1/session/") + id};
    }

    void announceSleep(bool starting) {
        m_manager.announce(managerInterface, QStringLiteral("PrepareForSleep"), starting);
    }

    /// "who: what mode", for each inhibitor that someone holds.
    QStringList inhibitors() {
        const QVariantList reply = m_manager.call(managerInterface, QStringLiteral("ListInhibitors"), {});
        const auto list = reply.value(0).value<QDBusArgument>();
        QStringList held;
        list.beginArray();
        while (!list.atEnd()) {
            QString what;
            QString who;
            QString why;
            QString mode;
            list.beginStructure();
            list >> what >> who >> why >> mode;
            list.endStructure();
            held << QStringLiteral("%1: %2 %3").arg(who, what, mode);
        }
        return held;
    }

    bool inhibitorsBecome(const QStringList& expected) {
        return waitUntil([&] { return inhibitors() == expected; });
    }

    const QStringList m_ours{QStringLiteral("KESTU: sleep delay")};
    const QString m_auto = QStringLiteral("auto");
    test::PrivateBus m_bus;
    QDBusConnection m_connection = m_bus.connect();
    MockObject m_manager{m_connection, service, managerPath};
};

} // namespace

TEST_F(LoginManagerTest, DelaysASleepUntilItHasBeenReportedAndTheNextOneAgain) {
    startLoginManager();
    LoginManager manager(m_bus.connect());
    ASSERT_TRUE(inhibitorsBecome(m_ours));
    waitUntil([] { return false; }, 50); // until the answer has arrived here too
    QSignalSpy changes(&manager, &LoginManager::asleepChanged);
    QStringList heldWhileReporting;
    QObject::connect(&manager, &LoginManager::asleepChanged, &manager, [&](bool asleep) {
        if (asleep) {
            QThread::msleep(50); // one let go too early is missed by then
            heldWhileReporting = inhibitors();
        }
    });

    announceSleep(true);
    announceSleep(true);
    EXPECT_TRUE(inhibitorsBecome({}));
    EXPECT_EQ(heldWhileReporting, m_ours);
    EXPECT_TRUE(manager.isAsleep());
    EXPECT_EQ(changes.count(), 1);

    announceSleep(false);
    EXPECT_TRUE(inhibitorsBecome(m_ours));
    EXPECT_FALSE(manager.isAsleep());
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(LoginManagerTest, FollowsTheLockedHintAndNotTheRequestToLock) {
    startLoginManager();
    LoginManager manager(m_bus.connect());
    QSignalSpy changes(&manager, &LoginManager::lockedChanged);

    session(m_auto).call(sessionInterface, QStringLiteral("Lock"), {});
    setLocked(m_auto, true); // arrives after the request, so the request has been seen by then
    ASSERT_TRUE(waitUntil([&] { return changes.count() > 0; }));
    EXPECT_TRUE(manager.isLocked());
    setLocked(m_auto, false);
    ASSERT_TRUE(waitUntil([&] { return changes.count() > 1; }));
    EXPECT_EQ(changes.at(0), QVariantList{true});
    EXPECT_EQ(changes.at(1), QVariantList{false});
}

TEST_F(LoginManagerTest, PrefersItsOwnSessionAndReadsHowThingsStandAtStart) {
    startLoginManager();
    const QString own = QStringLiteral("own");
    addSession(own);
    m_manager.answer(managerInterface, QStringLiteral("GetSessionByPID"), QStringLiteral("u"),
                     QStringLiteral("o"), QStringLiteral("ret = '/org/freedesktop/login1/session/own'"));
    setLocked(own, true);
    LoginManager manager(m_bus.connect());
    EXPECT_TRUE(manager.isLocked());

    setLocked(m_auto, true); // someone else's lock
    setLocked(own, false);
    EXPECT_TRUE(waitUntil([&] { return !manager.isLocked(); }));
}

TEST_F(LoginManagerTest, FindsALoginManagerThatComesBack) {
    startLoginManager();
    LoginManager manager(m_bus.connect(), 1min);
    ASSERT_TRUE(inhibitorsBecome(m_ours));
    announceSleep(true);
    ASSERT_TRUE(waitUntil([&] { return manager.isAsleep(); }));

    m_manager.sendSignal(SIGKILL);
    startLoginManager(); // it knows of no sleep
    EXPECT_TRUE(waitUntil([&] { return !manager.isAsleep(); }));
    EXPECT_TRUE(inhibitorsBecome(m_ours));
}

TEST_F(LoginManagerTest, ForgetsTheLockOfALoginManagerThatStaysAway) {
    startLoginManager();
    setLocked(m_auto, true);
    LoginManager manager(m_bus.connect(), 400ms);
    ASSERT_TRUE(manager.isLocked());

    m_manager.sendSignal(SIGKILL);
    EXPECT_FALSE(waitUntil([&] { return !manager.isLocked(); }, 100)) << "it may be restarting";
    EXPECT_TRUE(waitUntil([&] { return !manager.isLocked(); }));
}

TEST_F(LoginManagerTest, WaitsBrieflyForOneThatHangsAndAsksItAgain) {
    startLoginManager();
    setLocked(m_auto, true);
    m_manager.sendSignal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    LoginManager manager(m_bus.connect(), 300ms);
    EXPECT_LT(timer.elapsed(), 300);
    EXPECT_FALSE(manager.isLocked());

    m_manager.sendSignal(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return manager.isLocked(); }));
}

} // namespace kestu
