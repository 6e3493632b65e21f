// SPDX-License-Identifier: GPL-3.0-or-later
//
// The calendar periods that a report covers, and the names of its files. Pure; the calendar is passed in.
#pragma once

#include "base/Calendar.h"
#include "base/Time.h"

#include <QString>

#include <array>
#include <optional>

namespace kestu {

/// In the order of the picker.
enum class ReportPeriod { day, week, month };
inline constexpr std::array allReportPeriods{ReportPeriod::day, ReportPeriod::week, ReportPeriod::month};

/// "day", "week" and "month", and back.
[[nodiscard]] QString rawString(ReportPeriod period);
[[nodiscard]] std::optional<ReportPeriod> reportPeriodFromRaw(QStringView raw);

/// The user's calendar with weeks that begin on Monday, whatever the system's setting.
[[nodiscard]] Calendar reportCalendar(const Calendar& calendar);

/// The day, week or month that holds `anchor`. An anchor that no calendar can express counts as the epoch.
[[nodiscard]] Interval periodInterval(ReportPeriod period, Instant anchor, const Calendar& calendar);

enum class StepDirection { back = -1, forward = 1 };

/// The anchor one day, week or month further, at the same time of day; the last day of a shorter month
/// stands for the days that it lacks.
[[nodiscard]] Instant step(ReportPeriod period, Instant anchor, StepDirection direction,
                           const Calendar& calendar);

/// "kestu-2026-11-18.md", "kestu-week-2026-11-16.csv", "kestu-2026-11.md".
[[nodiscard]] QString exportFileName(ReportPeriod period, const Interval& interval, const QString& extension,
                                     const Calendar& calendar);

} // namespace kestu
