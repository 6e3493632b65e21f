// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/Tracker.h"

#include "storage/Repository.h"
#include "storage/Schema.h"
#include "support/FakePlatform.h"
#include "support/PrivateBus.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using testing::Test;

/// The store in a file, so that a test can be its second writer.
std::unique_ptr<Repository> makeStore(const QString& path, const Clock& clock) {
    auto database = std::make_unique<Database>(path);
    migrate(*database);
    return std::make_unique<Repository>(std::move(database), clock);
}

class TrackerTest : public Test {
protected:
    TrackerTest()
        : repository(makeStore(path, clock.clock()))
        , tracker(*repository, platform, clock.clock()) {
        tracker.onUpdate = [this] { ++updates; };
        show("editor", "a.txt");
    }

    void show(const char* bundleId, const char* title) {
        platform.fakeWorkspace.front = FrontmostApplication{
            .bundleId = QString::fromUtf8(bundleId), .localizedName = u"App"_s, .processId = 1};
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
        std::string text;
        for (const Activity& row : repository->activitiesOverlapping(instantAt(-1e12), instantAt(1e12))) {
            text += row.title.toStdString() + " " + std::to_string(std::lround((row.start - began).count())) +
                    "-" + std::to_string(std::lround((row.end - began).count())) + "\n";
        }
        return text;
    }

    QTemporaryDir folder;
    const QString path = folder.filePath(u"kestu.sqlite"_s);
    test::FakeClock clock;
    const Instant began = clock.now;
    test::FakePlatform platform;
    std::unique_ptr<Repository> repository;
    Tracker tracker;
    int updates = 0;
};

TEST_F(TrackerTest, WritesOneRowForEqualSamplesAndTouchingRowsForASwitch) {
    tracker.start();
    EXPECT_EQ(rows(), "a.txt 0-0\n");
    workFor(2);
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-4\n");
    EXPECT_EQ(updates, 3);
    show("editor", "b.txt");
    workFor(1);
    workFor(10); // the longest silence
    workFor(11); // one too long
    EXPECT_EQ(rows(), "a.txt 0-5\nb.txt 5-15\nb.txt 26-26\n");
    EXPECT_EQ(tracker.current()->title, u"b.txt"_s);
    clock.now += Seconds{1};
    tracker.stop();
    tracker.stop();
    EXPECT_EQ(rows(), "a.txt 0-5\nb.txt 5-15\nb.txt 26-27\n");
    EXPECT_EQ(updates, 7);
    tick();
    EXPECT_FALSE(tracker.current());
    tracker.start(); // within the same second
    tracker.stop();
    EXPECT_EQ(rows(), "a.txt 0-5\nb.txt 5-15\nb.txt 26-27\nb.txt 27-27\n");
}

TEST_F(TrackerTest, EndsTheRowAtTheLastInputWhenTheUserLeaves) {
    tracker.start();
    workFor(4);
    for (int i = 0; i < 89; ++i) {
        idleFor(2);
    }
    EXPECT_EQ(rows(), "a.txt 0-182\n");
    idleFor(2); // exactly the threshold
    EXPECT_EQ(rows(), "a.txt 0-4\n");
    EXPECT_FALSE(tracker.current());
    const int updatesWhenLeft = updates;
    idleFor(2);
    idleFor(600);
    EXPECT_EQ(updates, updatesWhenLeft) << "while away nothing is written and nobody called";
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-4\na.txt 788-788\n");
}

