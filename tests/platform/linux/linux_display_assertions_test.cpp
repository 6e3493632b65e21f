// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LinuxDisplayAssertions.h"

#include "support/Files.h"
#include "support/MockObject.h"
#include "support/PrivateBus.h"
#include "support/Program.h"

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
const QString policyService = u"org.kde.Solid.PowerManagement"_s;
const QString policyPath = u"/org/kde/Solid/PowerManagement/PolicyAgent"_s;
const QString policyInterface = u"org.kde.Solid.PowerManagement.PolicyAgent"_s;
const QString powerService = u"org.freedesktop.PowerManagement"_s;
const QString powerPath = u"/org/freedesktop/PowerManagement/Inhibit"_s;
const QString powerInterface = u"org.freedesktop.PowerManagement.Inhibit"_s;

const QStringList none;
const QStringList display{u"PreventUserIdleDisplaySleep"_s};
const QStringList system{u"PreventUserIdleSystemSleep"_s};

std::vector<DesktopEntry> entries() {
    return {{.id = u"firefox-esr"_s,
             .localizedName = u"火狐"_s,
             .startupWmClass = u"Navigator"_s,
             .executable = u"/usr/lib/firefox-esr/firefox-bin"_s},
            {.id = u"org.example.Script"_s,
             .localizedName = u"台本"_s,
             .startupWmClass = {},
             .executable = u"/usr/bin/script-player"_s}};
}

/// The application in front is process 100 of a made-up process tree.
class LinuxDisplayAssertionsTest : public testing::Test {
protected:
    LinuxDisplayAssertionsTest() {
        const QString player = u"/opt/player/bin/player"_s;
        const struct {
            int id;
            const char* stat;
            QString executable;
            const char* scope;
        } processes[] = {
            {1, "(init) S 0", {}, "/init.scope"},
            {99, "(inhibit) S 1", u"/usr/bin/systemd-inhibit"_s, "/app-org.example.Player-99.scope"},
            {100, "(player) S 99", player, "/app-org.example.Player-99.scope"},
            {101, "(Web) S 200 (x) S 100", player, "/app-org.example.Player-99.scope"},
            {102, "(helper) S 101", player, "/app-org.example.Player-99.scope"},
            {103, "(child) S 100", u"/usr/bin/child"_s, "/app-org.example.Player-99.scope"},
            {104, "(orphan) S 1", u"/usr/bin/child"_s, "/app-org.example.Player-99.scope"},
            {105, "(closed) S 100", {}, "/app-org.example.Player-99.scope"},
            {106, "(other window) S 1", player, "/app-org.example.Player-99.scope"},
            {200, "(stranger) S 1", player, "/session-2.scope"},
            {300, "(terminal) S 1", u"/usr/bin/terminal"_s, "/app-org.example.Terminal-300.scope"},
            {301, "(player) S 300", player, "/app-org.example.Terminal-300.scope"},
            {400, "(python3) S 1", u"/usr/bin/python3.11"_s, "/session-2.scope"},
            {401, "(python3) S 400", u"/usr/bin/python3.11"_s, "/session-2.scope"},
        };
        for (const auto& process : processes) {
            const QString folder = m_proc.filePath(QString::number(process.id));
            test::putFile(folder + u"/stat"_s,
                          QByteArray::number(process.id) + ' ' + process.stat + " 7 7 0\n");
            test::putFile(folder + u"/cgroup"_s, QByteArray("0::/app.slice") + process.scope + '\n');
            if (!process.executable.isEmpty()) {
                QFile::link(process.executable, folder + u"/exe"_s);
            }
        }
        test::putFile(m_proc.filePath(u"400/cmdline"_s), QByteArray("python3\0/usr/bin/script-player\0", 31));
        test::putFile(m_proc.filePath(u"401/cmdline"_s), QByteArray("python3\0/usr/bin/other\0", 23));
    }

    void startServices() {
        m_bus.startMock({loginService, loginPath, loginInterface}, loginService);
        m_bus.startMock({sessionService, sessionPath, sessionService}, sessionService);
    }

    void startPowerServices() {
        m_bus.startMock({policyService, policyPath, policyInterface}, policyService);
        m_bus.startMock({powerService, powerPath, powerInterface}, powerService);
    }

    /// `inhibitors` is a Python list of (what, mode, process).
    void setLoginInhibitors(const QByteArray& inhibitors) {
        m_login.answer(
            loginInterface, u"ListInhibitors"_s, u"a(ssssuu)"_s,
            u"ret = dbus.Array([(what, 'who', 'why', mode, 1000, process) "
            "for what, mode, process in %1], signature='(ssssuu)')"_s.arg(QString::fromUtf8(inhibitors)));
    }

