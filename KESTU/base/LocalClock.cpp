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
    return zone.offsetFromUtc(QDateTime::fromSecsSinceEpoch(second, Qt::UTC));
}

Instant startOf(QDate day, const QTimeZone& zone) {
    QDateTime start = day.startOfDay(zone);
    if (!start.isValid()) { // a day left out by a zone that moved across the date line
        start = day.addDays(1).startOfDay(zone);
    }
    return instantAt(static_cast<double>(start.toMSecsSinceEpoch()) / 1000.0);
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
    if (!local) {
        return std::nullopt;
    }
    const auto secondOfHour = static_cast<double>(local->secondOfDay % secondsOfHour);
    return instantAt(std::floor(epochSeconds(instant)) - secondOfHour);
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
