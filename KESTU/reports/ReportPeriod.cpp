// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ReportPeriod.h"

#include "base/LocalClock.h"

#include <QDateTime>

#include <algorithm>

namespace kestu {
namespace {

constexpr std::array<QStringView, allReportPeriods.size()> rawStrings{u"day", u"week", u"month"};

QDate dateOf(Instant instant, const Calendar& calendar) {
    const auto local = LocalClock(calendar).at(instant);
    return local ? local->date : QDate(1970, 1, 1);
}

QDate firstDay(ReportPeriod period, QDate day, const Calendar& calendar) {
    switch (period) {
    case ReportPeriod::day:
        return day;
    case ReportPeriod::week:
        return day.addDays(-((day.dayOfWeek() - calendar.firstWeekday + 7) % 7));
    case ReportPeriod::month:
        return {day.year(), day.month(), 1};
    }
    return day;
}

QDate moved(ReportPeriod period, QDate day, int units) {
    switch (period) {
    case ReportPeriod::day:
        return day.addDays(units);
    case ReportPeriod::week:
        return day.addDays(qint64{7} * units);
    case ReportPeriod::month:
        return day.addMonths(units);
    }
    return day;
}

} // namespace

QString rawString(ReportPeriod period) {
    return rawStrings[static_cast<std::size_t>(period)].toString();
}

std::optional<ReportPeriod> reportPeriodFromRaw(QStringView raw) {
    const auto found = std::ranges::find(rawStrings, raw);
    return found == rawStrings.end()
               ? std::nullopt
               : std::optional(allReportPeriods[static_cast<std::size_t>(found - rawStrings.begin())]);
}

Calendar reportCalendar(const Calendar& calendar) {
    return {.zone = calendar.zone, .firstWeekday = Qt::Monday};
}

Interval periodInterval(ReportPeriod period, Instant anchor, const Calendar& calendar) {
    const QDate first = firstDay(period, dateOf(anchor, calendar), calendar);
    return {.start = startOfDay(first, calendar), .end = startOfDay(moved(period, first, 1), calendar)};
}

Instant step(ReportPeriod period, Instant anchor, StepDirection direction, const Calendar& calendar) {
    const auto local = LocalClock(calendar).at(anchor);
    if (!local) {
        return anchor;
    }
    const QDate day = moved(period, local->date, static_cast<int>(direction));
    const QDateTime at(day, QTime::fromMSecsSinceStartOfDay(local->secondOfDay * 1000), calendar.zone);
    return instantAt(static_cast<double>(at.toSecsSinceEpoch()));
}

QString exportFileName(ReportPeriod period, const Interval& interval, const QString& extension,
                       const Calendar& calendar) {
    const QDate start = dateOf(interval.start, calendar);
    const QString day = start.toString(u"yyyy-MM-dd");
    const QString token = period == ReportPeriod::day    ? day
                          : period == ReportPeriod::week ? QStringLiteral("week-") + day
                                                         : start.toString(u"yyyy-MM");
    return QStringLiteral("kestu-%1.%2").arg(token, extension);
}

} // namespace kestu
