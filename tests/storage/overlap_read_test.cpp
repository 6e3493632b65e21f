// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/OverlapRead.h"

#include "support/TemporaryStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::TemporaryStore;

constexpr double hour = 3600;
constexpr double day = 24 * hour;

Activity stored(Repository& repository, double start, double end, bool isManual, const QSet<TagId>& tagIds) {
    Activity activity{.id = {},
                      .start = instantAt(start),
                      .end = instantAt(end),
                      .bundleId = u"b"_s,
                      .appName = u"a"_s,
                      .title = QString::number(start),
                      .url = std::nullopt,
                      .domain = std::nullopt,
                      .projectId = std::nullopt,
                      .isManual = isManual,
                      .tagIds = tagIds};
    activity.id =
        repository.database().run(u"INSERT INTO activity (start, end, bundle_id, app_name, title, is_manual) "
                                  "VALUES (?, ?, 'b', 'a', ?, ?)"_s,
                                  {start, end, activity.title, std::int64_t{isManual}});
    for (const TagId tagId : tagIds) {
        repository.setTag(std::array{activity.id}, tagId, Repository::TagState::on);
    }
    return activity;
}

/// Activities of every kind in random order: short ones back to back, days and years long, exactly around
/// the length at which they count as long, ending before they start, and far outside of any calendar.
std::vector<Activity> storedActivities(Repository& repository, std::mt19937& random) {
    const double lengths[] = {0,
                              1,
                              60,
                              hour,
                              12 * hour,
                              12 * hour + 0.5,
                              12 * hour + 1,
                              12 * hour + 2,
                              3 * day,
                              -60,
                              -2 * day,
                              3 * 365 * day,
                              90 * 365.25 * day};
    std::uniform_int_distribution<std::size_t> anyLength(0, std::size(lengths) - 1);
    std::uniform_int_distribution<int> minute(0, 10 * 24 * 60);
    std::vector<Activity> activities;
    repository.database().transaction([&] {
        for (const char* name : {"t1", "t2", "t3"}) {
            repository.insertCategory(CategoryKind::tag, QString::fromUtf8(name), QString());
        }
    });
    for (int count = 0; count < 300; ++count) {
        const bool isShort = count % 3 != 0;
        const double start = 60.0 * minute(random);
        const double length = isShort ? 60.0 * (count % 200) : lengths[anyLength(random)];
        const QSet<TagId> tagIds = count % 5 == 0 ? QSet<TagId>{1, 1 + count % 3} : QSet<TagId>{};
        activities.push_back(stored(repository, start, start + length, count % 7 == 0, tagIds));
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double coarse : {9.1e15, 4e16, 1e20}) {
        activities.push_back(stored(repository, coarse, std::nextafter(coarse, infinity), false, {}));
        activities.push_back(stored(repository, coarse - 43200, coarse + 43200, false, {}));
    }
    activities.push_back(stored(repository, 5 * day, infinity, true, {}));
    activities.push_back(stored(repository, -infinity, 2 * day, true, {}));
    return activities;
}

std::vector<Activity> overlapping(const std::vector<Activity>& activities, Instant from, Instant to) {
    std::vector<Activity> found;
    std::ranges::copy_if(activities, std::back_inserter(found), [&](const Activity& activity) {
        return activity.end > from && activity.start < to;
    });
    std::ranges::sort(found, {},
                      [](const Activity& activity) { return std::pair(activity.start, activity.id); });
    return found;
}

/// Ranges that begin and end exactly on, and next to, the edges of activities, and some in between.
std::vector<std::pair<Instant, Instant>> ranges(const std::vector<Activity>& activities,
                                                std::mt19937& random) {
    std::uniform_int_distribution<std::size_t> any(0, activities.size() - 1);
    std::vector<std::pair<Instant, Instant>> ranges;
    for (int count = 0; count < 300; ++count) {
        const double from = epochSeconds(activities[any(random)].end);
        const double to = epochSeconds(activities[any(random)].start);
        ranges.emplace_back(instantAt(from), instantAt(to));
        ranges.emplace_back(instantAt(std::nextafter(from, 0)), instantAt(from + day));
        ranges.emplace_back(instantAt(to), instantAt(to + 0.5 * hour));
    }
    return ranges;
}

TEST(OverlapRead, GivesExactlyTheOverlappingActivitiesByStartThenIdWithAndWithoutTheIndex) {
    for (const unsigned seed : {1U, 2U, 3U}) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const TemporaryStore store;
        const std::vector<Activity> activities = storedActivities(*store.repository, random);
        const auto chosen = ranges(activities, random);
        for (const auto& [from, to] : chosen) {
            ASSERT_TRUE(store.repository->activitiesOverlapping(from, to) ==
                        overlapping(activities, from, to))
                << "from " << epochSeconds(from) << " to " << epochSeconds(to);
        }
        store.database().executeScript(u"DROP INDEX activity_length"_s);
        const Repository scanning(std::make_unique<Database>(store.path), systemNow);
        for (const auto& [from, to] : chosen) {
            ASSERT_TRUE(scanning.activitiesOverlapping(from, to) == overlapping(activities, from, to))
                << "from " << epochSeconds(from) << " to " << epochSeconds(to);
        }
    }
}

TEST(OverlapRead, NeverPassesOverTheWholeTable) {
    const TemporaryStore store;
    const OverlapRead read(store.database());
    const double from = 1772636400.0;
    const SqlValues arguments = read.arguments(instantAt(from), instantAt(from + day));
    const auto plan = store.database().query(u"EXPLAIN QUERY PLAN "_s + read.sql(), arguments,
                                             [](const Row& row) { return row.text(3).toStdString(); });
    const auto count = [&](const char* part) {
        return std::ranges::count_if(plan, [&](const auto& line) { return line.find(part) != line.npos; });
    };
    EXPECT_EQ(count("SCAN"), 0);
    EXPECT_EQ(count("SEARCH a USING INDEX activity_start (start>? AND start<?)"), 1);
    EXPECT_GT(std::get<double>(arguments.at(2)), from - day); // where its search begins
    EXPECT_EQ(count("SEARCH a USING INDEX activity_length (<expr>>?)"), 1);
    EXPECT_EQ(count("SEARCH activity_tag USING COVERING INDEX"), 2);
}

} // namespace
} // namespace kestu
