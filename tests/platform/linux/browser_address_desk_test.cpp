// SPDX-License-Identifier: GPL-3.0-or-later
//
// Real browsers on a private desk, without any network: they see only files of the test's.
#include "platform/linux/BrowserAddress.h"

#include "support/Files.h"
#include "support/MockObject.h"
#include "support/PrivateBus.h"
#include "support/Program.h"

#include <QCoreApplication>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>
#include <list>
#include <sched.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::Program;
using test::waitUntil;

constexpr int startUp = 40000; // milliseconds for a browser's first window, on a slow machine

struct Browser {
    const char* name;
    QString bundleId;
    QString command; // %1 stands for the folder of its profile
    QString privateArgument;
    bool joinsWhileRunning; // the others must be started with the accessibility bus switched on
};

const Browser browsers[] = {
    {.name = "Firefox",
     .bundleId = u"org.mozilla.firefox"_s,
     .command = u"firefox-esr --profile %1"_s,
     .privateArgument = u"--private-window"_s,
     .joinsWhileRunning = true},
    {.name = "Chromium",
     .bundleId = u"org.chromium.Chromium"_s,
     .command = u"chromium --user-data-dir=%1 --force-renderer-accessibility --no-sandbox --test-type "
                "--no-first-run --no-default-browser-check --disable-gpu --disable-quic --disable-sync "
                "--disable-component-update --disable-background-networking --password-store=basic"_s,
     .privateArgument = u"--incognito"_s,
     .joinsWhileRunning = false},
};

// No first-run pages.
constexpr auto firefoxPreferences = R"(
user_pref("browser.aboutwelcome.enabled", false);
user_pref("browser.preonboarding.enabled", false);
user_pref("browser.sessionstore.resume_from_crash", false);
user_pref("browser.shell.checkDefaultBrowser", false);
user_pref("browser.startup.homepage_override.mstone", "ignore");
user_pref("datareporting.policy.dataSubmissionEnabled", false);
user_pref("termsofuse.bypassNotification", true);
)";

QString titleInFront() {
    return test::outputOf(u"xdotool"_s, {u"getactivewindow"_s, u"getwindowname"_s}).trimmed();
}

class RealBrowserTest : public testing::TestWithParam<Browser> {
public:
    /// By the browser's own way out: else its helpers go on writing into the folder.
    ~RealBrowserTest() override {
        for (Program& browser : m_programs) {
            if (browser.isRunning()) {
                browser.send(SIGCONT);
                browser.send(SIGTERM);
                browser.waitForEnd(5000);
            }
        }
    }

protected:
    /// The desktop's switch stands where this browser meets it in the worst case.
    RealBrowserTest() {
        test::putFile(m_folder.filePath(u"first.html"_s), "<title>First</title><h1>First</h1>");
        test::putFile(m_folder.filePath(u"second.html"_s), "<title>Second</title><h1>Second</h1>");
        test::putFile(m_folder.filePath(u"profile/user.js"_s), firefoxPreferences);
        const bool isOn = !GetParam().joinsWhileRunning;
        const test::MockObject launcher(QDBusConnection::sessionBus(), u"org.a11y.Bus"_s, u"/org/a11y/bus"_s);
        launcher.call(u"org.freedesktop.DBus.Properties"_s, u"Set"_s,
                      {u"org.a11y.Status"_s, u"IsEnabled"_s, QVariant::fromValue(QDBusVariant(isOn))});
        EXPECT_EQ(m_bus.isEnabled(), isOn);
    }

    /// Only the first one of a test stays; later ones pass their page on to it.
    Program& open(const QStringList& arguments) {
        QStringList command = GetParam().command.arg(m_folder.filePath(u"profile"_s)).split(u' ');
        const QString program = command.takeFirst();
        return m_programs.emplace_back(program, command + arguments);
    }

    static void waitForTitle(const QString& title) {
        ASSERT_TRUE(waitUntil([&] { return titleInFront().contains(title); }, startUp))
            << "in front: " << titleInFront().toStdString();
    }