TEST_F(TrackerTest, KeepsRecordingForWhoWatchesButForThreeHoursAtMost) {
    const struct {
        const char* name;
        const char* bundleId;
        const char* url;
        bool isHeld;
    } rowsOfTest[] = {{"assertion", "editor", "", true},
                      {"application", "org.videolan.vlc", "", false},
                      {"host", "com.google.Chrome", "https://www.netflix.com/watch/1", false}};
    for (const auto& row : rowsOfTest) {
        tracker.start();
        show(row.bundleId, row.name);
        platform.fakeScripting.answer = QString::fromUtf8(row.url);
        platform.fakeAssertions.types =
            row.isHeld ? QStringList{assertionType::preventUserIdleDisplaySleep.toString()} : QStringList();
        workFor(0);
        const Instant lastInput = clock.now;
        while (clock.now - lastInput < Seconds{10'790}) {
            idleFor(10);
        }
        ASSERT_TRUE(tracker.current()) << row.name;
        idleFor(10);
        EXPECT_FALSE(tracker.current()) << row.name;
        const auto written = repository->activitiesOverlapping(lastInput, clock.now);
        ASSERT_EQ(written.size(), 1U) << row.name;
        EXPECT_EQ(written[0].end, clock.now) << "closed at that tick, not back-dated";
        tracker.stop();
    }
}

TEST_F(TrackerTest, ClosesForWhateverIsNotToBeRecorded) {
    tracker.policy.excludedBundleIds = {u"secret"_s};
    tracker.start();
    const auto hide = {std::function([this] { show("secret", "x"); }),
                       std::function([this] { show("com.apple.ScreenSaver.Engine", "x"); }),
                       std::function([this] { platform.fakeWorkspace.front.reset(); })};
    for (const auto& change : hide) {
        workFor(2);
        change();
        workFor(2);
        workFor(2);
        EXPECT_FALSE(tracker.current());
        show("editor", "a.txt");
        workFor(2);
    }
    EXPECT_EQ(rows(), "a.txt 0-4\na.txt 8-12\na.txt 16-20\na.txt 24-24\n");
}

TEST_F(TrackerTest, RecordsNothingFromLockOrSleepUntilItEnds) {
    const struct {
        void (SystemEvents::*begin)();
        void (SystemEvents::*end)();
    } pairs[] = {{&SystemEvents::willSleep, &SystemEvents::didWake},
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
    EXPECT_EQ(rows(), "a.txt 0-3\na.txt 604-607\na.txt 1208-1211\na.txt 1812-1812\n");
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
    EXPECT_EQ(rows(), "a.txt 0-4\na.txt 5-7\n");
    tracker.stop();
    tracker.resetSession();
    EXPECT_FALSE(tracker.current());
}

TEST_F(TrackerTest, DropsAFailedWriteAndGoesOn) {
    repository->database().executeScript(
        u"CREATE TRIGGER full BEFORE INSERT ON activity BEGIN SELECT RAISE(ABORT, 'full'); END"_s);
    tracker.start();
    workFor(2);
    EXPECT_EQ(rows(), "");
    EXPECT_TRUE(tracker.current());
    EXPECT_EQ(updates, 2);
    repository->database().executeScript(u"DROP TRIGGER full"_s);
    workFor(2); // the same activity: it has no row
    EXPECT_EQ(rows(), "");
    show("editor", "b.txt");
    workFor(2);
    workFor(2);
    EXPECT_EQ(rows(), "b.txt 6-8\n");
}

TEST_F(TrackerTest, SurvivesAWriterThatHoldsTheLockForLongerThanItWaits) {
    tracker.start();
    workFor(2);
    Database other(path);
    other.executeScript(u"BEGIN IMMEDIATE"_s);
    workFor(2); // waits its three seconds and gives up
    EXPECT_EQ(rows(), "a.txt 0-2\n");
    other.executeScript(u"COMMIT"_s);
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 0-6\n") << "the same row, with nothing lost";
}

TEST_F(TrackerTest, TicksByItselfEveryTwoSeconds) {
    tracker.start();
    clock.now += Seconds{2};
    QElapsedTimer timer;
    timer.start();
    ASSERT_TRUE(test::waitUntil([this] { return updates == 2; }));
    EXPECT_NEAR(static_cast<double>(timer.elapsed()), 2000, 500);
    EXPECT_EQ(rows(), "a.txt 0-2\n");
}

} // namespace
} // namespace kestu
