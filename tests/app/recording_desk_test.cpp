// SPDX-License-Identifier: GPL-3.0-or-later
//
// The main job on a real desktop: what is in front is what is written.
#include "capture/Tracker.h"
#include "platform/Workspace.h"
#include "platform/linux/LinuxPlatform.h"
#include "storage/RepositoryOpener.h"
#include "support/Desk.h"
#include "support/MockLogin.h"
#include "support/PrivateBus.h"

#include <QSaveFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::waitUntil;

constexpr int patience = 20000; // milliseconds, for a program that starts on a busy machine

class RecordingTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        // Before the system bus is first used: a process asks for its address only once.
        systemBus = std::make_unique<test::PrivateBus>();
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", systemBus->address().toUtf8());
    }
    static void TearDownTestSuite() { systemBus.reset(); }

    [[nodiscard]] StoreLocation location() const { return {.explicitPath = path, .dataHome = {}}; }

    [[nodiscard]] std::vector<Activity> rows() const {
        return openRepository(location(), systemNow)->activitiesOverlapping(instantAt(0), instantAt(1e11));
    }

    static inline std::unique_ptr<test::PrivateBus> systemBus;
    QTemporaryDir folder;
    const QString path = folder.filePath(u"kestu.sqlite"_s);
};

TEST_F(RecordingTest, WritesWhatIsInFrontWithoutGapOrOverlap) {
    test::installDesktopEntry(u"jp.example.Editor"_s,
                              u"Name=Editor\nName[ja]=編集\nExec=xterm\nStartupWMClass=editor-window\n"_s);
    const test::Terminal editor(u"editor-window"_s, u"メモ <b>.txt"_s);
    const test::Terminal other(u"OtherTool"_s, u"other"_s);
    editor.activate();
    test::Program kestu(QStringLiteral(KESTU_PROGRAM), {u"--background"_s},
                        {{u"KESTU_DB_PATH"_s, path}, {u"LANGUAGE"_s, u"ja"_s}});
    ASSERT_TRUE(waitUntil([this] { return QFile::exists(path) && !rows().empty(); }, patience));
    const Instant began = rows().front().start;
    const auto assistant = openRepository(location(), systemNow); // the other process that writes

    waitUntil([] { return false; }, 3000);
    std::vector<Instant> switches;
    const test::Terminal* front = &editor;
    while (systemNow() - began < Seconds{18}) {
        front = front == &editor ? &other : &editor;
        front->activate();
        switches.push_back(systemNow());
        assistant->saveDailyNote(u"2026-03-05"_s, QString::number(switches.size()), u"assistant"_s);
        assistant->database().run(u"INSERT INTO rule_suggestion (target_kind, target_name, field, op, value, "
                                  "created_at) VALUES ('tag', 't', 'app', 'equals', 'v', 0)"_s);
        waitUntil([] { return false; }, 3000);
    }
    front->setTitle(u"新しい題"_s);
    const Instant retitled = systemNow();
    waitUntil([] { return false; }, 2500); // a title is seen when it has stayed
    kestu.send(SIGTERM);
    const Instant ended = systemNow();
    ASSERT_EQ(kestu.waitForEnd(), 0) << kestu.errorOutput().toStdString();

    EXPECT_EQ(assistant->suggestions().size(), switches.size());
    const auto written = rows();
    ASSERT_EQ(written.size(), switches.size() + 2);
    Seconds sum{0};
    for (size_t i = 0; i < written.size(); ++i) {
        const Activity& row = written[i];
        sum += row.end - row.start;
        if (i + 1 < written.size()) {
            EXPECT_EQ(row.end, written[i + 1].start) << "rows touch";
        }
        if (i > 0 && i <= switches.size()) {
            EXPECT_NEAR((row.start - switches[i - 1]).count(), 0, 0.15) << "a switch is seen at once";
        }
        const bool isEditor = i % 2 == 0 && i + 1 < written.size();
        const bool isRetitled = i + 1 == written.size();
        if (!isRetitled) {
            EXPECT_EQ(row.bundleId, isEditor ? u"jp.example.Editor"_s : u"OtherTool"_s);
            EXPECT_EQ(row.appName, isEditor ? u"編集"_s : u"OtherTool"_s);
            EXPECT_EQ(row.title, isEditor ? u"メモ <b>.txt"_s : u"other"_s);
        } else {
            EXPECT_EQ(row.title, u"新しい題"_s);
            EXPECT_NEAR((row.start - retitled).count(), 0, 0.15) << "and yet from when it came";
        }
    }
    EXPECT_NEAR((written.back().end - ended).count(), 0, 0.1) << "the open row ends when KESTU ends";
    EXPECT_NEAR(sum.count(), (ended - began).count(), 0.1);
}

TEST_F(RecordingTest, EndsTheRowAtTheLastInput) {
    const test::Terminal window(u"Quiet"_s, u"quiet"_s);
    window.activate();
    const std::unique_ptr<Platform> platform = startLinuxPlatform();
    const auto repository = openRepository(location(), systemNow);
    Tracker tracker(*repository, *platform, systemNow);
    tracker.idleThreshold = Seconds{3};
    test::moveMouse(100, 100);
    tracker.start();
    ASSERT_TRUE(tracker.current());
    waitUntil([] { return false; }, 2500);
    test::moveMouse(200, 200);
    const Instant lastInput = systemNow();
    ASSERT_TRUE(waitUntil([&] { return !tracker.current(); }, 8000));
    const auto written = repository->activitiesOverlapping(instantAt(0), instantAt(1e11));
    ASSERT_EQ(written.size(), 1U);
    EXPECT_NEAR((written[0].end - lastInput).count(), 0, 0.2);

    test::moveMouse(300, 300);
    EXPECT_TRUE(waitUntil([&] { return tracker.current().has_value(); }, 3000)) << "the user is back";
    tracker.stop();
}

