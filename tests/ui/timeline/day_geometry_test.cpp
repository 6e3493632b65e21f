// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where a day's hours lie on the screen, what lies at a point, and which entries are proposed; without a
// window.
#include "base/LocalClock.h"
#include "support/SampleDay.h"
#include "ui/timeline/DayDrafts.h"
#include "ui/timeline/HourGeometry.h"
#include "ui/timeline/ProjectSummary.h"

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

ResolvedActivity item(ActivityId id, Instant start, Instant end) {
    ResolvedActivity made;
    made.activity.id = id;
    made.activity.start = start;
    made.activity.end = end;
    return made;
}

std::pair<double, double> minutesOf(const ManualDraft& draft) {
    return {(draft.start - test::sampleDay).count() / 60, (draft.end - test::sampleDay).count() / 60};
}

using Range = std::pair<double, double>; // minutes since midnight

TEST(DefaultDraftTest, TakesTheFirstGapElseTheLastHourElseNineOClock) {
    const Instant noon = test::sampleTime(12, 0);
    const struct {
        const char* name;
        std::vector<ResolvedActivity> items;
        bool isToday;
        Range expected;
    } cases[] = {
        {"a gap of five minutes",
         {item(1, test::sampleTime(8, 0), test::sampleTime(9, 0)),
          item(2, test::sampleTime(9, 4), test::sampleTime(10, 0)),
          item(3, test::sampleTime(10, 5), test::sampleTime(11, 0))},
         true,
         {600, 605}},
        {"a gap that now lies in",
         {item(1, test::sampleTime(8, 0), test::sampleTime(11, 0)),
          item(2, test::sampleTime(13, 0), test::sampleTime(14, 0))},
         true,
         {660, 720}},
        {"a gap that has hardly begun",
         {item(1, test::sampleTime(8, 0), test::sampleTime(11, 56)),
          item(2, test::sampleTime(13, 0), test::sampleTime(14, 0))},
         true,
         {720, 780}},
        {"a gap to come",
         {item(1, test::sampleTime(8, 0), test::sampleTime(13, 0)),
          item(2, test::sampleTime(13, 30), test::sampleTime(14, 0))},
         true,
         {780, 810}},
        {"today without one", {item(1, test::sampleTime(8, 0), noon)}, true, {660, 720}},
        {"another day without one", {}, false, {540, 600}},
    };
    for (const auto& [name, items, isToday, expected] : cases) {
        const ManualDraft draft =
            defaultDraft({.items = items, .start = test::sampleDay, .isToday = isToday}, noon);
        EXPECT_EQ(minutesOf(draft), expected) << name;
        EXPECT_FALSE(draft.editingId || draft.projectId) << name;
    }
}

TEST(ClickedDraftTest, TakesTheGapAroundTheClickElseHalfAnHourFromTheQuarter) {
    const std::vector<ResolvedActivity> items{
        item(1, test::sampleTime(9, 10), test::sampleTime(9, 20)),
        item(2, test::sampleTime(9, 21), test::sampleTime(10, 50)),
    };
    const struct {
        const char* name;
        int hour;
        double x;   // on a bar of 600
        double now; // minutes since midnight
        Range expected;
    } cases[] = {
        {"in a gap of a minute", 9, 205, 900, {560, 561}},
        {"before the first record", 9, 30, 900, {540, 570}},
        {"minute 44 outside any gap", 10, 440, 900, {630, 660}},
        {"behind the last record", 10, 590, 900, {645, 675}},
        {"left of the bar", 9, -20, 900, {540, 570}},
        {"in a gap, before now", 11, 300, 700, {650, 700}},
        {"in the same gap, behind now", 11, 450, 700, {700, 720}},
        {"outside any gap, before now", 10, 590, 662, {645, 662}},
        {"outside any gap, behind now", 12, 430, 760, {760, 780}},
        {"wholly behind now", 12, 450, 660, {765, 795}},
    };
    for (const auto& [name, hour, x, now, expected] : cases) {
        auto shown = items;
        if (hour == 11) {
            shown.push_back(item(3, test::sampleTime(12, 0), test::sampleTime(12, 30)));
        }
        const auto draft = clickedDraft(shown, test::sampleTime(hour, 0), x, 600,
                                        test::sampleDay + Seconds{now * 60}, test::tokyo());
        EXPECT_EQ(minutesOf(draft), expected) << name;
    }
    EXPECT_EQ(minutesOf(clickedDraft({}, test::sampleTime(9, 0), 0, 0, test::sampleNow, test::tokyo())),
              Range(540, 570))
        << "a bar without width";
}

