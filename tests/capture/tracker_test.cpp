// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/Tracker.h"

#include "support/FakePlatform.h"
#include "support/PrivateBus.h"
#include "support/TemporaryStore.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

class TrackerTest : public testing::Test {
protected:
    TrackerTest() {
        tracker.onUpdate = [this] { ++updates; };
        show("editor", "a.txt");
    }

    void show(const char* bundleId, const char* title) {
        platform.fakeWorkspace.front = {QString::fromUtf8(bundleId), u"App"_s, 1};
        platform.fakeWorkspace.title = QString::fromUtf8(title);
    }

    /// A window that came to the front `age` seconds ago.
    void showSince(double age, const char* bundleId, const char* title) {
        show(bundleId, title);
        platform.fakeWorkspace.front->inFrontFor = Seconds{age};
    }

    void retitleSince(double age, const char* title) {
        platform.fakeWorkspace.title = QString::fromUtf8(title);
        platform.fakeWorkspace.front->inFrontFor = Seconds{1000};
        platform.fakeWorkspace.front->titledFor = Seconds{age};
    }

    void showNothing() { platform.fakeWorkspace.front.reset(); }

    void tick() { Q_EMIT platform.events.applicationActivated(); }

    /// Lets `seconds` pass without input, and ticks.
    void idleFor(double seconds) {
        clock.now += Seconds{seconds};
        platform.fakeInput.idle += Seconds{seconds};
        tick();
    }

    /// Lets `seconds` pass with input up to their end, and ticks.
    void workFor(double seconds) {
        platform.fakeInput.idle = Seconds{-seconds};
        idleFor(seconds);
    }

    /// The rows as "title start-end", in seconds since the test began.
    [[nodiscard]] std::string rows() const {
        return store.dump(u"SELECT printf('%s %g-%g', title, round(start - %1, 2), round(end - %1, 2)) "
                          "FROM activity ORDER BY start, id"_s.arg(epochSeconds(began), 0, 'f'));
    }

    test::TemporaryStore store;
    test::FakeClock clock;
    Instant began = clock.now;
    test::FakePlatform platform;
    Tracker tracker{*store.repository, platform, clock.clock(), clock.uptime()};
    int updates = 0;
};

TEST_F(TrackerTest, WritesOneRowForEqualSamplesAndTouchingRowsForASwitch) {
    tracker.start();
    EXPECT_EQ(rows(), "a.txt 0-0");
    workFor(2);
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-4");
    EXPECT_EQ(updates, 3);
    show("editor", "b.txt");
    workFor(1);
    workFor(10); // the longest silence
    workFor(11); // one too long
    EXPECT_EQ(rows(), "a.txt 0-5\nb.txt 5-15\nb.txt 26-26");
    EXPECT_EQ(tracker.current()->title, u"b.txt"_s);
    clock.now += Seconds{1};
    tracker.stop();
    tracker.stop();
    EXPECT_EQ(rows(), "a.txt 0-5\nb.txt 5-15\nb.txt 26-27");
    EXPECT_EQ(updates, 7);
    tick();
    EXPECT_FALSE(tracker.current());
    tracker.start(); // within the same second
    tracker.stop();
    EXPECT_EQ(rows(), "a.txt 0-5\nb.txt 5-15\nb.txt 26-27\nb.txt 27-27");
}

TEST_F(TrackerTest, EndsTheRowAtTheLastInputWhenTheUserLeaves) {
    tracker.start();
    workFor(4);
    for (int i = 0; i < 89; ++i) {
        idleFor(2);
    }
    EXPECT_EQ(rows(), "a.txt 0-182");
    idleFor(2); // exactly the threshold
    EXPECT_EQ(rows(), "a.txt 0-4");
    EXPECT_FALSE(tracker.current());
    const int updatesWhenLeft = updates;
    idleFor(2);
    idleFor(600);
    EXPECT_EQ(updates, updatesWhenLeft) << "while away nothing is written and nobody called";
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-4\na.txt 788-788");
}