    /// What run() gives, "" for nothing; how long it took is in m_milliseconds.
    QString ask(const Program& browser, const QString& title) {
        QElapsedTimer timer;
        timer.start();
        const auto address = m_browserAddress.run(
            {.source = {}, .bundleId = GetParam().bundleId, .title = title, .processId = browser.pid()});
        m_milliseconds = timer.elapsed();
        return address.value_or(QString());
    }

    /// Whether the bus itself would tell it of the browser's first window, private or not.
    bool isOnTheBus(const QString& address, const Program& browser) {
        using namespace accessible;
        const QDeadlineTimer deadline(1000);
        const auto firstOf = [&](const QDBusMessage& question) {
            const QList<Accessible> objects = readAccessibles(m_bus.ask(question, deadline));
            return objects.isEmpty() ? throw NoAnswer() : objects.first();
        };
        try {
            const auto program = m_bus.program(browser.pid(), deadline);
            const Accessible window = firstOf(childrenQuestion(program.value()));
            const Accessible page = firstOf(shownPageQuestion(window));
            const auto attributes = readAttributes(m_bus.ask(documentAttributesQuestion(page), deadline));
            return attributes.values().contains(address);
        } catch (const std::exception&) {
            return false; // not yet
        }
    }

    QTemporaryDir m_folder;
    const QString m_first = u"file://"_s + m_folder.filePath(u"first.html"_s);
    const QString m_second = u"file://"_s + m_folder.filePath(u"second.html"_s);
    std::list<Program> m_programs;
    AccessibilityBus m_bus{QDBusConnection::sessionBus()};
    BrowserAddress m_browserAddress{m_bus};
    qint64 m_milliseconds = 0;
};

TEST_P(RealBrowserTest, GivesTheAddressInFrontAndStopsNobodyWhenItHangs) {
    const Program& browser = open({m_first});
    waitForTitle(u"First"_s);
    ASSERT_TRUE(waitUntil([&] { return ask(browser, titleInFront()) == m_first; }, startUp));
    EXPECT_TRUE(m_bus.isEnabled());

    // A second window: the title is withheld, so that only the browser's own mark can tell which is in front.
    open({u"--new-window"_s, m_second});
    waitForTitle(u"Second"_s);
    EXPECT_TRUE(waitUntil([&] { return ask(browser, QString()) == m_second; }));
    test::outputOf(u"xdotool"_s,
                   {u"search"_s, u"--onlyvisible"_s, u"--name"_s, u"^First "_s, u"windowactivate"_s});
    waitForTitle(u"First"_s);
    EXPECT_TRUE(waitUntil([&] { return ask(browser, QString()) == m_first; }));

    browser.send(SIGSTOP);
    EXPECT_EQ(ask(browser, u"another title"_s), QString());
    EXPECT_GE(m_milliseconds, 250);
    EXPECT_LT(m_milliseconds, 450);
    EXPECT_EQ(ask(browser, titleInFront()), QString());
    EXPECT_LT(m_milliseconds, 100);
    browser.send(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return ask(browser, titleInFront()) == m_first; }));
}

TEST_P(RealBrowserTest, KeepsTheAddressOfAPrivateWindowToItself) {
    const Program& browser = open({GetParam().privateArgument, m_first});
    // From the very first moment: there is no time at which the window is not yet known to be private.
    const auto staysSilent = [&] {
        EXPECT_EQ(ask(browser, titleInFront()), QString());
        return isOnTheBus(m_first, browser);
    };
    ASSERT_TRUE(waitUntil(staysSilent, startUp)) << "not on the bus, so that nothing is proved";
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(waitUntil(staysSilent)); // a busy browser answers late
        EXPECT_LT(m_milliseconds, 250) << "nothing to wait for";
    }
}

INSTANTIATE_TEST_SUITE_P(, RealBrowserTest, testing::ValuesIn(browsers),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace kestu

int main(int argc, char** argv) {
    // Away from every network. Only root may; others run with the network they have.
    (void)unshare(CLONE_NEWNET);
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