TEST(HourGeometryTest, PlacesSlicesAndFindsThemAgain) {
    const std::vector<ResolvedActivity> items{
        item(1, test::sampleTime(9, 30), test::sampleTime(10, 15)),
        item(2, test::sampleTime(10, 45), test::sampleTime(10, 45) + Seconds{1}),
        item(3, test::sampleTime(10, 0), test::sampleTime(10, 10)), // lies above the first
    };
    const auto rows = hourRowsOf(items, test::tokyo());
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[1].number, 10);
    constexpr double width = hourMetrics::labelWidth + 600;
    EXPECT_EQ(hourRowsHeight(rows.size()), 80);
    const QRectF bar = barBox(1, width);
    EXPECT_EQ(bar, QRectF(48, 54, 600, 26));
    EXPECT_EQ(sliceBox(rows[0].slices[0], barBox(0, width)), QRectF(348, 22, 300, 26));
    EXPECT_EQ(sliceBox(rows[1].slices[1], bar), QRectF(498, 54, 1.5, 26)) << "never thinner";

    const struct {
        QPointF point;
        std::optional<std::size_t> row;
        std::optional<std::size_t> slice;
    } points[] = {
        {{60.5, 60}, 1, 2},  {{170.5, 60}, 1, 0}, {{499.4, 60}, 1, 1},
        {{400, 60}, 1, {}},  {{40, 60}, {}, {}}, // on the label
        {{300, 50}, {}, {}},                     // between the rows
        {{300, 10}, {}, {}},                     // on the scale
        {{300, 81}, {}, {}},
    };
    for (const auto& [point, row, slice] : points) {
        const auto foundRow = rowAt(rows.size(), point, width);
        EXPECT_EQ(foundRow, row) << point.x() << " " << point.y();
        if (foundRow && row) {
            EXPECT_EQ(sliceAt(rows[*row], point.x(), barBox(*row, width)), slice) << point.x();
        }
    }

    const auto stops = firstSlices(rows);
    ASSERT_EQ(stops.size(), 3) << "one for each activity";
    EXPECT_EQ(stops[1], (SlicePlace{.row = 1, .slice = 2}));
    EXPECT_EQ(emptySecond(rows[0], 0), 0);
    EXPECT_EQ(emptySecond(rows[1], 0), 15 * 60);
    EXPECT_EQ(emptySecond(rows[1], 46 * 60), 46 * 60);
    EXPECT_EQ(emptySecond(rows[1], 59.5 * 60), std::nullopt);
}

TEST(HourGeometryTest, HasARowForEachHourThatTheClocksRepeatOrLeaveOut) {
    const Calendar berlin{.zone = QTimeZone("Europe/Berlin"), .firstWeekday = Qt::Monday};
    const struct {
        QDate day;
        std::vector<int> numbers;
    } cases[] = {
        {QDate(2026, 10, 25), {1, 2, 2, 3}},
        {QDate(2026, 3, 29), {1, 3, 4, 5}},
    };
    for (const auto& [day, numbers] : cases) {
        const Instant start = startOfDay(day, berlin) + Seconds{3600};
        const std::vector<ResolvedActivity> items{item(1, start, start + Seconds{4 * 3600})};
        std::vector<int> shown;
        for (const HourRow& row : hourRowsOf(items, berlin)) {
            shown.push_back(row.number);
            EXPECT_EQ(row.slices.size(), 1);
        }
        EXPECT_EQ(shown, numbers);
    }
}

TEST(SummarySegmentsTest, KeepsSharesAndNeverLosesAProject) {
    using Segments = std::vector<std::pair<double, double>>;
    EXPECT_EQ(summarySegments({{1, 300.0}, {std::nullopt, 100.0}}, 400), (Segments{{0, 300}, {302, 100}}));
    EXPECT_EQ(summarySegments({{1, 1e6}, {2, 1.0}}, 100).back().second, 2);
    EXPECT_EQ(summarySegments({{1, 0.0}}, 100), (Segments{{0, 2}}));
}

} // namespace
} // namespace kestu
