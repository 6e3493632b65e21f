// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/DayAggregation.h"
#include "classify/DurationText.h"

#include <gtest/gtest.h>

#include <limits>
#include <numeric>
#include <random>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

/// From minute to minute after the epoch.
ResolvedActivity item(double start, double end, std::optional<ProjectId> project = {}, const char* app = "a",
                      const char* title = "", std::optional<QString> domain = {}) {
    ResolvedActivity made;
    made.activity.id = static_cast<ActivityId>(start);
    made.activity.start = instantAt(start * 60);
    made.activity.end = instantAt(end * 60);
    made.activity.bundleId = made.activity.appName = QString::fromUtf8(app);
    made.activity.title = QString::fromUtf8(title);
    made.activity.domain = std::move(domain);
    made.projectId = project;
    return made;
}

ResolvedActivity manual(ResolvedActivity made) {
    made.activity.isManual = true;
    return made;
}

TEST(Totals, SumByKeyMostFirstAndTiesInTheOrderOfAppearance) {
    auto tagged = item(0, 10, 1, "Editor", "x", u""_s);
    tagged.tagIds = {8, 3};
    const std::vector items{tagged, item(10, 15, std::nullopt, "Browser", "y", u"b.jp"_s),
                            item(15, 35, 2, "Editor", ""), item(40, 20, 9, "Backwards", "z", u"c.jp"_s),
                            item(50, 55, std::nullopt, "Other", "y", u"a.jp"_s)};
    EXPECT_EQ(projectTotals(items), (ProjectTotals{{2, 1200}, {1, 600}, {std::nullopt, 600}, {9, 0}}));
    EXPECT_EQ(tagTotals(items), (TagTotals{{3, 600}, {8, 600}}));
    EXPECT_EQ(
        appTotals(items),
        (NamedTotals{{u"Editor"_s, 1800}, {u"Browser"_s, 300}, {u"Other"_s, 300}, {u"Backwards"_s, 0}}));
    EXPECT_EQ(domainTotals(items), (NamedTotals{{u"b.jp"_s, 300}, {u"a.jp"_s, 300}, {u"c.jp"_s, 0}}));
    EXPECT_EQ(
        titleTotals(items),
        (NamedTotals{
            {u"Editor：x"_s, 600}, {u"Browser：y"_s, 300}, {u"Other：y"_s, 300}, {u"Backwards：z"_s, 0}}));
}

TEST(UnassignedGroups, JoinByApplicationAndSiteWithTheThreeLongestTitles) {
    const std::vector items{item(0, 1, {}, "a", "one"),
                            item(1, 3, {}, "a", "two", u""_s),
                            item(3, 6, {}, "a", "three"),
                            item(6, 10, {}, "a", "four"),
                            item(10, 30, {}, "a", ""),
                            item(30, 31, 5, "a", "assigned"),
                            item(31, 71, {}, "a", "s", u"s.jp"_s)};
    const auto groups = unassignedGroups(items);
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].identity(), u"a|s.jp"_s);
    EXPECT_EQ(groups[1],
              (UnassignedGroup{
                  u"a"_s, u"a"_s, std::nullopt, 1800, {u"four"_s, u"three"_s, u"two"_s}, {0, 1, 3, 6, 10}}));
}

TEST(Hours, BeginOnTheWallClocksHourAndHoldThePiecesOfEachActivity) {
    const std::vector items{item(550, 560), manual(item(590, 610, 4)), item(700, 725)}; // 9:10, 9:50, 11:40
    const auto rowsIn = [&](const char* zone) { return hourRows(items, {.zone = QTimeZone(zone)}); };
    const auto utc = rowsIn("UTC");
    ASSERT_EQ(utc.size(), 4U);
    EXPECT_EQ(utc[0], instantAt(9 * 3600));
    EXPECT_EQ(rowsIn("Asia/Kolkata")[0], instantAt(8.5 * 3600)) << "half an hour beside UTC";
    EXPECT_EQ(hourSlices(items, utc[0]),
              (std::vector<HourSlice>{{550, std::nullopt, false, 600, 600}, {590, 4, true, 3000, 600}}));
    EXPECT_EQ(hourSlices(items, utc[1]), (std::vector<HourSlice>{{590, 4, true, 0, 600}}));
    EXPECT_EQ(hourSlices(items, utc[1])[0].identity(), u"590-0.0"_s);
    EXPECT_TRUE(hourRows({}, {.zone = QTimeZone("UTC")}).empty());
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(hourRows(std::array{item(0, infinity)}, {.zone = QTimeZone("UTC")}).empty());
}