    /// One inhibition of the session. Its object is the session manager's own: the mock has no other.
    void setSessionInhibitor(const QString& applicationId, uint flags) {
        m_session.answer(sessionService, u"GetInhibitors"_s, u"ao"_s, u"ret = ['%1']"_s.arg(sessionPath));
        m_session.answer(inhibitorInterface, u"GetAppId"_s, u"s"_s, u"ret = '%1'"_s.arg(applicationId));
        m_session.answer(inhibitorInterface, u"GetFlags"_s, u"u"_s, u"ret = %1"_s.arg(flags));
    }

    /// One client of the power service of KDE, and whether anybody there keeps the screen on.
    void setPolicyInhibitor(const QString& name, bool keepsScreen) {
        m_policy.answer(policyInterface, u"ListInhibitions"_s, u"a(ss)"_s,
                        u"ret = dbus.Array([('other', 'why'), ('%1', 'why')], signature='(ss)')"_s.arg(name));
        m_policy.answer(policyInterface, u"HasInhibition"_s, u"b"_s,
                        u"ret = %1 and args[0] == 4"_s.arg(keepsScreen ? u"True"_s : u"False"_s), u"u"_s);
    }

    void setPowerInhibitor(const QString& name) {
        m_power.answer(powerInterface, u"GetInhibitors"_s, u"as"_s, u"ret = ['other', '%1']"_s.arg(name));
    }

    std::optional<QStringList> heldBy(const FrontmostApplication& application) {
        return LinuxDisplayAssertions(
                   m_connection, m_connection,
                   [this](const FrontmostApplication&, const QDeadlineTimer&) { return m_ofSession; },
                   m_proc.path(), entries)
            .heldBy(application);
    }

    static FrontmostApplication front(const QString& bundleId, std::int64_t processId) {
        return {.bundleId = bundleId, .localizedName = {}, .processId = processId};
    }

    const FrontmostApplication m_player{
        .bundleId = u"org.example.Player"_s, .localizedName = u"Player"_s, .processId = 100};
    std::optional<bool> m_ofSession; // what it says of the window in front
    QTemporaryDir m_proc;
    test::PrivateBus m_bus;
    QDBusConnection m_connection = m_bus.connect();
    test::MockObject m_login{m_connection, loginService, loginPath};
    test::MockObject m_session{m_connection, sessionService, sessionPath};
    test::MockObject m_policy{m_connection, policyService, policyPath};
    test::MockObject m_power{m_connection, powerService, powerPath};
};

TEST_F(LinuxDisplayAssertionsTest, CountsTheLoginManagersInhibitorsOfTheProgramAndWhatStartedIt) {
    const std::pair<const char*, QStringList> rows[] = {
        {"[]", none},
        {"[('idle', 'block', 100)]", display},
        {"[('idle', 'block', 102)]", display},
        {"[('idle', 'block', 99)]", display},
        {"[('idle', 'block', 103)]", none},
        {"[('idle', 'block', 104)]", none},
        {"[('idle', 'block', 105)]", none},
        {"[('idle', 'block', 106)]", display},
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
        {u"Player"_s, idle, display},
        {u"player2"_s, idle, none},
        {u"org.example.Player"_s, suspend, system},
        {u"org.example.Player"_s, logout, none},
        {u""_s, idle, none},
    };
    startServices();
    for (const auto& row : rows) {
        setSessionInhibitor(row.applicationId, row.flags);
        EXPECT_EQ(heldBy(m_player), row.held) << row.applicationId.toStdString() << ' ' << row.flags;
    }
    setSessionInhibitor(*m_player.bundleId, idle);
    EXPECT_EQ(heldBy({.bundleId = {}, .localizedName = {}, .processId = 100}), none) << "no names at all";

    setSessionInhibitor(u"mutter"_s, idle); // for some window of Wayland that can be seen
    FrontmostApplication player = m_player;
    for (const bool isFullscreen : {false, true}) {
        player.isFullscreen = isFullscreen;
        EXPECT_EQ(heldBy(player), isFullscreen ? display : none);
    }
}

TEST_F(LinuxDisplayAssertionsTest, TakesNobodyForWhatItWasStartedFrom) {
    const struct {
        const char* inhibitor;
        FrontmostApplication front;
        QStringList held;
    } rows[] = {
        {"[('idle', 'block', 301)]", front(u"org.example.Player"_s, 301), display},
        {"[('idle', 'block', 301)]", front(u"org.example.Terminal"_s, 300), none},
        {"[('idle', 'block', 300)]", front(u"org.example.Player"_s, 301), none},
        {"[('idle', 'block', 401)]", front(u"org.example.Script"_s, 400), none},
    };
    startServices();
    for (const auto& row : rows) {
        setLoginInhibitors(row.inhibitor);
        EXPECT_EQ(heldBy(row.front), row.held) << row.inhibitor << ' ' << row.front.processId;
    }
}

