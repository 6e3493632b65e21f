// SPDX-License-Identifier: GPL-3.0-or-later
//
// The questions and their bounds in time, against a made-up accessibility bus.
#include "platform/linux/BrowserAddress.h"

#include "support/AccessibleDesk.h"

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QElapsedTimer>
#include <QFileInfo>
#include <gtest/gtest.h>

#include <csignal>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::MockObject;
using test::waitUntil;

class BrowserAddressTest : public testing::Test {
protected:
    /// What run() gives, "" for nothing; how long it took is in m_milliseconds.
    QString ask(std::int64_t processId, const QString& title,
                const QString& browser = u"org.mozilla.firefox"_s) {
        QElapsedTimer timer;
        timer.start();
        const auto address =
            m_browserAddress.run({.source = {}, .bundleId = browser, .title = title, .processId = processId});
        m_milliseconds = timer.elapsed();
        EXPECT_NE(address, QString()) << "an empty address is none";
        return address.value_or(QString());
    }

    test::AccessibleDesk m_desk;
    AccessibilityBus m_bus{m_desk.session.connect()};
    BrowserAddress m_browserAddress{m_bus};
    qint64 m_milliseconds = 0;
};

TEST_F(BrowserAddressTest, IsThatOfThePageInTheWindowInFront) {
    const struct {
        const char* why;
        const char* windows;
        QString title;
        QString address;
    } rows[] = {
        {"the active window among several", "A|DocURL|http://a/\n*B|DocURL|http://b/\nC|DocURL|http://c/",
         u"changed"_s, u"http://b/"_s},
        {"the only window, though nothing marks it; the other spelling", "A|URI|http://a/", u"changed"_s,
         u"http://a/"_s},
        {"no mark: the title decides", "A - Chromium|URI|http://a/\nB - Audio - Chromium|URI|http://b/",
         u"B - Audio"_s, u"http://b/"_s},
        {"the mark is still at the window left behind", "*A|URI|http://a/\nB|URI|http://b/", u"B"_s,
         u"http://b/"_s},
        {"two of one title: the mark decides", "A|URI|http://a/1\n*A|URI|http://a/2", u"A"_s,
         u"http://a/2"_s},
        {"an unnamed window has no title to go by", "|URI|http://a/\n*|URI|http://b/", u""_s, u"http://b/"_s},
        {"the browser's own page is an address too", "A|DocURL|about:newtab", u"A"_s, u"about:newtab"_s},
        {"private by the name of the window, which the title does not show",
         "*A - Chromium（シークレット モード）|URI|http://a/", u"A - Chromium"_s, u""_s},
        {"private by the title alone", "*A|URI|http://a/", u"A — Mozilla Firefox プライベートブラウジング"_s,
         u""_s},
    };
    m_desk.startDesk();
    for (const auto& row : rows) {
        EXPECT_EQ(ask(m_desk.startProgram(u"windows"_s, row.windows), row.title), row.address) << row.why;
        EXPECT_LT(m_milliseconds, 900) << row.why << ": nothing there to wait for";
    }
}

TEST_F(BrowserAddressTest, IsFoundByTheTitleWhereTheProcessIsUnknown) {
    const struct {
        const char* why;
        const char* first;
        const char* second; // of another process of the same browser; null without one
        QString title;
        QString address;
    } rows[] = {
        {"the one of that title", "A|URI|http://a/\n*B|URI|http://b/", nullptr, u"A"_s, u"http://a/"_s},
        {"with the browser's words around it", "A - Audio|URI|http://a/\nB|URI|http://b/", nullptr, u"A"_s,
         u"http://a/"_s},
        {"exactly that one goes first", "A - B|URI|http://ab/\nA|URI|http://a/", nullptr, u"A"_s,
         u"http://a/"_s},
        {"none of that title", "*B|URI|http://b/", nullptr, u"A"_s, u""_s},
        {"no title to go by", "|URI|http://a/", nullptr, u""_s, u""_s},
        {"in any of its processes", "B|URI|http://b/", "A|URI|http://a/", u"A"_s, u"http://a/"_s},
        {"two of that title: any of them", "A|URI|http://1/\nA|URI|http://2/", nullptr, u"A"_s, u""_s},
        {"the mark decides", "A|URI|http://1/\n*A|URI|http://2/", nullptr, u"A"_s, u"http://2/"_s},
        {"both marked", "*A|URI|http://1/", "*A|URI|http://2/", u"A"_s, u""_s},
        {"one of them is private", "*A|URI|http://1/\nA - Chromium（シークレット モード）|URI|http://2/",
         nullptr, u"A - Chromium"_s, u""_s},
    };
    m_desk.startDesk();
    const QString browser = u"jp.example.browser"_s;
    BrowserAddress byTitle(m_bus, [&] {
        const QFileInfo program(QStringLiteral(KESTU_TEST_SUPPORT "/accessible_desk.py"));
        return std::vector<DesktopEntry>{{.id = browser,
                                          .localizedName = u"Browser"_s,
                                          .startupWmClass = {},
                                          .executable = program.canonicalFilePath()}};
    });
    for (const auto& row : rows) {
        const size_t before = m_desk.programs.size();
        m_desk.startProgram(u"first"_s, row.first);
        if (row.second) {
            m_desk.startProgram(u"second"_s, row.second);
        }
        const auto ask = [&](const QString& ofBrowser) {
            return byTitle.run({.source = {}, .bundleId = ofBrowser, .title = row.title}).value_or(QString());
        };
        EXPECT_EQ(ask(browser), row.address) << row.why;
        EXPECT_EQ(ask(u"org.mozilla.firefox"_s), QString()) << "no such browser is on the bus";
        while (m_desk.programs.size() > before) {
            m_desk.programs.pop_back();
        }
    }
}