TEST(Gaps, AreFoundBetweenRecordsOnly) {
    const auto withThird = [](double start) {
        return std::vector{item(start, 630), item(540, 600), item(550, 560)};
    };
    EXPECT_TRUE(gaps(withThird(603), Seconds{300}).empty());
    EXPECT_EQ(gaps(withThird(605), Seconds{300}),
              (std::vector<Interval>{{instantAt(600 * 60), instantAt(605 * 60)}}));
    EXPECT_TRUE(gaps({}, Seconds{0}).empty());
}

TEST(DailyTotals, AddUpToThePeriodAcrossBothChangesOfTheClock) {
    std::mt19937 random(7);
    for (const char* zone : {"Europe/Berlin", "Asia/Tokyo"}) {
        for (const QDate first : {QDate(2026, 3, 23), QDate(2026, 10, 19)}) {
            const Calendar calendar{.zone = QTimeZone(zone)};
            const auto midnight = [&](int day) {
                return instantAt(
                    static_cast<double>(first.addDays(day).startOfDay(calendar.zone).toSecsSinceEpoch()));
            };
            std::vector<ResolvedActivity> items;
            for (Instant start = midnight(0); start < midnight(14);) {
                const Instant end = std::min(midnight(14), start + Seconds(random() % 40000));
                items.push_back(item(0, 0, static_cast<ProjectId>(random() % 3)));
                items.back().activity.start = std::exchange(start, end);
                items.back().activity.end = end;
            }
            const auto totals = dailyTotals(items, {.start = midnight(0), .end = midnight(14)}, calendar);
            for (int day = 0; day < 14; ++day) {
                double seconds = 0;
                for (const DailyTotal& total : totals) {
                    seconds += total.day == midnight(day) ? total.seconds : 0;
                }
                EXPECT_DOUBLE_EQ(seconds, (midnight(day + 1) - midnight(day)).count()) << zone << day;
            }
        }
    }
    const Calendar utc{.zone = QTimeZone("UTC")};
    const auto overMidnight = dailyTotals(std::array{item(1410, 1470, 3)},
                                          {.start = instantAt(0), .end = instantAt(7 * 86400)}, utc);
    EXPECT_EQ(overMidnight, (std::vector<DailyTotal>{{instantAt(0), 3, 1800}, {instantAt(86400), 3, 1800}}));
    EXPECT_EQ(overMidnight[1].identity(), u"86400.0-3"_s);
}

TEST(TimeBlocks, JoinOneProjectOverShortPausesAndNameTheirLongestLabels) {
    const std::vector items{item(12, 20, 1, "b"),   item(0, 10, 1, "a"),  manual(item(15, 40, 1, "手動", "")),
                            item(42.1, 43, 1, "a"), item(43, 44, 2, "c"), item(44, 45, 1, "a")};
    const auto at = [](double minute) { return instantAt(minute * 60); };
    const auto blocks = timeBlocks(items, Seconds{120});
    ASSERT_EQ(blocks.size(), 4U);
    EXPECT_EQ(blocks[0], (TimeBlock{at(0), at(40), 1, 43 * 60, {u"手動"_s, u"a"_s, u"b"_s}}));
    EXPECT_EQ(blocks[1].start, at(42.1)) << "a pause of more than two minutes";
    EXPECT_EQ(blocks[3].labels, QStringList{u"a"_s});
}

TEST(DurationText, IsWholeMinutesAndHours) {
    const struct {
        double seconds;
        const char* text;
    } rows[] = {{0, "0分"},
                {-5, "0分"},
                {0.5, "1分未満"},
                {59.9, "1分未満"},
                {119, "1分"},
                {3599, "59分"},
                {3600, "1時間"},
                {3660, "1時間1分"},
                {7199, "1時間59分"},
                {360000, "100時間"},
                {std::numeric_limits<double>::quiet_NaN(), "0分"}};
    for (const auto& row : rows) {
        EXPECT_EQ(formatDuration(row.seconds).toStdString(), row.text);
    }
}

} // namespace
} // namespace kestu