TEST_F(LinuxDisplayAssertionsTest, TellsRealProcessesOfAProgramFromTheCommandsThatItRuns) {
    const auto childOf = [](qint64 process) {
        QString child;
        EXPECT_TRUE(test::waitUntil([&] {
            child = test::outputOf(u"pgrep"_s, {u"-P"_s, QString::number(process)}).trimmed();
            return !child.isEmpty();
        }));
        return child.toLongLong();
    };
    const test::Program shell(u"sh"_s, {u"-c"_s, u"sleep 100; exit"_s});
    const test::Program program(u"timeout"_s, {u"100"_s, u"timeout"_s, u"100"_s, u"sleep"_s, u"100"_s});
    const qint64 sameProgram = childOf(program.pid());
    const struct {
        qint64 inhibitor;
        qint64 front;
        QStringList held;
    } rows[] = {
        {shell.pid(), shell.pid(), display},
        {childOf(shell.pid()), shell.pid(), none},
        {sameProgram, program.pid(), display},
        {childOf(sameProgram), program.pid(), none},
    };
    startServices();
    for (const auto& row : rows) {
        setLoginInhibitors(u"[('idle', 'block', %1)]"_s.arg(row.inhibitor).toUtf8());
        LinuxDisplayAssertions assertions(m_connection, m_connection, {}, u"/proc"_s, entries);
        EXPECT_EQ(assertions.heldBy(front(u"any"_s, row.front)), row.held)
            << row.inhibitor << ' ' << row.front;
    }
}

TEST_F(LinuxDisplayAssertionsTest, ReadsEveryNameThroughTheTableOfTheWindows) {
    const struct {
        QString name;
        FrontmostApplication front;
        bool isHeld;
    } rows[] = {
        {u"firefox-esr"_s, front(u"org.mozilla.firefox"_s, 0), true},
        {u"Navigator"_s, front(u"org.mozilla.firefox"_s, 0), true},
        {u"firefox-bin"_s, front(u"org.mozilla.firefox"_s, 0), true},
        {u"/usr/lib/firefox-esr/firefox-bin"_s, front(u"org.mozilla.firefox"_s, 0), true},
        {u"firefox_firefox.desktop"_s, front(u"org.mozilla.firefox"_s, 0), true},
        {u"firefox-esr"_s, front(u"org.chromium.Chromium"_s, 0), false},
        {u"vlc"_s, front(u"org.videolan.vlc"_s, 0), true},
        {u"script-player"_s, front(u"org.example.Script"_s, 400), true},
        {u"/usr/bin/python3.11"_s, front(u"org.example.Script"_s, 400), false},
        {u"python3.11"_s, front(u"org.example.Script"_s, 400), false},
        {u""_s, front(u""_s, 400), false},
    };
    startPowerServices();
    for (const auto& row : rows) {
        const QStringList held = row.isHeld ? display : none;
        setPowerInhibitor(row.name);
        setPolicyInhibitor(u"nobody"_s, true);
        EXPECT_EQ(heldBy(row.front), held) << "power " << row.name.toStdString();
        setPowerInhibitor(u"nobody"_s);
        setPolicyInhibitor(row.name, true);
        EXPECT_EQ(heldBy(row.front), held) << "policy " << row.name.toStdString();
        setPolicyInhibitor(row.name, false);
        EXPECT_EQ(heldBy(row.front), none) << "the screen may go off " << row.name.toStdString();
    }
}

TEST_F(LinuxDisplayAssertionsTest, CannotTellWithoutAnyListAndMergesTwo) {
    EXPECT_EQ(heldBy(m_player), std::nullopt);
    startServices();
    EXPECT_EQ(heldBy(m_player), std::nullopt) << "neither can list";
    m_ofSession = false;
    EXPECT_EQ(heldBy(m_player), none) << "the session knows that it holds nothing";
    m_ofSession = true;
    EXPECT_EQ(heldBy(m_player), display);
    m_ofSession.reset();
    setLoginInhibitors("[('idle', 'block', 100)]");
    setSessionInhibitor(*m_player.bundleId, 8);
    EXPECT_EQ(heldBy(m_player), display);

    m_login.sendSignal(SIGSTOP);
    m_session.sendSignal(SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(heldBy(m_player), std::nullopt);
    EXPECT_LT(timer.elapsed(), 450) << "the answer may take 0.3 seconds";
    startPowerServices();
    setPowerInhibitor(*m_player.bundleId);
    timer.start();
    EXPECT_EQ(heldBy(m_player), display) << "a service that hangs silences no other";
    EXPECT_LT(timer.elapsed(), 450);
}

} // namespace
} // namespace kestu
