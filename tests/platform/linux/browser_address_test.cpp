// SPDX-License-Identifier: GPL-3.0-or-later
//
// The questions and their bounds in time, against a made-up accessibility bus.
#include "platform/linux/BrowserAddress.h"

#include "support/PrivateBus.h"

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <optional>
#include <vector>

namespace kestu {
namespace {

class BrowserAddressTest : public ::testing::Test {
public:
    ~BrowserAddressTest() override { endProcesses(); }

protected:
    void endProcesses() {
        for (const auto& process : m_processes) {
            process->kill(); // also ends a stopped one
            process->waitForFinished();
        }
        m_processes.clear();
    }

    QProcess& start(const QStringList& arguments) {
        m_processes.push_back(std::make_unique<QProcess>());
        QProcess& process = *m_processes.back();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("SESSION"), m_session.address());
        environment.insert(QStringLiteral("ACCESSIBILITY"), m_accessibility->address());
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral("/usr/bin/python3"),
                      QStringList{QStringLiteral(KESTU_TEST_SUPPORT "/accessible_desk.py")} + arguments);
        EXPECT_TRUE(process.waitForReadyRead(20000)) << "the made-up program did not start";
        return process;
    }

    QProcess& startDesk() { return start({QStringLiteral("desk")}); }

    /// A browser with these windows (see accessible_desk.py), its description in `file`.
    QProcess& startBrowser(const QString& file, const char* windows) {
        describe(file, windows);
        return start({QStringLiteral("program"), m_folder.filePath(file)});
    }

    void describe(const QString& file, const char* windows) {
        QFile description(m_folder.filePath(file));
        ASSERT_TRUE(description.open(QIODevice::WriteOnly));
        description.write(windows);
    }

    /// What run() gives, "" for nothing; how long it took is in m_milliseconds.
    QString ask(std::int64_t processId, const QString& title) {
        QElapsedTimer timer;
        timer.start();
        const auto address = m_browserAddress.run({.source = {},
                                                   .bundleId = QStringLiteral("org.mozilla.firefox"),
                                                   .title = title,
                                                   .processId = processId});
        m_milliseconds = timer.elapsed();
        EXPECT_NE(address, QString()) << "an empty address is none";
        return address.value_or(QString());
    }

    QTemporaryDir m_folder;
    test::PrivateBus m_session;
    std::optional<test::PrivateBus> m_accessibility{std::in_place};
    std::vector<std::unique_ptr<QProcess>> m_processes;
    AccessibilityBus m_bus{m_session.connect()};
    BrowserAddress m_browserAddress{m_bus};
    qint64 m_milliseconds = 0;
};

TEST_F(BrowserAddressTest, IsThatOfThePageInTheWindowInFront) {
    struct Row {
        const char* why;
        const char* windows;
        QString title;
        QString address;
    };
    const Row rows[] = {
        {"the active window among several",
         R"([{"name": "A", "page": {"DocURL": "http://a/"}},
             {"name": "B", "active": true, "page": {"DocURL": "http://b/", "URI": ""}},
             {"name": "C", "page": {"DocURL": "http://c/"}}])",
         QStringLiteral("changed"), QStringLiteral("http://b/")},
        {"the only window, though nothing marks it; the other spelling",
         R"([{"name": "A", "page": {"URI": "http://a/"}}])", QStringLiteral("changed"),
         QStringLiteral("http://a/")},
        {"no mark: the title decides",
         R"([{"name": "A - Chromium", "page": {"URI": "http://a/"}},
             {"name": "B - Audio - Chromium", "page": {"URI": "http://b/"}}])",
         QStringLiteral("B - Audio"), QStringLiteral("http://b/")},
        {"the mark is still at the window left behind",
         R"([{"name": "A", "active": true, "page": {"URI": "http://a/"}},
             {"name": "B", "page": {"URI": "http://b/"}}])",
         QStringLiteral("B"), QStringLiteral("http://b/")},
        {"two of one title: the mark decides",
         R"([{"name": "A", "page": {"URI": "http://a/1"}},
             {"name": "A", "active": true, "page": {"URI": "http://a/2"}}])",
         QStringLiteral("A"), QStringLiteral("http://a/2")},
        {"an unnamed window has no title to go by",
         R"([{"name": "", "page": {"URI": "http://a/"}},
             {"name": "", "active": true, "page": {"URI": "http://b/"}}])",
         QString(), QStringLiteral("http://b/")},
        {"the browser's own page is an address too", R"([{"name": "A", "page": {"DocURL": "about:newtab"}}])",
         QStringLiteral("A"), QStringLiteral("about:newtab")},
        {"private by the name of the window, which the title does not show",
         R"([{"name": "A - Chromium（シークレット モード）", "active": true, "page": {"URI": "http://a/"}}])",
         QStringLiteral("A - Chromium"), QString()},
        {"private by the title alone", R"([{"name": "A", "active": true, "page": {"URI": "http://a/"}}])",
         QStringLiteral("A — Mozilla Firefox プライベートブラウジング"), QString()},
    };
    startDesk();
    for (const Row& row : rows) {
        QProcess& browser = startBrowser(QStringLiteral("windows"), row.windows);
        EXPECT_EQ(ask(browser.processId(), row.title), row.address) << row.why;
        EXPECT_LT(m_milliseconds, 900) << row.why << ": nothing there to wait for";
    }
}

