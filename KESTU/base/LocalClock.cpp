// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/LocalClock.h"

#include <QDateTime>

#include <cmath>

namespace kestu {
namespace {

constexpr std::int64_t secondsOfHour = 3600;
constexpr std::int64_t secondsOfDay = 24 * secondsOfHour;
constexpr std::int64_t julianDayOfEpoch = 2440588;

// Well inside what dates can express, far outside any year that somebody records.
constexpr double farthestSecond = 9.0e12;

std::int64_t flooredDivision(std::int64_t value, std::int64_t divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

std::int64_t offsetFromUtc(const QTimeZone& zone, std::int64_t second) {
    return QDateTime::fromSecsSinceEpoch(second, zone).offsetFromUtc();
}

/// The first second whose local date is `day`, or a later one where the zone left the day out. Searched for,
/// because QDate::startOfDay() gives the second midnight where clocks go back over it (Havana each autumn),
/// and nothing for a day left out (the date line).
Instant startOf(QDate day, const QTimeZone& zone) {
    const std::int64_t midnight = (day.toJulianDay() - julianDayOfEpoch) * secondsOfDay;
    std::int64_t before = midnight - secondsOfDay; // its local date is an earlier one
    std::int64_t after = midnight + secondsOfDay;
    while (after - before > 1) {
        const std::int64_t middle = before + (after - before) / 2;
        (middle + offsetFromUtc(zone, middle) < midnight ? before : after) = middle;
    }
    return instantAt(static_cast<double>(after));
}

} // namespace

std::int64_t LocalClock::offsetAt(std::int64_t second) {
    const std::int64_t hour = flooredDivision(second, secondsOfHour);
    auto known = m_offsets.constFind(hour);
    if (known == m_offsets.constEnd()) {
        const std::int64_t first = offsetFromUtc(m_zone, hour * secondsOfHour);
        const std::int64_t last = offsetFromUtc(m_zone, (hour + 1) * secondsOfHour - 1);
        known = m_offsets.insert(hour, first == last ? std::optional(first) : std::nullopt);
    }
    return known->has_value() ? **known : offsetFromUtc(m_zone, second);
}

std::optional<LocalClock::LocalTime> LocalClock::at(Instant instant) {
    const double second = std::floor(epochSeconds(instant));
    if (!(std::abs(second) < farthestSecond)) {
        return std::nullopt;
    }
    const auto utc = static_cast<std::int64_t>(second);
    const std::int64_t local = utc + offsetAt(utc);
    const std::int64_t day = flooredDivision(local, secondsOfDay);
    return LocalTime{.date = QDate::fromJulianDay(julianDayOfEpoch + day),
                     .secondOfDay = static_cast<int>(local - day * secondsOfDay)};
}

std::optional<Instant> LocalClock::startOfHour(Instant instant) {
    const auto local = at(instant);
    return local ? std::optional(instantAt(std::floor(epochSeconds(instant)) -
                                           static_cast<double>(local->secondOfDay % secondsOfHour)))
                 : std::nullopt;
}

std::optional<Instant> LocalClock::startOfDay(Instant instant) {
    return startOfDayAfter(instant, 0);
}

std::optional<Instant> LocalClock::startOfDayAfter(Instant instant, int days) {
    const auto local = at(instant);
    if (!local) {
        return std::nullopt;
    }
    const QDate day = local->date.addDays(days);
    auto known = m_dayStarts.constFind(day.toJulianDay());
    if (known == m_dayStarts.constEnd()) {
        known = m_dayStarts.insert(day.toJulianDay(), startOf(day, m_zone));
    }
    return *known;
}

Instant startOfDay(QDate day, const Calendar& calendar) {
    return startOf(day, calendar.zone);
}

} // namespace kestu
