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

constexpr double day = 24.0 * 60.0 * 60.0;
constexpr double infinity = std::numeric_limits<double>::infinity();

struct Interval {
    double start;
    double end;
};

/// Activities of every kind in random order: short ones back to back, days and years long, exactly around
/// the length at which they count as long, ending before they start, and far outside of any calendar.
std::vector<Interval> randomIntervals(std::mt19937& random) {
    const double lengths[] = {0,     1,      60,  3600,    43200,    43200.5,   43201,
                              43202, 259200, -60, -172800, 94608000, 2840184000};
    std::uniform_int_distribution<std::size_t> anyLength(0, std::size(lengths) - 1);
    std::uniform_int_distribution<int> minute(0, 10 * 24 * 60);
    std::vector<Interval> intervals{{5 * day, infinity}, {-infinity, 2 * day}};
    for (const double coarse : {9.1e15, 4e16, 1e20}) {
        intervals.push_back({coarse, std::nextafter(coarse, infinity)});
        intervals.push_back({coarse - 43200, coarse + 43200});
    }
    for (int count = 0; count < 300; ++count) {
        const double start = 60.0 * minute(random);
        const bool isShort = count % 3 != 0;
        intervals.push_back({start, start + (isShort ? 60.0 * (count % 200) : lengths[anyLength(random)])});
    }
    return intervals;
}

void store(Database& database, const std::vector<Interval>& intervals) {
    database.transaction([&] {
        for (const auto& [start, end] : intervals) {
            database.run(u"INSERT INTO activity (start, end, bundle_id, app_name) VALUES (?, ?, 'b', 'a')"_s,
                         {start, end});
        }
        database.executeScript(
            u"INSERT INTO tag (id, name, color) VALUES (1, 'a', ''), (2, 'b', ''), (3, 'c', '');"
            "INSERT INTO activity_tag SELECT id, 1 FROM activity WHERE id % 5 = 0;"
            "INSERT INTO activity_tag SELECT id, 2 + id % 2 FROM activity WHERE id % 3 = 0;"_s);
    });
}

/// Ranges that begin and end exactly on, and next to, the edges of activities, and some in between.
std::vector<Interval> randomRanges(const std::vector<Interval>& intervals, std::mt19937& random) {
    std::uniform_int_distribution<std::size_t> any(0, intervals.size() - 1);
    std::vector<Interval> ranges;
    for (int count = 0; count < 300; ++count) {
        const double from = intervals[any(random)].end;
        const double to = intervals[any(random)].start;
        ranges.insert(ranges.end(), {{from, to}, {std::nextafter(from, 0), from + day}, {to, to + 1800}});
    }
    return ranges;
}

TEST(OverlapRead, GivesWhatThePlainStatementGivesWithAndWithoutTheIndex) {
    for (const unsigned seed : {1U, 2U, 3U}) {
        std::mt19937 random(seed);
        TemporaryStore temporary;
        Database& database = temporary.repository->database();
        const std::vector<Interval> intervals = randomIntervals(random);
        store(database, intervals);
        database.executeScript(u"DROP INDEX activity_end"_s);
        const Repository scanning(std::make_unique<Database>(temporary.path), systemNow);
        const auto indexed = temporary.open(); // makes the index again
        for (const auto& [from, to] : randomRanges(intervals, random)) {
            const auto expected =
                database.query(u"SELECT id FROM activity WHERE end > ? AND start < ? ORDER BY start, id"_s,
                               {from, to}, [](const Row& row) { return row.integer(0); });
            const auto found = indexed->activitiesOverlapping(instantAt(from), instantAt(to));
            ASSERT_TRUE(std::ranges::equal(found, expected, {}, &Activity::id))
                << "seed " << seed << " from " << from << " to " << to;
            ASSERT_TRUE(found == scanning.activitiesOverlapping(instantAt(from), instantAt(to)))
                << "seed " << seed << " from " << from << " to " << to;
        }
    }
}

TEST(OverlapRead, NeverPassesOverTheWholeTable) {
    const TemporaryStore temporary;
    const OverlapRead read(temporary.repository->database());
    const double from = 1772636400.0;
    const SqlValues arguments = read.arguments(instantAt(from), instantAt(from + day));
    const auto plan = temporary.repository->database().query(u"EXPLAIN QUERY PLAN "_s + read.sql(), arguments,
                                                             [](const Row& row) { return row.text(3); });
    const auto count = [&](const QString& part) {
        return std::ranges::count_if(plan, [&](const QString& line) { return line.contains(part); });
    };
    EXPECT_EQ(count(u"SCAN"_s), 0);
    EXPECT_EQ(count(u"SEARCH a USING INDEX activity_start (start>? AND start<?)"_s), 1);
    EXPECT_GT(std::get<double>(arguments.at(2)), from - day); // where its search begins
    EXPECT_EQ(count(u"SEARCH a USING INDEX activity_end (end>?)"_s), 1);
}

} // namespace
} // namespace kestu
