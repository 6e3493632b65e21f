// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LinuxDisplayAssertions.h"

#include "support/MockObject.h"
#include "support/PrivateBus.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <vector>

namespace kestu {

namespace {

using test::MockObject;

const QString login = QStringLiteral("org.freedesktop.login1");
const QString loginPath = QStringLiteral("/org/freedesktop/login1");
const QString loginInterface = QStringLiteral("org.freedesktop.login1.Manager");
const QString session = QStringLiteral("org.gnome.SessionManager");
const QString sessionPath = QStringLiteral("/org/gnome/SessionManager");

const QStringList none;
const QStringList display{QStringLiteral("PreventUserIdleDisplaySleep")};
const QStringList system{QStringLiteral("PreventUserIdleSystemSleep")};

constexpr std::int64_t player =
    100; // the process in front; 101 is its child, 102 its grandchild, 200 a stranger

/// The application in front is the player, under the root of a made-up process tree.
class LinuxDisplayAssertionsTest : public testing::Test {
protected:
    LinuxDisplayAssertionsTest() {
        addProcess(1, 0, "init");
        addProcess(player, 1, "player");
        addProcess(101, player, "Web) S 200 (x");
        addProcess(102, 101, "helper");
        addProcess(200, 1, "stranger");
        QFile::link(QStringLiteral("/opt/player/bin/player"),
                    m_proc.filePath(QStringLiteral("%1/exe").arg(player)));
    }

    void addProcess(std::int64_t id, std::int64_t parent, const char* name) {
        const QString folder = m_proc.filePath(QString::number(id));
        ASSERT_TRUE(QDir().mkdir(folder));
        QFile stat(folder + QStringLiteral("/stat"));
        ASSERT_TRUE(stat.open(QIODevice::WriteOnly));
        stat.write(QStringLiteral("%1 (%2) S %3 7 7 0\n")
                       .arg(QString::number(id), QString::fromUtf8(name), QString::number(parent))
                       .toUtf8());
    }

    void startLogin() { m_bus.startMock({login, loginPath, loginInterface}, login); }

    void startSession() { m_bus.startMock({session, sessionPath, session}, session); }

    /// `entries` is a Python list of (what, who, why, mode, user, process).
    void setLoginInhibitors(const QString& entries) {
        m_login.answer(loginInterface, QStringLiteral("ListInhibitors"), QString(),
                       QStringLiteral("a(ssssuu)"),
                       QStringLiteral("ret = dbus.Array(%1, signature='(ssssuu)')").arg(entries));
    }

    /// One inhibition of the session. Its object is the session manager's own: the mock has no other.
    void setSessionInhibitor(const QString& applicationId, uint flags) {
        const auto inhibitor = QStringLiteral("org.gnome.SessionManager.Inhibitor");
        m_session.answer(session, QStringLiteral("GetInhibitors"), QString(), QStringLiteral("ao"),
                         QStringLiteral("ret = ['/org/gnome/SessionManager']"));
        m_session.answer(inhibitor, QStringLiteral("GetAppId"), QString(), QStringLiteral("s"),
                         QStringLiteral("ret = '%1'").arg(applicationId));
        m_session.answer(inhibitor, QStringLiteral("GetFlags"), QString(), QStringLiteral("u"),
                         QStringLiteral("ret = %1").arg(flags));
    }

    std::optional<QStringList> heldBy(const FrontmostApplication& application) {
        LinuxDisplayAssertions assertions(m_connection, m_connection, m_proc.path());
        return assertions.heldBy(application);
    }