TEST_F(RecordingTest, HearsTheLoginManagerOfSleepOfLockAndOfWhoKeepsTheDisplayAwake) {
    test::MockLogin login(*systemBus);
    login.start();
    const auto holdersAre = [&](const QString& list) {
        login.manager().answer(u"org.freedesktop.login1.Manager"_s, u"ListInhibitors"_s, u"a(ssssuu)"_s,
                               u"ret = [%1]"_s.arg(list));
    };
    const test::Terminal window(u"Player"_s, u"player"_s);
    window.activate();
    const std::unique_ptr<Platform> platform = startLinuxPlatform();
    const auto repository = openRepository(location(), systemNow);
    Tracker tracker(*repository, *platform, systemNow);
    const auto records = [&] { return tracker.current().has_value(); };
    const auto recordsNot = [&] { return !tracker.current(); };
    tracker.start();
    ASSERT_TRUE(records());

    login.announceSleep(true);
    ASSERT_TRUE(waitUntil(recordsNot));
    EXPECT_NEAR((rows().back().end - systemNow()).count(), 0, 0.3);
    login.setLocked(u"auto"_s, true);
    login.announceSleep(false);
    EXPECT_FALSE(waitUntil(records, 2500)) << "awake, but behind the locker";
    login.setLocked(u"auto"_s, false);
    EXPECT_TRUE(waitUntil(records));

    const auto front = platform->workspace().frontmostApplication();
    holdersAre(u"('idle', 'x', 'y', 'block', 0, %1)"_s.arg(front->processId));
    tracker.idleThreshold = Seconds{1};
    EXPECT_FALSE(waitUntil(recordsNot, 5000)) << "away, but the player keeps the display awake";
    holdersAre({});
    EXPECT_TRUE(waitUntil(recordsNot));
}

TEST_F(RecordingTest, LosesNothingWhenTheClockIsSetBack) {
    const test::Terminal window(u"Front"_s, u"front"_s);
    window.activate();
    const QString clock = folder.filePath(u"clock"_s);
    const auto setClock = [&clock](const QByteArray& offset) { // read at each question for the time
        QSaveFile file(clock);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(offset) > 0 && file.commit());
    };
    setClock("+0\n");
    const QString library =
        test::outputOf(u"faketime"_s, {u"-f"_s, u"+0"_s, u"sh"_s, u"-c"_s, u"echo $LD_PRELOAD"_s}).trimmed();
    ASSERT_FALSE(library.isEmpty());
    test::Program kestu(QStringLiteral(KESTU_PROGRAM), {u"--background"_s},
                        {{u"KESTU_DB_PATH"_s, path},
                         {u"LD_PRELOAD"_s, library},
                         {u"ASAN_OPTIONS"_s, u"verify_asan_link_order=0:detect_leaks=0"_s},
                         {u"FAKETIME_TIMESTAMP_FILE"_s, clock},
                         {u"FAKETIME_NO_CACHE"_s, u"1"_s},
                         {u"FAKETIME_DONT_FAKE_MONOTONIC"_s, u"1"_s}});
    ASSERT_TRUE(waitUntil([this] { return QFile::exists(path) && !rows().empty(); }, patience));
    const Instant began = rows().front().start;
    waitUntil([] { return false; }, 5000);
    setClock("-3600\n");
    const Instant set = systemNow();
    waitUntil([] { return false; }, 5000);
    kestu.send(SIGTERM);
    const Instant ended = systemNow();
    ASSERT_EQ(kestu.waitForEnd(), 0) << kestu.errorOutput().toStdString();

    const auto written = rows();
    ASSERT_EQ(written.size(), 2U);
    EXPECT_NEAR((written[1].start - began).count(), 0, 0.1) << "what was stored stays where it is";
    EXPECT_NEAR((written[1].end - set).count(), 0, 2.3) << "up to the last look before";
    EXPECT_NEAR((written[0].start - (set - Seconds{3600})).count(), 0, 2.3);
    EXPECT_NEAR((written[0].end - (ended - Seconds{3600})).count(), 0, 0.3);
}

TEST_F(RecordingTest, LosesAtMostTheLastTickWhenItIsKilled) {
    const test::Terminal window(u"Front"_s, u"front"_s);
    window.activate();
    for (const int milliseconds : {300, 2700, 5100}) {
        test::Program kestu(QStringLiteral(KESTU_PROGRAM), {u"--background"_s}, {{u"KESTU_DB_PATH"_s, path}});
        const size_t before = QFile::exists(path) ? rows().size() : 0;
        ASSERT_TRUE(waitUntil([&] { return QFile::exists(path) && rows().size() > before; }, patience));
        waitUntil([] { return false; }, milliseconds);
        kestu.send(SIGKILL);
        const Instant killed = systemNow();
        ASSERT_EQ(kestu.waitForEnd(), -1);
        const auto store = openRepository(location(), systemNow);
        EXPECT_EQ(store->database().query(u"PRAGMA integrity_check"_s, {},
                                          [](const Row& row) { return row.text(0); }),
                  std::vector<QString>{u"ok"_s});
        const auto written = store->activitiesOverlapping(instantAt(0), instantAt(1e11));
        ASSERT_EQ(written.size(), before + 1);
        EXPECT_LT((killed - written.back().end).count(), 2.3);
    }
}

} // namespace
} // namespace kestu
