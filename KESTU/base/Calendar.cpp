// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Calendar.h"

#include <QDateTime>
#include <QLocale>

#include <cmath>

namespace kestu {

Calendar systemCalendar() {
    // Qt has no zone for some values of TZ that name none; the C library counts in UTC then.
    const QTimeZone zone = QTimeZone::systemTimeZone();
    return {.zone = zone.isValid() ? zone : QTimeZone::utc(),
            .firstWeekday = QLocale::system().firstDayOfWeek()};
}

QString dayKey(Instant instant, const Calendar& calendar) {
    // Floored, so that the last fraction of a second before midnight (or before 1970) stays in its day.
    const double milliseconds = std::floor(epochSeconds(instant) * 1000.0);
    constexpr double farthest = 9.0e15; // well inside int64, far outside any year with four digits
    if (!(std::abs(milliseconds) < farthest)) {
        return QStringLiteral("0000-00-00");
    }
    const QDate day = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(milliseconds), calendar.zone).date();
    return QString::asprintf("%04d-%02d-%02d", day.year(), day.month(), day.day());
}

} // namespace kestu
