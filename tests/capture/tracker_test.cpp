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
        return store.dump(
            u"SELECT title || ' ' || CAST(start - %1 AS INTEGER) || '-' || CAST(end - %1 AS INTEGER) "
            "FROM activity ORDER BY start, id"_s.arg(epochSeconds(began), 0, 'f'));
    }

    test::TemporaryStore store;
    test::FakeClock clock;
    const Instant began = clock.now;
    test::FakePlatform platform;
    Tracker tracker{*store.repository, platform, clock.clock()};
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
    EXPECT_EQ(rows(), "a.txt 0-4\na.txt 5-7");
    tracker.stop();
    tracker.resetSession();
    EXPECT_FALSE(tracker.current());
}

TEST_F(TrackerTest, DropsAFailedWriteAndGoesOn) {
    store.execute(u"CREATE TRIGGER full BEFORE INSERT ON activity "
                  "BEGIN SELECT RAISE(ABORT, 'full'); END"_s);
    tracker.start();
    workFor(2);
    EXPECT_EQ(rows(), "");
    EXPECT_TRUE(tracker.current());
    EXPECT_EQ(updates, 2);
    store.execute(u"DROP TRIGGER full"_s);
    workFor(2); // the same activity: it has no row
    EXPECT_EQ(rows(), "");
    show("editor", "b.txt");
    workFor(2);
    workFor(2);
    EXPECT_EQ(rows(), "b.txt 6-8");
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
