// SPDX-License-Identifier: GPL-3.0-or-later
//
// Time under an entry made by hand counts once, whether it was recorded before the entry or after it.
#include "classify/Resolution.h"
#include "support/TemporaryStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

Activity activityFrom(ActivityId id, double start, double end, bool isManual) {
    Activity activity;
    activity.id = id;
    activity.start = instantAt(start);
    activity.end = instantAt(end);
    activity.isManual = isManual;
    return activity;
}

TEST(Counting, CutsWhatWasRecordedWhereEntriesLie) {
    struct Span {
        ActivityId id;
        double start, end;
    };
    const struct {
        const char* name;
        std::vector<Span> spans;        // by start; ids above 9 are entries
        std::vector<Span> countedSpans; // in this order
    } rows[] = {
        {"no entry", {{2, 0, 10}, {1, 5, 5}}, {{2, 0, 10}, {1, 5, 5}}},
        {"into two pieces of one id, which come in time order",
         {{1, 0, 100}, {10, 20, 30}, {2, 25, 29}, {3, 40, 50}},
         {{1, 0, 20}, {10, 20, 30}, {1, 30, 100}, {3, 40, 50}}},
        {"pieces with equal starts by id",
         {{10, 0, 50}, {2, 10, 60}, {1, 20, 70}, {3, 50, 60}},
         {{10, 0, 50}, {1, 50, 70}, {2, 50, 60}, {3, 50, 60}}},
        {"entries that touch, overlap and enclose each other",
         {{1, 0, 100}, {10, 10, 40}, {11, 15, 20}, {12, 30, 50}, {13, 50, 60}},
         {{1, 0, 10}, {10, 10, 40}, {11, 15, 20}, {12, 30, 50}, {13, 50, 60}, {1, 60, 100}}},
        {"exactly covered, from its start, to its end, and neighbours",
         {{1, 0, 10}, {10, 10, 20}, {2, 10, 20}, {3, 10, 25}, {4, 20, 30}},
         {{1, 0, 10}, {10, 10, 20}, {3, 20, 25}, {4, 20, 30}}},
        {"an entry that lasts no time covers nothing",
         {{1, 0, 10}, {10, 5, 5}, {11, 6, 4}},
         {{1, 0, 10}, {10, 5, 5}, {11, 6, 4}}},
        {"a piece between each two entries",
         {{1, 0, 60}, {10, 10, 20}, {11, 30, 40}, {12, 50, 70}},
         {{1, 0, 10}, {10, 10, 20}, {1, 20, 30}, {11, 30, 40}, {1, 40, 50}, {12, 50, 70}}},
    };
    for (const auto& [name, spans, countedSpans] : rows) {
        const auto activitiesOf = [](const std::vector<Span>& all) {
            std::vector<Activity> activities;
            activities.reserve(all.size());
            for (const Span& span : all) {
                activities.push_back(activityFrom(span.id, span.start, span.end, span.id > 9));
            }
            return activities;
        };
        EXPECT_EQ(counted(activitiesOf(spans)), activitiesOf(countedSpans)) << name;
    }
    const auto odd = counted({activityFrom(1, nan, 5, false), activityFrom(10, nan, 50, true),
                              activityFrom(11, 0, 9, true), activityFrom(2, 8, 6, false)});
    EXPECT_EQ(odd.size(), 4) << "times that no clock gives are cut by nobody and cut nothing";
}

/// What is recorded and what an entry says, without the ids and what lasts no time.
std::vector<Activity> withoutIds(std::vector<Activity> activities) {
    for (Activity& activity : activities) {
        activity.id = 0;
    }
    std::erase_if(activities, [](const Activity& activity) { return !(activity.end > activity.start); });
    std::ranges::sort(activities, {}, [](const Activity& activity) {
        return std::tuple(activity.start, activity.end, activity.appName, activity.title);
    });
    return activities;
}

// Every recorded activity has an application of its own, and every entry a title.
TEST(Counting, LeavesWhatSavingTheEntriesAfterwardsLeaves) {
    test::TemporaryStore store;
    store.execute(u"INSERT INTO project (id, name, color) VALUES (1, 'p', '');"
                  "INSERT INTO tag (id, name, color) VALUES (1, 't', '')"_s);
    std::mt19937 random(3);
    const auto twoTimes = [&] {
        std::uniform_int_distribution<int> second(0, 60); // few, so that many touch
        const auto [start, end] = std::minmax({second(random), second(random)});
        return std::pair(instantAt(start), instantAt(end));
    };
    const auto stored = [&] { return store->activitiesOverlapping(instantAt(-1), instantAt(100)); };
    int split = 0;
    for (int round = 0; round < 60; ++round) {
        store.execute(u"DELETE FROM activity"_s);
        std::vector<ManualEntry> entries;
        for (int number = 0; number < 12; ++number) {
            const auto [start, end] = twoTimes();
            const std::array id{store->insertActivity({{}, QString::number(number), {}, {}}, start)};
            store->extendActivity(id[0], end);
            store->setProject(id, number % 2 == 0 ? std::optional<ProjectId>(1) : std::nullopt);
            store->setTag(id, 1, number % 3 == 0 ? Repository::TagState::on : Repository::TagState::off);
        }
        for (int number = 0; number < 5; ++number) {
            const auto [start, end] = twoTimes();
            if (end > start) {
                entries.push_back({start, end, QString::number(number), {}, {}});
                store.repository->database().run(
                    u"INSERT INTO activity (start, end, bundle_id, app_name, title, is_manual) "
                    "VALUES (?, ?, 'kestu.manual', '手動', ?, 1)"_s,
                    {epochSeconds(start), epochSeconds(end), QString::number(number)});
            }
        }
        const auto read = stored();
        const auto now = counted(read);
        ASSERT_TRUE(std::ranges::is_sorted(
            now, {}, [](const Activity& activity) { return std::pair(activity.start, activity.id); }));
        for (const Activity& piece : now) {
            const auto whole = std::ranges::find(read, piece.id, &Activity::id);
            ASSERT_TRUE(whole != read.end() && whole->appName == piece.appName);
        }
        split += now.size() > read.size() ? 1 : 0;
        store.execute(u"DELETE FROM activity WHERE is_manual = 1"_s);
        for (const ManualEntry& entry : entries) {
            store->insertManualEntry(entry);
        }
        ASSERT_EQ(withoutIds(now), withoutIds(stored())) << round;
    }
    EXPECT_GT(split, 0);
}

} // namespace
} // namespace kestu
