// SPDX-License-Identifier: GPL-3.0-or-later
//
// The figures of a day or period, from its resolved activities (clipped by the caller). Pure functions: plain
// values in, new values out. All sums are seconds, and an activity that ends before it starts counts as 0.
// Lists "most first" keep equal figures in the order in which their keys first appear.
#pragma once

#include "base/Calendar.h"
#include "classify/Resolution.h"

#include <QStringList>

#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace kestu {

using Items = std::span<const ResolvedActivity>;

using ProjectTotals = std::vector<std::pair<std::optional<ProjectId>, double>>;
using TagTotals = std::vector<std::pair<TagId, double>>;
using NamedTotals = std::vector<std::pair<QString, double>>;

/// The piece of one activity inside one hour row.
struct HourSlice {
    ActivityId activityId{};
    std::optional<ProjectId> projectId;
    bool isManual = false; // a span entered by hand
    double offset = 0;     // seconds from the start of the hour
    double length = 0;     // seconds

    /// The key of the slice in lists.
    [[nodiscard]] QString identity() const;
    bool operator==(const HourSlice&) const = default;
};

/// Time without a project, by application and site.
struct UnassignedGroup {
    QString appName;
    QString bundleId;
    std::optional<QString> domain;
    double seconds = 0;
    QStringList sampleTitles;            // the three with the most seconds
    std::vector<ActivityId> activityIds; // of its items; that of an activity in pieces comes for each

    [[nodiscard]] QString identity() const;
    bool operator==(const UnassignedGroup&) const = default;
};

struct DailyTotal {
    Instant day{}; // the start of a local day
    std::optional<ProjectId> projectId;
    double seconds = 0;

    [[nodiscard]] QString identity() const;
    bool operator==(const DailyTotal&) const = default;
};

/// Time of one project without a longer pause.
struct TimeBlock {
    Instant start{};
    Instant end{};
    std::optional<ProjectId> projectId;
    double seconds = 0; // of its members, overlapping ones in full
    QStringList labels; // the three with the most seconds

    bool operator==(const TimeBlock&) const = default;
};

/// The seconds of one item.
[[nodiscard]] double secondsOf(const ResolvedActivity& item);

/// By project, the unassigned time as a key of its own; most first.
[[nodiscard]] ProjectTotals projectTotals(Items items);

/// By tag; an item counts in full for each of its tags. Most first.
[[nodiscard]] TagTotals tagTotals(Items items);

[[nodiscard]] NamedTotals appTotals(Items items);
[[nodiscard]] NamedTotals domainTotals(Items items);

/// By application and window title, "Editor：notes.txt"; items without a title are left out.
[[nodiscard]] NamedTotals titleTotals(Items items);

/// The time without a project, most first.
[[nodiscard]] std::vector<UnassignedGroup> unassignedGroups(Items items);

/// The starts of the hours from the one that holds the earliest start up to the latest end, empty ones
/// included, 3600 seconds apart.
[[nodiscard]] std::vector<Instant> hourRows(Items items, const Calendar& calendar);

/// What lies in the hour that begins at `hour`, in item order.
[[nodiscard]] std::vector<HourSlice> hourSlices(Items items, Instant hour);

/// The times of at least `minimum` without any record, between the first and the last one.
[[nodiscard]] std::vector<Interval> gaps(Items items, Seconds minimum);

/// By local day and project, day by day; within a day most first.
[[nodiscard]] std::vector<DailyTotal> dailyTotals(Items items, const Interval& range,
                                                  const Calendar& calendar);

/// Items of one project that follow each other within `mergeGap` as one block, in time order.
[[nodiscard]] std::vector<TimeBlock> timeBlocks(Items items, Seconds mergeGap);

} // namespace kestu