TEST_F(BrowserAddressTest, IsWaitedForWithinOneSecondAndNotAgainUntilTheBrowserHasGivenOne) {
    m_desk.startDesk();
    const std::int64_t browser = m_desk.startProgram(u"page"_s, "A|DocURL|about:blank");
    EXPECT_EQ(ask(browser, u"A"_s), QString());
    EXPECT_GE(m_milliseconds, 950);
    EXPECT_LT(m_milliseconds, 1250);
    EXPECT_EQ(ask(browser, u"B"_s), QString());
    EXPECT_LT(m_milliseconds, 300) << "one wait in vain is enough";

    m_desk.describe(u"page"_s, "C|DocURL|http://c/");
    EXPECT_EQ(ask(browser, u"C"_s), u"http://c/"_s);
    // Looks are 50 ms apart.
    m_desk.describe(u"page"_s, "D|DocURL|http://d/|6");
    EXPECT_EQ(ask(browser, u"D"_s), u"http://d/"_s) << "this browser is worth a wait";
    EXPECT_GE(m_milliseconds, 300);
}

TEST_F(BrowserAddressTest, OfAHungBrowserCostsOneShortWaitHoweverOftenItsTitleChanges) {
    m_desk.startDesk();
    const auto page = "A|DocURL|http://a/";
    const auto hung = static_cast<pid_t>(m_desk.startProgram(u"hung"_s, page));
    const std::int64_t well = m_desk.startProgram(u"well"_s, page);
    ASSERT_EQ(ask(hung, u"A"_s), u"http://a/"_s);

    ASSERT_EQ(kill(hung, SIGSTOP), 0);
    EXPECT_EQ(ask(hung, u"B"_s), QString());
    EXPECT_GE(m_milliseconds, 250);
    EXPECT_LT(m_milliseconds, 450);
    for (const QString& title : {u"A"_s, u"B"_s, u"A"_s}) {
        EXPECT_EQ(ask(hung, title), QString());
        EXPECT_LT(m_milliseconds, 100) << "it still owes the first answer";
    }
    EXPECT_EQ(ask(well, u"A"_s), u"http://a/"_s);
    EXPECT_LT(m_milliseconds, 250) << "a hung neighbour is nothing to the others";

    ASSERT_EQ(kill(hung, SIGCONT), 0);
    EXPECT_TRUE(waitUntil([&] { return ask(hung, u"B"_s) == u"http://a/"; }));
}

TEST_F(BrowserAddressTest, IsAskedOfNoOtherProgramThanTheOneInFront) {
    const std::int64_t desk = m_desk.startDesk();
    const std::int64_t other = m_desk.startProgram(u"windows"_s, "*A|DocURL|http://a/");
    EXPECT_EQ(ask(desk, u"A"_s), QString()) << "none of the programs on its bus";

    // Ourselves: on the bus as well, and not able to answer while we ask.
    const QString registry = u"org.a11y.atspi.Registry"_s;
    const QVariant root = QVariant::fromValue(QDBusObjectPath(u"/org/a11y/atspi/accessible/root"_s));
    MockObject(m_desk.accessibility->connect(), registry, u"/org/a11y/atspi/registry"_s)
        .call(registry, u"Embed"_s, {root});
    EXPECT_EQ(ask(QCoreApplication::applicationPid(), u"A"_s), QString());
    EXPECT_LT(m_milliseconds, 100);
    EXPECT_EQ(ask(other, u"A"_s), u"http://a/"_s);
}

TEST_F(BrowserAddressTest, SwitchesTheBusOnOnceAndLeavesItOffWhenTheUserWantsItOff) {
    const std::int64_t desk = m_desk.startDesk();
    EXPECT_FALSE(m_bus.isEnabled());
    ASSERT_EQ(ask(desk, u"A"_s), QString());
    EXPECT_TRUE(m_bus.isEnabled());

    m_desk.setSwitch(false);
    ASSERT_EQ(ask(desk, u"B"_s), QString());
    EXPECT_FALSE(m_bus.isEnabled());
}

TEST_F(BrowserAddressTest, IsAbsentWithoutABusAndComesBackWithOne) {
    // Who holds the launcher's name and answers nothing: else the question would start the system's own.
    QDBusConnection silent = m_desk.session.connect();
    ASSERT_TRUE(silent.registerService(u"org.a11y.Bus"_s));
    EXPECT_EQ(ask(1, u"A"_s), QString());
    EXPECT_LT(m_milliseconds, 250) << "no bus, no wait";
    ASSERT_TRUE(silent.unregisterService(u"org.a11y.Bus"_s));
    for (int round = 0; round < 2; ++round) {
        m_desk.startDesk();
        // Only the mark tells these two apart, and the new registry has to be told again that we listen.
        const std::int64_t browser =
            m_desk.startProgram(u"windows"_s, "A|URI|http://other/\n*A|URI|http://a/");
        EXPECT_EQ(ask(browser, u"A"_s), u"http://a/"_s) << round;
        m_desk.endBus();
    }
}

} // namespace
} // namespace kestu