TEST_F(BrowserAddressTest, IsWaitedForWithinOneSecond) {
    startDesk();
    // Looks are 50 ms apart.
    QProcess& late = startBrowser(QStringLiteral("late"),
                                  R"([{"name": "A", "looks": 6, "page": {"DocURL": "http://late/"}}])");
    EXPECT_EQ(ask(late.processId(), QStringLiteral("A")), QStringLiteral("http://late/"));
    EXPECT_GE(m_milliseconds, 300);

    QProcess& blank =
        startBrowser(QStringLiteral("blank"), R"([{"name": "A", "page": {"DocURL": "about:blank"}}])");
    EXPECT_EQ(ask(blank.processId(), QStringLiteral("A")), QString());
    EXPECT_GE(m_milliseconds, 950);
    EXPECT_LT(m_milliseconds, 1150);
}

TEST_F(BrowserAddressTest, IsNotWaitedForAgainUntilTheBrowserHasGivenOne) {
    startDesk();
    const auto file = QStringLiteral("windows");
    QProcess& browser = startBrowser(file, R"([{"name": "A"}])");
    EXPECT_EQ(ask(browser.processId(), QStringLiteral("A")), QString());
    EXPECT_GE(m_milliseconds, 950);
    EXPECT_EQ(ask(browser.processId(), QStringLiteral("B")), QString());
    EXPECT_LT(m_milliseconds, 300) << "one wait in vain is enough";

    describe(file, R"([{"name": "C", "page": {"DocURL": "http://c/"}}])");
    EXPECT_EQ(ask(browser.processId(), QStringLiteral("C")), QStringLiteral("http://c/"));
    describe(file, R"([{"name": "D", "looks": 3, "page": {"DocURL": "http://d/"}}])");
    EXPECT_EQ(ask(browser.processId(), QStringLiteral("D")), QStringLiteral("http://d/"))
        << "this browser is worth a wait";
}

TEST_F(BrowserAddressTest, OfAHungBrowserCostsOneShortWaitHoweverOftenItsTitleChanges) {
    startDesk();
    const auto page = R"([{"name": "A", "page": {"DocURL": "http://a/"}}])";
    QProcess& hung = startBrowser(QStringLiteral("hung"), page);
    QProcess& well = startBrowser(QStringLiteral("well"), page);
    const auto pid = static_cast<pid_t>(hung.processId());
    ASSERT_EQ(ask(pid, QStringLiteral("A")), QStringLiteral("http://a/"));

    ASSERT_EQ(kill(pid, SIGSTOP), 0);
    EXPECT_EQ(ask(pid, QStringLiteral("B")), QString());
    EXPECT_GE(m_milliseconds, 250);
    EXPECT_LT(m_milliseconds, 400);
    for (const QString& title : {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("A")}) {
        EXPECT_EQ(ask(pid, title), QString());
        EXPECT_LT(m_milliseconds, 100) << "it still owes the first answer";
    }
    EXPECT_EQ(ask(well.processId(), QStringLiteral("A")), QStringLiteral("http://a/"));
    EXPECT_LT(m_milliseconds, 250) << "a hung neighbour is nothing to the others";

    ASSERT_EQ(kill(pid, SIGCONT), 0);
    EXPECT_TRUE(test::waitUntil([&] { return ask(pid, QStringLiteral("B")) == u"http://a/"; }));
}

TEST_F(BrowserAddressTest, IsAskedOfNoOtherProgramThanTheOneInFront) {
    startDesk();
    QProcess& other = startBrowser(QStringLiteral("windows"),
                                   R"([{"name": "A", "active": true, "page": {"DocURL": "http://a/"}}])");
    // The desk's own process is none of the programs on its bus.
    EXPECT_EQ(ask(m_processes.front()->processId(), QStringLiteral("A")), QString());

    // Ourselves: on the bus as well, and not able to answer while we ask.
    QDBusMessage embed = QDBusMessage::createMethodCall(
        QStringLiteral("org.a11y.atspi.Registry"), QStringLiteral("/org/a11y/atspi/registry"),
        QStringLiteral("org.a11y.atspi.Registry"), QStringLiteral("Embed"));
    embed << QVariant::fromValue(QDBusObjectPath(QStringLiteral("/org/a11y/atspi/accessible/root")));
    ASSERT_EQ(m_accessibility->connect().call(embed).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(ask(QCoreApplication::applicationPid(), QStringLiteral("A")), QString());
    EXPECT_LT(m_milliseconds, 100);
    EXPECT_EQ(ask(other.processId(), QStringLiteral("A")), QStringLiteral("http://a/"));
}

TEST_F(BrowserAddressTest, SwitchesTheBusOnOnceAndLeavesItOffWhenTheUserWantsItOff) {
    startDesk();
    EXPECT_FALSE(m_bus.isEnabled());
    ASSERT_EQ(ask(m_processes.front()->processId(), QStringLiteral("A")), QString());
    EXPECT_TRUE(m_bus.isEnabled());

    QDBusMessage off = QDBusMessage::createMethodCall(
        QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Set"));
    off << QStringLiteral("org.a11y.Status") << QStringLiteral("IsEnabled")
        << QVariant::fromValue(QDBusVariant(false));
    ASSERT_EQ(m_session.connect().call(off).type(), QDBusMessage::ReplyMessage);
    ASSERT_EQ(ask(m_processes.front()->processId(), QStringLiteral("B")), QString());
    EXPECT_FALSE(m_bus.isEnabled());
}

TEST_F(BrowserAddressTest, IsAbsentWithoutABusAndComesBackWithOne) {
    // Only the mark tells these two apart, and the new registry has to be told again that we listen.
    const auto page = R"([{"name": "A", "page": {"URI": "http://other/"}},
                          {"name": "A", "active": true, "page": {"URI": "http://a/"}}])";
    // Who holds the launcher's name and answers nothing: else the question would start the system's own.
    QDBusConnection silent = m_session.connect();
    ASSERT_TRUE(silent.registerService(QStringLiteral("org.a11y.Bus")));
    EXPECT_EQ(ask(1, QStringLiteral("A")), QString());
    EXPECT_LT(m_milliseconds, 250) << "no bus, no wait";
    ASSERT_TRUE(silent.unregisterService(QStringLiteral("org.a11y.Bus")));
    for (int round = 0; round < 2; ++round) {
        startDesk();
        QProcess& browser = startBrowser(QStringLiteral("windows"), page);
        EXPECT_EQ(ask(browser.processId(), QStringLiteral("A")), QStringLiteral("http://a/")) << round;
        // The whole bus ends, with everything on it.
        endProcesses();
        m_accessibility.emplace();
    }
}

} // namespace
} // namespace kestu