    const FrontmostApplication m_player{.bundleId = QStringLiteral("org.example.Player"),
                                        .localizedName = QStringLiteral("Player"),
                                        .processId = player};
    QTemporaryDir m_proc;
    test::PrivateBus m_bus;
    QDBusConnection m_connection = m_bus.connect();
    MockObject m_login{m_connection, login, loginPath};
    MockObject m_session{m_connection, session, sessionPath};
};

} // namespace

TEST_F(LinuxDisplayAssertionsTest, CountsTheLoginManagersInhibitorsOfTheProcessAndItsDescendants) {
    struct Row {
        const char* inhibitors;
        QStringList held;
    };
    const std::vector<Row> rows{
        {"[]", none},
        {"[('idle', 'w', 'y', 'block', 1000, 100)]", display},
        {"[('idle', 'w', 'y', 'block', 1000, 102)]", display},
        {"[('idle', 'w', 'y', 'block', 1000, 200)]", none},
        {"[('idle', 'w', 'y', 'block', 1000, 1)]", none},
        {"[('idle', 'w', 'y', 'block', 1000, 999)]", none},
        {"[('sleep:idle', 'w', 'y', 'block', 1000, 100)]", display},
        {"[('handle-lid-switch', 'w', 'y', 'block', 1000, 100)]", none},
        {"[('sleep', 'w', 'y', 'block', 1000, 100)]", system},
        {"[('idle', 'w', 'y', 'delay', 1000, 100)]", none},
        {"[('sleep', 'w', 'y', 'block', 0, 100), ('idle', 'w', 'y', 'block', 0, 200),"
         " ('idle', 'w', 'y', 'block', 0, 101), ('idle', 'w', 'y', 'block', 0, 102)]",
         system + display},
    };
    startLogin();
    for (const Row& row : rows) {
        setLoginInhibitors(QString::fromUtf8(row.inhibitors));
        EXPECT_EQ(heldBy(m_player), row.held) << row.inhibitors;
    }

    setLoginInhibitors(QStringLiteral("[('idle', 'w', 'y', 'block', 1000, 101)]"));
    for (const std::int64_t nobody : {0, 1}) {
        EXPECT_EQ(heldBy({.bundleId = {}, .localizedName = {}, .processId = nobody}), none) << nobody;
    }
}

TEST_F(LinuxDisplayAssertionsTest, CountsTheSessionsInhibitionsThatNameTheApplication) {
    constexpr uint logout = 1;
    constexpr uint suspend = 4;
    constexpr uint idle = 8;
    struct Row {
        const char* applicationId;
        uint flags;
        QStringList held;
    };
    const std::vector<Row> rows{
        {"org.example.Player", idle, display},
        {"ORG.example.player.desktop", idle | suspend, display},
        {"/opt/player/bin/player", idle, display},
        {"/usr/bin/player", idle, none},
        {"Player", idle, none},
        {"", idle, none},
        {"org.example.Player", suspend, system},
        {"org.example.Player", logout, none},
    };
    startSession();
    for (const Row& row : rows) {
        setSessionInhibitor(QString::fromUtf8(row.applicationId), row.flags);
        EXPECT_EQ(heldBy(m_player), row.held) << row.applicationId << ' ' << row.flags;
    }

    setSessionInhibitor(QString(), idle);
    EXPECT_EQ(heldBy({.bundleId = {}, .localizedName = {}, .processId = player}), none) << "no names at all";
}

TEST_F(LinuxDisplayAssertionsTest, CannotTellWithoutAnyListAndMergesTwo) {
    EXPECT_EQ(heldBy(m_player), std::nullopt);
    startLogin();
    startSession();
    EXPECT_EQ(heldBy(m_player), std::nullopt) << "neither can list";
    setLoginInhibitors(QStringLiteral("[('idle', 'w', 'y', 'block', 1000, 100)]"));
    setSessionInhibitor(*m_player.bundleId, 8);
    EXPECT_EQ(heldBy(m_player), display);

    m_login.sendSignal(SIGSTOP);
    m_session.sendSignal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(heldBy(m_player), std::nullopt);
    EXPECT_LT(timer.elapsed(), 400) << "the answer may take 0.3 seconds";
}

} // namespace kestu
