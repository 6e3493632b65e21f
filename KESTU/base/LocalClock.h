// SPDX-License-Identifier: GPL-3.0-or-later
//
// Instants as local dates and times of day, quickly: a report asks for hundreds of thousands, and asking the
// time zone each time takes most of a second. Made where it is needed, for one pass.
#pragma once

#include "base/Calendar.h"

#include <QDate>
#include <QHash>

#include <cstdint>
#include <optional>

namespace kestu {

class LocalClock final {
public:
    explicit LocalClock(const Calendar& calendar)
        : m_zone(calendar.zone) {}

    struct LocalTime {
        QDate date;
        int secondOfDay = 0; // 0 to 86399, as the clock on the wall shows it
    };

    /// Absent for an instant that no calendar can express.
    [[nodiscard]] std::optional<LocalTime> at(Instant instant);

    /// The start of the hour on the wall clock that holds `instant`; absent as at().
    [[nodiscard]] std::optional<Instant> startOfHour(Instant instant);

    /// The start of the local day that holds `instant`; absent as at().
    [[nodiscard]] std::optional<Instant> startOfDay(Instant instant);

    /// The start of the day that is `days` days after the one that holds `instant`.
    [[nodiscard]] std::optional<Instant> startOfDayAfter(Instant instant, int days);

private:
    [[nodiscard]] std::int64_t offsetAt(std::int64_t second);

    QTimeZone m_zone;
    QHash<std::int64_t, Instant> m_dayStarts; // by Julian day
    QHash<std::int64_t, std::optional<std::int64_t>>
        m_offsets; // by hour since the epoch, absent where it changes
};

/// The start of `day` in the calendar's zone, also where its midnight is left out by the clocks.
[[nodiscard]] Instant startOfDay(QDate day, const Calendar& calendar);

} // namespace kestu
