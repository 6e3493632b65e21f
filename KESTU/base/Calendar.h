// SPDX-License-Identifier: GPL-3.0-or-later
//
// The calendar in which days, weeks and months are counted. A value that is passed in, never a global:
// tests pass Tokyo and a zone with summer time.
#pragma once

#include "base/Time.h"

#include <QString>
#include <QTimeZone>

namespace kestu {

struct Calendar {
    QTimeZone zone;
    Qt::DayOfWeek firstWeekday = Qt::Sunday;
};

/// The user's calendar: the system's time zone and the locale's first weekday.
[[nodiscard]] Calendar systemCalendar();

/// The key of the local day that holds `instant`, as "2026-03-05". An instant that no calendar can
/// express (not finite, or beyond its years) gives "0000-00-00".
[[nodiscard]] QString dayKey(Instant instant, const Calendar& calendar);

} // namespace kestu