TEST_F(TrackerTest, KeepsRecordingForWhoWatchesButForThreeHoursAtMost) {
    const struct {
        const char* name;
        const char* bundleId;
        QString url;
        QStringList assertions;
    } watched[] = {{"assertion", "editor", {}, {assertionType::preventUserIdleDisplaySleep.toString()}},
                   {"application", "org.videolan.vlc", {}, {}},
                   {"host", "com.google.Chrome", u"https://www.netflix.com/watch/1"_s, {}}};
    for (const auto& row : watched) {
        tracker.start();
        show(row.bundleId, row.name);
        platform.fakeScripting.answer = row.url;
        platform.fakeAssertions.types = row.assertions;
        workFor(0);
        const Instant lastInput = clock.now;
        while (clock.now - lastInput < Seconds{10'790}) {
            idleFor(10);
        }
        ASSERT_TRUE(tracker.current()) << row.name;
        idleFor(10);
        EXPECT_FALSE(tracker.current()) << row.name;
        const auto written = store->activitiesOverlapping(lastInput, clock.now);
        ASSERT_EQ(written.size(), 1U) << row.name;
        EXPECT_EQ(written[0].end, clock.now) << "closed at that tick, not back-dated";
        tracker.stop();
    }
}

TEST_F(TrackerTest, ClosesForWhateverIsNotToBeRecorded) {
    tracker.policy.excludedBundleIds = {u"secret"_s};
    tracker.start();
    for (const char* hidden : {"secret", "com.apple.ScreenSaver.Engine"}) {
        workFor(2);
        show(hidden, "x");
        workFor(2);
        workFor(2);
        EXPECT_FALSE(tracker.current()) << hidden;
        show("editor", "a.txt");
        workFor(2);
    }
    EXPECT_EQ(rows(), "a.txt 0-4\na.txt 8-12\na.txt 16-16");
}

TEST_F(TrackerTest, RecordsNothingFromLockOrSleepUntilItEnds) {
    using Signal = void (SystemEvents::*)();
    const std::pair<Signal, Signal> pairs[] = {
        {&SystemEvents::willSleep, &SystemEvents::didWake},
        {&SystemEvents::screensDidSleep, &SystemEvents::screensDidWake},
        {&SystemEvents::screenLocked, &SystemEvents::screenUnlocked}};
    tracker.start();
    for (const auto& [begin, end] : pairs) {
        workFor(2);
        clock.now += Seconds{1};
        Q_EMIT(platform.events.*begin)();
        const int questions = platform.fakeWorkspace.questions;
        const int updatesWhenHeld = updates;
        workFor(1);
        workFor(600);
        EXPECT_EQ(platform.fakeWorkspace.questions, questions);
        EXPECT_EQ(updates, updatesWhenHeld);
        Q_EMIT(platform.events.*end)();
    }
    EXPECT_EQ(rows(), "a.txt 0-3\na.txt 604-607\na.txt 1208-1211\na.txt 1812-1812");
}

TEST_F(TrackerTest, SkipsATickInsideATick) {
    platform.fakeWorkspace.whileAsked = [this] { tick(); };
    tracker.start();
    EXPECT_EQ(platform.fakeWorkspace.questions, 1);
    tick();
    EXPECT_EQ(platform.fakeWorkspace.questions, 2);
}

TEST_F(TrackerTest, GoesOnInANewRowAfterAResetOfTheSession) {
    tracker.start();
    workFor(4);
    clock.now += Seconds{1};
    tracker.resetSession();
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-4\na.txt 4-7") << "no time lies between";
    tracker.stop();
    tracker.resetSession();
    EXPECT_FALSE(tracker.current());
}

TEST_F(TrackerTest, WritesARowThatFailedWithItsOwnStartAsLongAsItLasts) {
    const QString full = u"CREATE TRIGGER full BEFORE INSERT ON activity "
                         "BEGIN SELECT RAISE(ABORT, 'full'); END"_s;
    store.execute(full);
    tracker.start();
    workFor(2);
    EXPECT_EQ(rows(), "");
    EXPECT_TRUE(tracker.current());
    EXPECT_EQ(updates, 2);
    store.execute(u"DROP TRIGGER full"_s);
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-4");
    store.execute(full);
    show("editor", "b.txt");
    workFor(2);
    workFor(2);
    show("editor", "c.txt");
    store.execute(u"DROP TRIGGER full"_s);
    workFor(2); // the very last chance of b.txt
    EXPECT_EQ(rows(), "a.txt 0-6\nb.txt 6-10\nc.txt 10-10");
}

TEST_F(TrackerTest, LeavesARowToAnotherHandAndGoesOnInANewOne) {
    const struct {
        const char* name;
        QString sql; // run by another connection at second 5, the row being 0-4
        const char* rows;
    } cases[] = {
        {"cut",
         u"UPDATE activity SET end = %1 + 1; INSERT INTO activity (start, end, bundle_id, app_name, "
         "title, is_manual) VALUES (%1 + 1, %1 + 3, 'kestu.manual', '手動', 'entry', 1)"_s,
         "a.txt 0-1\nentry 1-3\na.txt 4-8"},
        {"deleted", u"DELETE FROM activity"_s, "a.txt 4-8"},
        {"replaced", u"UPDATE activity SET is_manual = 1, title = 'entry'"_s, "entry 0-4\na.txt 4-8"},
        {"sorted", u"UPDATE activity SET app_name = 'mine'"_s, "a.txt 0-8"},
        {"cut at its beginning", u"UPDATE activity SET start = %1 + 2"_s, "a.txt 2-8"},
    };
    Database other(store.path);
    for (const auto& row : cases) {
        tracker.start();
        workFor(4);
        clock.now += Seconds{1};
        other.executeScript(QString(row.sql).replace(u"%1"_s, QString::number(epochSeconds(began), 'f')));
        workFor(1);
        workFor(2);
        EXPECT_EQ(rows(), row.rows) << row.name;
        tracker.stop();
        store.execute(u"DELETE FROM activity"_s);
        clock.now += Seconds{100};
        began = clock.now;
    }
}

TEST_F(TrackerTest, KeepsWhatIsStoredWhenTheClockIsSetBack) {
    tracker.start();
    workFor(4);
    clock.setBy(Seconds{-5});
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-4") << "until the clock has caught up";
    show("editor", "b.txt");
    workFor(2);
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-4\nb.txt 4-5") << "no second is counted twice";
    workFor(20 - 5);
    clock.setBy(Seconds{-3});
    tracker.stop();
    EXPECT_EQ(rows(), "a.txt 0-4\nb.txt 4-5\nb.txt 20-20") << "an end does not go back";
    tracker.start();
    workFor(2);
    clock.setBy(Seconds{-3600});
    workFor(2);
    workFor(2);
    EXPECT_EQ(rows(), "b.txt -3579--3577\na.txt 0-4\nb.txt 4-5\nb.txt 20-20\nb.txt 20-20");
}

TEST_F(TrackerTest, CutsAnAbsenceOutOfEveryRowInWhichItWasRecorded) {
    tracker.start();
    workFor(10);
    for (int i = 0; i < 80; ++i) {
        idleFor(2);
        show("player", i % 2 == 0 ? "one" : "two"); // by itself
    }
    ASSERT_NE(rows(), "a.txt 0-10");
    const int updatesBefore = updates;
    idleFor(20);
    EXPECT_EQ(rows(), "a.txt 0-10");
    EXPECT_EQ(updates, updatesBefore + 1);
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-10\ntwo 192-192");
}

TEST_F(TrackerTest, CutsAnAbsenceAlthoughTheClockWasSetMeanwhile) {
    tracker.start();
    workFor(10);
    idleFor(2);
    clock.setBy(Seconds{-3600});
    for (int i = 0; i < 89; ++i) {
        idleFor(2);
    }
    EXPECT_EQ(rows(), "a.txt 0-10");
}

TEST_F(TrackerTest, CutsNothingThatWasKeptAliveOrThatAnotherHandHasTouched) {
    platform.fakeAssertions.types = {assertionType::preventUserIdleDisplaySleep.toString()};
    tracker.start();
    for (int i = 0; i < 150; ++i) {
        idleFor(2);
    }
    platform.fakeAssertions.types = QStringList();
    idleFor(2);
    EXPECT_EQ(rows(), "a.txt 0-300") << "the film is over, and was seen";
    EXPECT_FALSE(tracker.current());

    workFor(98);
    idleFor(10);
    show("editor", "b.txt");
    idleFor(2);
    store.execute(u"UPDATE activity SET end = end - 1 WHERE title = 'a.txt' AND start > %1 + 300"_s.arg(
        epochSeconds(began), 0, 'f'));
    idleFor(180);
    EXPECT_EQ(rows(), "a.txt 0-300\na.txt 400-411") << "cut by another hand, it is its own";
}

TEST_F(TrackerTest, CutsAnAbsenceLaterWhenItCannotBeWrittenAtOnce) {
    tracker.start();
    workFor(10);
    idleFor(2);
    store.execute(u"CREATE TRIGGER full BEFORE UPDATE ON activity "
                  "BEGIN SELECT RAISE(ABORT, 'full'); END"_s);
    idleFor(180);
    EXPECT_EQ(rows(), "a.txt 0-12");
    store.execute(u"DROP TRIGGER full"_s);
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-10\na.txt 194-194");
}

TEST_F(TrackerTest, BeginsARowWhenItsWindowOrTitleCame) {
    tracker.start();
    workFor(2);
    showSince(0.5, "mail", "b");
    workFor(1);
    EXPECT_EQ(rows(), "a.txt 0-2.5\nb 2.5-3");
    retitleSince(1.5, "c");
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-2.5\nb 2.5-3.5\nc 3.5-5");
    retitleSince(9, "never earlier than what was seen");
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-2.5\nb 2.5-3.5\nc 3.5-5\nnever earlier than what was seen 5-7");

    tracker.policy.excludedBundleIds = {u"secret"_s};
    showSince(0.5, "secret", "");
    workFor(1);
    showSince(0.25, "mail", "d");
    workFor(1);
    tracker.stop();
    EXPECT_EQ(rows(), "a.txt 0-2.5\nb 2.5-3.5\nc 3.5-5\nnever earlier than what was seen 5-7.5\nd 8.75-9");
}

TEST_F(TrackerTest, MakesNoRowOfWhatIsGoneInAMoment) {
    tracker.start();
    workFor(1);
    showSince(0.02, "panel", "panel");
    workFor(1);
    showSince(0.05, "launcher", "launcher");
    workFor(0.06);
    showSince(0.04, "editor", "a.txt"); // back again
    workFor(0.04);
    EXPECT_EQ(rows(), "a.txt 0-1");
    showSince(1, "editor", "a.txt");
    workFor(0.9);
    EXPECT_EQ(rows(), "a.txt 0-3");
    showSince(0.09, "mail", "mail");
    workFor(2.09);
    EXPECT_EQ(rows(), "a.txt 0-5") << "goes on until something else stays";
    ASSERT_TRUE(test::waitUntil(
        [this] {
            platform.fakeWorkspace.front->inFrontFor = Seconds{0.1};
            return rows() == "a.txt 0-5\nmail 5-5.09";
        },
        1000))
        << rows();
}

TEST_F(TrackerTest, BridgesAMomentInWhichNothingIsInFront) {
    tracker.start();
    workFor(2);
    showNothing();
    workFor(0.5);
    workFor(0.5);
    showSince(0.25, "editor", "a.txt");
    workFor(1);
    EXPECT_EQ(rows(), "a.txt 0-4") << "the window manager was replaced";
    showNothing();
    workFor(1);
    workFor(0.7);
    EXPECT_EQ(rows(), "a.txt 0-5") << "ends when nothing came";
    EXPECT_FALSE(tracker.current());
    show("editor", "a.txt");
    workFor(2);
    showNothing();
    workFor(1);
    tracker.stop();
    EXPECT_EQ(rows(), "a.txt 0-5\na.txt 7.7-8.7");
}

TEST_F(TrackerTest, SeesATitleThatStaysAndNoneThatDoesNot) {
    tracker.start();
    workFor(2);
    const auto changeTitle = [this](double age, const char* title) {
        retitleSince(age, title);
        Q_EMIT platform.events.titleChanged();
    };
    const int updatesBefore = updates;
    QElapsedTimer sinceFirst;
    sinceFirst.start();
    for (int i = 0; i < 20; ++i) { // a spinner
        changeTitle(0.01, i % 2 == 0 ? "|" : "/");
        test::waitUntil([] { return false; }, 20);
    }
    EXPECT_EQ(updates, updatesBefore);
    changeTitle(0.25, "stays");
    clock.now += Seconds{0.25};
    ASSERT_TRUE(test::waitUntil([this] { return tracker.current()->title == u"stays"_s; }, 1500));
    EXPECT_EQ(rows(), "a.txt 0-2\nstays 2-2.25");
    EXPECT_LT(sinceFirst.elapsed(), 1500);

    retitleSince(0.1, "too soon");
    workFor(0.5);
    EXPECT_EQ(tracker.current()->title, u"stays"_s) << "one row a second";
    retitleSince(0.7, "too soon");
    workFor(0.6);
    EXPECT_EQ(rows(), "a.txt 0-2\nstays 2-2.65\ntoo soon 2.65-3.35") << "and yet from when it came";
}

TEST_F(TrackerTest, NeverSamplesItsOwnPanel) {
    tracker.start();
    workFor(2);
    showSince(0.01, "kestu", "KESTU");
    platform.fakeWorkspace.front->isOwnPanel = true;
    workFor(2);
    workFor(2);
    EXPECT_EQ(tracker.current()->title, u"a.txt"_s);
    EXPECT_EQ(rows(), "a.txt 0-6");
    showSince(1, "mail", "mail");
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-7\nmail 7-8");
    tracker.stop();
    show("kestu", "KESTU");
    platform.fakeWorkspace.front->isOwnPanel = true;
    tracker.start();
    EXPECT_FALSE(tracker.current());
}

TEST_F(TrackerTest, RecordsNoWindowThatHasVanished) {
    tracker.start();
    platform.fakeWorkspace.front = FrontmostApplication{.bundleId = {}, .localizedName = {}};
    workFor(2);
    workFor(2);
    EXPECT_FALSE(tracker.current());
    EXPECT_EQ(rows(), "a.txt 0-2");
}

TEST_F(TrackerTest, AsksHowThingsStandWhenItStarts) {
    tracker.start();
    Q_EMIT platform.events.willSleep();
    workFor(2);
    tracker.stop();
    tracker.start(); // nobody heard of the wake
    EXPECT_TRUE(tracker.current());
    tracker.stop();
    platform.events.held = true;
    tracker.start();
    EXPECT_FALSE(tracker.current());
    Q_EMIT platform.events.screenUnlocked();
    EXPECT_TRUE(tracker.current());
}

TEST_F(TrackerTest, CountsNoSilenceAtTheEnd) {
    tracker.start();
    workFor(2);
    clock.now += Seconds{3600}; // asleep, and nobody said so
    Q_EMIT platform.events.screenLocked();
    EXPECT_EQ(rows(), "a.txt 0-2");
}

TEST_F(TrackerTest, SurvivesAWriterThatHoldsTheLockForLongerThanItWaits) {
    tracker.start();
    workFor(2);
    Database other(store.path);
    other.executeScript(u"BEGIN IMMEDIATE"_s);
    workFor(2); // waits its three seconds and gives up
    EXPECT_EQ(rows(), "a.txt 0-2");
    other.executeScript(u"COMMIT"_s);
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-6") << "the same row, with nothing lost";
}

TEST_F(TrackerTest, TicksByItselfEveryTwoSeconds) {
    tracker.start();
    clock.now += Seconds{2};
    QElapsedTimer timer;
    timer.start();
    ASSERT_TRUE(test::waitUntil([this] { return updates == 2; }, 20000));
    EXPECT_GT(timer.elapsed(), 1500);
    EXPECT_LT(timer.elapsed(), 2700);
    EXPECT_EQ(rows(), "a.txt 0-2");
}

} // namespace
} // namespace kestu
