// SPDX-License-Identifier: GPL-3.0-or-later
//
// Real browsers on a private desk, without a way to the outside: they see only a web server of the test's.
#include "platform/linux/BrowserAddress.h"

#include "support/PrivateBus.h"

#include <QCoreApplication>
#include <QDBusVariant>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextStream>

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <sched.h>
#include <vector>

namespace kestu {
namespace {

using test::waitUntil;

constexpr int kStartUp = 40000; // milliseconds for a browser's first window, on a slow machine

struct Program {
    const char* name;
    QString bundleId;
    QString command;
    QStringList arguments; // "PROFILE" stands for the folder of its profile
    QString privateArgument;
    bool joinsWhileRunning; // the others must be started with the accessibility bus switched on
};

const Program kPrograms[] = {
    {.name = "Firefox",
     .bundleId = QStringLiteral("org.mozilla.firefox"),
     .command = QStringLiteral("firefox-esr"),
     .arguments = {QStringLiteral("--profile"), QStringLiteral("PROFILE")},
     .privateArgument = QStringLiteral("--private-window"),
     .joinsWhileRunning = true},
    {.name = "Chromium",
     .bundleId = QStringLiteral("org.chromium.Chromium"),
     .command = QStringLiteral("chromium"),
     .arguments = {QStringLiteral("--user-data-dir=PROFILE"),
                   QStringLiteral("--force-renderer-accessibility"), QStringLiteral("--no-sandbox"),
                   QStringLiteral("--test-type"), QStringLiteral("--no-first-run"),
                   QStringLiteral("--no-default-browser-check"), QStringLiteral("--disable-gpu"),
                   QStringLiteral("--disable-quic"), QStringLiteral("--disable-sync"),
                   QStringLiteral("--disable-component-update"),
                   QStringLiteral("--disable-background-networking"),
                   QStringLiteral("--password-store=basic")},
     .privateArgument = QStringLiteral("--incognito"),
     .joinsWhileRunning = false},
};

// No first-run pages.
constexpr auto kFirefoxPreferences = R"(
user_pref("browser.aboutwelcome.enabled", false);
user_pref("browser.preonboarding.enabled", false);
user_pref("browser.sessionstore.resume_from_crash", false);
user_pref("browser.shell.checkDefaultBrowser", false);
user_pref("browser.startup.homepage_override.mstone", "ignore");
user_pref("datareporting.policy.dataSubmissionEnabled", false);
user_pref("termsofuse.bypassNotification", true);
)";

void write(const QString& path, const QByteArray& content) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

/// What a tool on the desk prints.
QString told(const QString& tool, const QStringList& arguments) {
    QProcess process;
    process.start(tool, arguments);
    process.waitForFinished();
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

QString titleInFront() {
    return told(QStringLiteral("xdotool"),
                {QStringLiteral("getactivewindow"), QStringLiteral("getwindowname")});
}

class RealBrowserTest : public ::testing::TestWithParam<Program> {
public:
    RealBrowserTest() {
        write(m_folder.filePath(QStringLiteral("first.html")), "<title>First</title><h1>First</h1>");
        write(m_folder.filePath(QStringLiteral("second.html")), "<title>Second</title><h1>Second</h1>");
        m_server.start(QStringLiteral("/usr/bin/python3"),
                       {QStringLiteral("-u"), QStringLiteral("-m"), QStringLiteral("http.server"),
                        QStringLiteral("0"), QStringLiteral("--bind"), QStringLiteral("127.0.0.1"),
                        QStringLiteral("--directory"), m_folder.path()});
        EXPECT_TRUE(m_server.waitForReadyRead(20000));
        const auto port = QRegularExpression(QStringLiteral("port (\\d+)"))
                              .match(QString::fromUtf8(m_server.readAllStandardOutput()));
        m_site = QStringLiteral("http://127.0.0.1:%1/").arg(port.captured(1));
    }

    ~RealBrowserTest() override {
        for (const auto& browser : m_browsers) {
            if (browser->state() == QProcess::NotRunning) {
                continue; // it only passed its page on to the first one
            }
            kill(static_cast<pid_t>(browser->processId()), SIGCONT);
            browser->terminate();
            if (!browser->waitForFinished(5000)) {
                browser->kill();
                browser->waitForFinished();
            }
        }
        m_server.kill();
        m_server.waitForFinished();
    }

protected:
    /// Puts the desktop's switch where this browser meets it in the worst case.
    void setSwitch() {
        QDBusMessage set = QDBusMessage::createMethodCall(
            QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
            QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Set"));
        set << QStringLiteral("org.a11y.Status") << QStringLiteral("IsEnabled")
            << QVariant::fromValue(QDBusVariant(!GetParam().joinsWhileRunning));
        ASSERT_EQ(QDBusConnection::sessionBus().call(set).type(), QDBusMessage::ReplyMessage);
        ASSERT_EQ(m_bus.isEnabled(), !GetParam().joinsWhileRunning);
    }

    QProcess& open(const QStringList& arguments) {
        const QString profile = m_folder.filePath(QStringLiteral("profile"));
        QDir().mkpath(profile);
        write(profile + QStringLiteral("/user.js"), kFirefoxPreferences);
        QStringList all = GetParam().arguments;
        all.replaceInStrings(QStringLiteral("PROFILE"), profile);
        m_browsers.push_back(std::make_unique<QProcess>());
        m_browsers.back()->setStandardOutputFile(QProcess::nullDevice());
        m_browsers.back()->setStandardErrorFile(QProcess::nullDevice());
        m_browsers.back()->start(GetParam().command, all + arguments);
        EXPECT_TRUE(m_browsers.back()->waitForStarted());
        return *m_browsers.back();
    }

    void waitForTitle(const QString& title) {
        ASSERT_TRUE(waitUntil([&] { return titleInFront().contains(title); }, kStartUp))
            << "in front: " << titleInFront().toStdString();
    }

    /// What run() gives, "" for nothing; how long it took is in m_milliseconds.
    QString ask(const QProcess& browser, const QString& title) {
        QElapsedTimer timer;
        timer.start();
        const auto address = m_browserAddress.run({.source = {},
                                                   .bundleId = GetParam().bundleId,
                                                   .title = title,
                                                   .processId = browser.processId()});
        m_milliseconds = timer.elapsed();
        return address.value_or(QString());
    }

    QTemporaryDir m_folder;
    QProcess m_server;
    QString m_site;
    std::vector<std::unique_ptr<QProcess>> m_browsers;
    AccessibilityBus m_bus{QDBusConnection::sessionBus()};
    BrowserAddress m_browserAddress{m_bus};
    qint64 m_milliseconds = 0;
};

TEST_P(RealBrowserTest, GivesTheAddressInFrontAndStopsNobodyWhenItHangs) {
    const QString first = m_site + QStringLiteral("first.html");
    const QString second = m_site + QStringLiteral("second.html");
    setSwitch();
    QProcess& browser = open({first});
    waitForTitle(QStringLiteral("First"));

    QElapsedTimer sinceFirstQuestion;
    sinceFirstQuestion.start();
    ASSERT_TRUE(waitUntil([&] { return ask(browser, titleInFront()) == first; }, kStartUp));
    EXPECT_TRUE(m_bus.isEnabled());
    QTextStream(stdout) << GetParam().name << ": address " << sinceFirstQuestion.elapsed()
                        << " ms after the first question\n";

    // A second window: the title is withheld, so that only the browser's own mark can tell which is in front.
    open({QStringLiteral("--new-window"), second});
    waitForTitle(QStringLiteral("Second"));
    EXPECT_TRUE(waitUntil([&] { return ask(browser, QString()) == second; }));
    QTextStream(stdout) << GetParam().name << ": a question takes " << m_milliseconds << " ms\n";
    told(QStringLiteral("xdotool"),
         {QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
          QStringLiteral("^First "), QStringLiteral("windowactivate")});
    waitForTitle(QStringLiteral("First"));
    EXPECT_TRUE(waitUntil([&] { return ask(browser, QString()) == first; }));

    ASSERT_EQ(kill(static_cast<pid_t>(browser.processId()), SIGSTOP), 0);
    EXPECT_EQ(ask(browser, QStringLiteral("another title")), QString());
    QTextStream(stdout) << GetParam().name << ": stopped, a question takes " << m_milliseconds << " ms\n";
    EXPECT_GE(m_milliseconds, 250);
    EXPECT_LT(m_milliseconds, 450);
    EXPECT_EQ(ask(browser, titleInFront()), QString());
    EXPECT_LT(m_milliseconds, 100);
    ASSERT_EQ(kill(static_cast<pid_t>(browser.processId()), SIGCONT), 0);
    EXPECT_TRUE(waitUntil([&] { return ask(browser, titleInFront()) == first; }));
}

/// What the bus itself would tell of the browser's first window, private or not.
QString addressOnTheBus(AccessibilityBus& bus, const QProcess& browser) {
    using namespace accessible;
    const QDeadlineTimer deadline(1000);
    try {
        const auto program = bus.program(browser.processId(), deadline);
        QList<Accessible> objects =
            program ? readAccessibles(bus.ask(childrenQuestion(*program), deadline)) : QList<Accessible>();
        for (const Accessible& window : objects) {
            for (const Accessible& page : readAccessibles(bus.ask(shownPageQuestion(window), deadline))) {
                const auto attributes = readAttributes(bus.ask(documentAttributesQuestion(page), deadline));
                return attributes.value(QStringLiteral("DocURL"), attributes.value(QStringLiteral("URI")));
            }
        }
    } catch (const NoAnswer&) {
        return {};
    }
    return {};
}

TEST_P(RealBrowserTest, KeepsTheAddressOfAPrivateWindowToItself) {
    const QString address = m_site + QStringLiteral("first.html");
    setSwitch();
    QProcess& browser = open({GetParam().privateArgument, address});
    // From the very first moment: there is no time at which the window is not yet known to be private.
    QString known;
    EXPECT_TRUE(waitUntil(
        [&] {
            EXPECT_EQ(ask(browser, titleInFront()), QString());
            known = addressOnTheBus(m_bus, browser);
            return known == address;
        },
        kStartUp))
        << "the page is not on the bus, so that nothing is proved; there is: " << known.toStdString();
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(ask(browser, titleInFront()), QString());
    }
    EXPECT_LT(m_milliseconds, 250) << "nothing to wait for";
}

INSTANTIATE_TEST_SUITE_P(, RealBrowserTest, ::testing::ValuesIn(kPrograms),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace kestu

int main(int argc, char** argv) {
    // Away from every network but a loopback of our own. Only root may; others run with the network they
    // have.
    if (unshare(CLONE_NEWNET) == 0) {
        QProcess::execute(QStringLiteral("ip"), {QStringLiteral("link"), QStringLiteral("set"),
                                                 QStringLiteral("lo"), QStringLiteral("up")});
    }
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
