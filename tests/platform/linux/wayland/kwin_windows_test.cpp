// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/KWinWindows.h"

#include "platform/linux/wayland/FakeKWin.h"
#include "support/Files.h"
#include "support/PrivateBus.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::FakeKWin;
using test::waitUntil;
using Temper = FakeKWin::Temper;

class KWinWindowsTest : public testing::Test {
protected:
    std::unique_ptr<KWinWindows> watch() {
        return std::make_unique<KWinWindows>(m_bus.connect(), m_folder.path(), 400ms);
    }

    static bool titleBecomes(KWinWindows& windows, const QString& title) {
        return waitUntil([&] { return windows.front() && windows.front()->title == title; });
    }

    static bool runsScript(const FakeKWin& kwin) {
        return waitUntil([&] { return kwin.running().size() == 1; });
    }

    [[nodiscard]] QStringList files() const { return QDir(m_folder.path()).entryList(QDir::Files); }

    test::PrivateBus m_bus;
    QTemporaryDir m_folder;
};

TEST_F(KWinWindowsTest, HearsItsOwnScriptInBothPlasmasAndTakesItAlongAtTheEnd) {
    for (const int plasma : {5, 6}) {
        SCOPED_TRACE(plasma);
        FakeKWin kwin(m_bus.connect(), plasma);
        auto windows = watch();
        const QSignalSpy fronts(windows.get(), &WindowSource::frontChanged);
        const QSignalSpy titles(windows.get(), &WindowSource::titleChanged);
        ASSERT_TRUE(runsScript(kwin));
        EXPECT_FALSE(kwin.calls().contains(u"start"_s)) << "that starts everybody's";
        kwin.tell(FakeKWin::window(u"{1}"_s, u"窓 A"_s));
        ASSERT_TRUE(titleBecomes(*windows, u"窓 A"_s));
        EXPECT_EQ(
            windows->front()->facts,
            (WindowFacts{.wmInstance = u"editor"_s, .wmClass = u"org.example.Editor"_s, .processId = 4711}));
        EXPECT_LT(Moment::clock::now() - windows->front()->since, 1s);
        kwin.tell(FakeKWin::window(u"{1}"_s, u"新 A"_s));
        EXPECT_TRUE(titleBecomes(*windows, u"新 A"_s));
        EXPECT_TRUE(waitUntil([&] { return titles.count() == 1; }));
        EXPECT_EQ(fronts.count(), 1);
        EXPECT_EQ(windows->ability().kind, Ability::Kind::yes);

        windows.reset();
        EXPECT_TRUE(waitUntil([&] { return kwin.running().isEmpty(); }));
        EXPECT_TRUE(files().isEmpty());
    }
}

TEST_F(KWinWindowsTest, LoadsTheScriptAgainInANewKWin) {
    auto kwin = std::make_unique<FakeKWin>(m_bus.connect(), 6);
    const auto windows = watch();
    const QSignalSpy abilities(windows.get(), &WindowSource::abilityChanged);
    ASSERT_TRUE(runsScript(*kwin));
    kwin->tell(FakeKWin::window(u"{1}"_s, u"before"_s));
    ASSERT_TRUE(titleBecomes(*windows, u"before"_s));
    kwin.reset();
    EXPECT_TRUE(waitUntil([&] { return windows->ability() == Ability{}; }));
    EXPECT_FALSE(windows->front());
    EXPECT_TRUE(files().isEmpty());
    kwin = std::make_unique<FakeKWin>(m_bus.connect(), 6);
    ASSERT_TRUE(runsScript(*kwin));
    kwin->tell(FakeKWin::window(u"{1}"_s, u"after"_s));
    EXPECT_TRUE(titleBecomes(*windows, u"after"_s));
    EXPECT_EQ(abilities.count(), 2);
}

TEST_F(KWinWindowsTest, WaitsForAKWinThatHasItsNameBeforeItTakesScripts) {
    FakeKWin kwin(m_bus.connect(), 6, Temper::isStarting);
    const auto windows = watch();
    ASSERT_TRUE(waitUntil([&] { return kwin.calls().size() == 2; })) << "to unload and to load";
    kwin.setTemper(Temper::willing);
    ASSERT_TRUE(runsScript(kwin));
    kwin.tell(FakeKWin::window(u"{1}"_s, u"seen"_s));
    EXPECT_TRUE(titleBecomes(*windows, u"seen"_s));
}

TEST_F(KWinWindowsTest, StartsAllWhereItsNumberIsThatOfAnotherScript) {
    FakeKWin kwin(m_bus.connect(), 6, Temper::runsAnother);
    KWinWindows windows(m_bus.connect(), m_folder.path());
    ASSERT_TRUE(runsScript(kwin));
    EXPECT_EQ(kwin.calls().last(), u"start"_s);
    kwin.tell(FakeKWin::window(u"{1}"_s, u"seen"_s));
    EXPECT_TRUE(titleBecomes(windows, u"seen"_s));
}

