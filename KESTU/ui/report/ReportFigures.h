// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the report screen shows of a period, computed once from its items, and the words for the period
// itself. Plain values and pure functions.
#pragma once

#include "classify/DayAggregation.h"
#include "reports/ReportPeriod.h"

#include <QDate>
#include <QString>

#include <vector>

namespace kestu {

struct ReportFigures {
    Interval range;
    double total = 0;      // seconds, as all that follows
    double unassigned = 0; // without a project
    double manual = 0;     // entered by hand
    ProjectTotals projects;
    TagTotals tags;
    NamedTotals apps;
    NamedTotals domains;
    std::vector<DailyTotal> days;

    /// Over the days that have records; 0 without any.
    [[nodiscard]] double dailyAverage() const;
};

/// `items` are clipped to `range`; `calendar` is the report's.
[[nodiscard]] ReportFigures reportFigures(Items items, const Interval& range, const Calendar& calendar);

/// "9%", of a total that may be 0.
[[nodiscard]] QString shareText(double seconds, double total);

/// "2026年11月16日(月)", "11月16日〜11月22日" or "2026年11月".
[[nodiscard]] QString periodTitle(ReportPeriod period, const Interval& range, const Calendar& calendar);

/// The local days that `range` consists of.
[[nodiscard]] std::vector<QDate> daysOf(const Interval& range, const Calendar& calendar);

} // namespace kestu
