// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LinuxDisplayAssertions.h"

#include "support/Files.h"
#include "support/MockObject.h"
#include "support/PrivateBus.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

const QString loginService = u"org.freedesktop.login1"_s;
const QString loginPath = u"/org/freedesktop/login1"_s;
const QString loginInterface = u"org.freedesktop.login1.Manager"_s;
const QString sessionService = u"org.gnome.SessionManager"_s;
const QString sessionPath = u"/org/gnome/SessionManager"_s;
const QString inhibitorInterface = u"org.gnome.SessionManager.Inhibitor"_s;

const QStringList none;
const QStringList display{u"PreventUserIdleDisplaySleep"_s};
const QStringList system{u"PreventUserIdleSystemSleep"_s};

/// The application in front is process 100 of a made-up process tree.
class LinuxDisplayAssertionsTest : public testing::Test {
protected:
    LinuxDisplayAssertionsTest() {
        const std::pair<int, const char*> stats[] = {
            {1, "(init) S 0"},       {100, "(player) S 1"},   {101, "(Web) S 200 (x) S 100"},
            {102, "(helper) S 101"}, {200, "(stranger) S 1"},
        };
        for (const auto& [id, stat] : stats) {
            test::putFile(m_proc.filePath(u"%1/stat"_s.arg(id)),
                          QByteArray::number(id) + ' ' + stat + " 7 7 0\n");
        }
        QFile::link(u"/opt/player/bin/player"_s, m_proc.filePath(u"100/exe"_s));
    }

    void startServices() {
        m_bus.startMock({loginService, loginPath, loginInterface}, loginService);
        m_bus.startMock({sessionService, sessionPath, sessionService}, sessionService);
    }

    /// `inhibitors` is a Python list of (what, mode, process).
    void setLoginInhibitors(const char* inhibitors) {
        m_login.answer(
            loginInterface, u"ListInhibitors"_s, u"a(ssssuu)"_s,
            u"ret = dbus.Array([(what, 'who', 'why', mode, 1000, process) "
            "for what, mode, process in %1], signature='(ssssuu)')"_s.arg(QLatin1String(inhibitors)));
    }

    /// One inhibition of the session. Its object is the session manager's own: the mock has no other.
    void setSessionInhibitor(const QString& applicationId, uint flags) {
        m_session.answer(sessionService, u"GetInhibitors"_s, u"ao"_s, u"ret = ['%1']"_s.arg(sessionPath));
        m_session.answer(inhibitorInterface, u"GetAppId"_s, u"s"_s, u"ret = '%1'"_s.arg(applicationId));
        m_session.answer(inhibitorInterface, u"GetFlags"_s, u"u"_s, u"ret = %1"_s.arg(flags));
    }

    std::optional<QStringList> heldBy(const FrontmostApplication& application) {
        return LinuxDisplayAssertions(m_connection, m_connection, m_proc.path()).heldBy(application);
    }

    const FrontmostApplication m_player{
        .bundleId = u"org.example.Player"_s, .localizedName = u"Player"_s, .processId = 100};
    QTemporaryDir m_proc;
    test::PrivateBus m_bus;
    QDBusConnection m_connection = m_bus.connect();
    test::MockObject m_login{m_connection, loginService, loginPath};
    test::MockObject m_session{m_connection, sessionService, sessionPath};
};

TEST_F(LinuxDisplayAssertionsTest, CountsTheLoginManagersInhibitorsOfTheProcessAndItsDescendants) {
    const std::pair<const char*, QStringList> rows[] = {
        {"[]", none},
        {"[('idle', 'block', 100)]", display},
        {"[('idle', 'block', 102)]", display},
        {"[('idle', 'block', 200)]", none},
        {"[('idle', 'block', 1)]", none},
        {"[('idle', 'block', 999)]", none},
        {"[('sleep:idle', 'block', 100)]", display},
        {"[('handle-lid-switch', 'block', 100)]", none},
        {"[('sleep', 'block', 100)]", system},
        {"[('idle', 'delay', 100)]", none},
        {"[('sleep', 'block', 100), ('idle', 'block', 200), ('idle', 'block', 101), ('idle', 'block', 102)]",
         system + display},
    };
    startServices();
    for (const auto& [inhibitors, held] : rows) {
        setLoginInhibitors(inhibitors);
        EXPECT_EQ(heldBy(m_player), held) << inhibitors;
    }
    for (const std::int64_t nobody : {0, 1}) {
        EXPECT_EQ(heldBy({.bundleId = {}, .localizedName = {}, .processId = nobody}), none) << nobody;
    }
}

TEST_F(LinuxDisplayAssertionsTest, CountsTheSessionsInhibitionsThatNameTheApplication) {
    constexpr uint logout = 1;
    constexpr uint suspend = 4;
    constexpr uint idle = 8;
    const struct {
        QString applicationId;
        uint flags;
        QStringList held;
    } rows[] = {
        {u"org.example.Player"_s, idle, display},
        {u"ORG.example.player.desktop"_s, idle | suspend, display},
        {u"/opt/player/bin/player"_s, idle, display},
        {u"/usr/bin/player"_s, idle, none},
        {u"Player"_s, idle, none},
        {u"org.example.Player"_s, suspend, system},
        {u"org.example.Player"_s, logout, none},
        {u""_s, idle, none},
    };
    startServices();
    for (const auto& row : rows) {
        setSessionInhibitor(row.applicationId, row.flags);
        EXPECT_EQ(heldBy(m_player), row.held) << row.applicationId.toStdString() << ' ' << row.flags;
    }
    EXPECT_EQ(heldBy({.bundleId = {}, .localizedName = {}, .processId = 100}), none) << "no names at all";
}

TEST_F(LinuxDisplayAssertionsTest, CannotTellWithoutAnyListAndMergesTwo) {
    EXPECT_EQ(heldBy(m_player), std::nullopt);
    startServices();
    EXPECT_EQ(heldBy(m_player), std::nullopt) << "neither can list";
    setLoginInhibitors("[('idle', 'block', 100)]");
    setSessionInhibitor(*m_player.bundleId, 8);
    EXPECT_EQ(heldBy(m_player), display);

    m_login.sendSignal(SIGSTOP);
    m_session.sendSignal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(heldBy(m_player), std::nullopt);
    EXPECT_LT(timer.elapsed(), 450) << "the answer may take 0.3 seconds";
}

} // namespace
} // namespace kestu