TEST_F(KWinWindowsTest, UnloadsWhatACrashLeftAndLeavesAnotherCopyAlone) {
    FakeKWin kwin(m_bus.connect(), 6);
    kwin.leave(u"kestu-1.99999"_s);
    kwin.leave(u"somebody-else"_s);
    test::putFile(m_folder.filePath(u"kestu-kwin-1.99999.js"_s), "// left");
    const auto first = watch();
    ASSERT_TRUE(waitUntil([&] { return kwin.running().size() == 2; }));
    const auto second = watch();
    ASSERT_TRUE(waitUntil([&] { return kwin.running().size() == 3; }));
    EXPECT_FALSE(kwin.running().contains(u"kestu-1.99999"_s));
    EXPECT_TRUE(kwin.running().contains(u"somebody-else"_s));
    EXPECT_EQ(files().size(), 2);
}

TEST_F(KWinWindowsTest, SaysWhatWouldHelpWhereTheScriptDoesNotWorkAndRecoversWithTheNextKWin) {
    const struct {
        const char* name;
        Temper temper;
        const char* note;
    } cases[] = {
        {"-1 instead of an id", Temper::refusesToLoad, "受け付けない"},
        {"no script object", Temper::cannotRun, "受け付けない"},
        {"loaded, run, gone", Temper::dropsAtRun, "受け付けない"},
        {"never gets ready", Temper::isStarting, "応答がない"},
        {"hangs", Temper::neverAnswers, "応答がない"},
        {"runs and never calls", Temper::willing, "応答がない"},
    };
    for (const auto& [name, temper, note] : cases) {
        SCOPED_TRACE(name);
        auto kwin = std::make_unique<FakeKWin>(m_bus.connect(), 6, temper);
        QElapsedTimer timer;
        timer.start();
        const auto windows = watch();
        EXPECT_LT(timer.elapsed(), 300) << "it waited";
        EXPECT_TRUE(waitUntil([&] { return windows->ability().kind == Ability::Kind::no; }));
        EXPECT_TRUE(windows->ability().note.contains(QString::fromUtf8(note)))
            << windows->ability().note.toStdString();
        kwin.reset();
        kwin = std::make_unique<FakeKWin>(m_bus.connect(), 6);
        ASSERT_TRUE(runsScript(*kwin));
        kwin->tell(FakeKWin::window(u"{1}"_s, u"seen"_s));
        EXPECT_TRUE(titleBecomes(*windows, u"seen"_s));
        EXPECT_EQ(windows->ability().kind, Ability::Kind::yes);
    }
}

TEST_F(KWinWindowsTest, TriesAgainWhenTheUserAsks) {
    m_folder.remove(); // and a file in its place: no script can be written
    test::putFile(m_folder.path(), "in the way");
    FakeKWin kwin(m_bus.connect(), 6);
    const auto windows = watch();
    EXPECT_EQ(windows->ability().kind, Ability::Kind::no);
    EXPECT_TRUE(windows->ability().note.contains(u"書き込めない")) << windows->ability().note.toStdString();
    ASSERT_TRUE(QFile::remove(m_folder.path()));
    windows->request();
    EXPECT_TRUE(runsScript(kwin));
    EXPECT_EQ(windows->ability().kind, Ability::Kind::yes);
}

TEST_F(KWinWindowsTest, BelievesNobodyButKWinAndNothingThatIsNoWindow) {
    FakeKWin kwin(m_bus.connect(), 6);
    const auto windows = watch();
    ASSERT_TRUE(runsScript(kwin));
    QDBusConnection stranger = m_bus.connect();
    auto call = QDBusMessage::createMethodCall(kwin.running().first(), u"/jp/kestu/KWinWindows"_s,
                                               u"jp.kestu.KWinWindows"_s, u"InFront"_s);
    call << QString::fromUtf8(FakeKWin::window(u"{9}"_s, u"a stranger's"_s));
    EXPECT_EQ(stranger.call(call, QDBus::BlockWithGui, 5000).type(), QDBusMessage::ErrorMessage);

    kwin.tell(FakeKWin::window(u"{1}"_s, u"true"_s));
    ASSERT_TRUE(titleBecomes(*windows, u"true"_s));
    for (const char* lie : {"", "[]", "{}", "{\"id\":7}", "{\"id\":\"", "nothing"}) {
        kwin.tell(lie);
    }
    kwin.tell(FakeKWin::window(u"{2}"_s, u"own panel"_s, QCoreApplication::applicationPid(), u"layer"_s, {}));
    kwin.tell(FakeKWin::window(u"{1}"_s, u"still true"_s));
    EXPECT_TRUE(titleBecomes(*windows, u"still true"_s));

    kwin.tell(R"({"id":"{3}","pid":-5,"class":"bad\u0007name","entry":17,"title":"odd","at":1e300})");
    ASSERT_TRUE(titleBecomes(*windows, u"odd"_s));
    EXPECT_EQ(windows->front()->facts, WindowFacts());
    EXPECT_LT(Moment::clock::now() - windows->front()->since, 5s);
    const QString endless(1 << 20, u'長');
    kwin.tell(FakeKWin::window(u"{4}"_s, endless));
    EXPECT_TRUE(titleBecomes(*windows, endless));
}

} // namespace
} // namespace kestu
