// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ReportPeriod.h"

#include <QDateTime>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using enum ReportPeriod;

Instant at(const char* text, const Calendar& calendar) {
    QDateTime time = QDateTime::fromString(QString::fromUtf8(text), u"yyyy-MM-dd HH:mm"_s);
    time.setTimeZone(calendar.zone);
    return instantAt(static_cast<double>(time.toSecsSinceEpoch()));
}

TEST(ReportPeriod, IsTheCalendarUnitAroundTheAnchorAndNamesItsFile) {
    const struct {
        const char* zone;
        ReportPeriod period;
        const char* anchor;
        const char* start;
        double hours;
        const char* file;
    } rows[] = {
        {"Asia/Tokyo", day, "2026-11-18 23:59", "2026-11-18 00:00", 24, "kestu-2026-11-18.md"},
        {"Asia/Tokyo", week, "2026-11-22 00:00", "2026-11-16 00:00", 168, "kestu-week-2026-11-16.md"},
        {"Asia/Tokyo", week, "2026-01-01 12:00", "2025-12-29 00:00", 168, "kestu-week-2025-12-29.md"},
        {"Asia/Tokyo", month, "2026-02-28 12:00", "2026-02-01 00:00", 672, "kestu-2026-02.md"},
        {"Europe/Berlin", day, "2026-03-29 12:00", "2026-03-29 00:00", 23, "kestu-2026-03-29.md"},
        {"Europe/Berlin", week, "2026-10-25 12:00", "2026-10-19 00:00", 169, "kestu-week-2026-10-19.md"},
        {"Europe/Berlin", month, "2026-10-01 00:00", "2026-10-01 00:00", 745, "kestu-2026-10.md"},
        {"Europe/Berlin", day, "2026-10-25 12:00", "2026-10-25 00:00", 25, "kestu-2026-10-25.md"},
        // The clocks leave its midnight out, and a whole day.
        {"America/Sao_Paulo", day, "2018-11-04 12:00", "2018-11-04 01:00", 23, "kestu-2018-11-04.md"},
        {"Pacific/Apia", day, "2011-12-29 12:00", "2011-12-29 00:00", 24, "kestu-2011-12-29.md"},
    };
    for (const auto& row : rows) {
        // A system whose weeks begin on Sunday must not matter.
        const Calendar calendar = reportCalendar({.zone = QTimeZone(row.zone), .firstWeekday = Qt::Sunday});
        const Interval interval = periodInterval(row.period, at(row.anchor, calendar), calendar);
        EXPECT_EQ(interval.start, at(row.start, calendar)) << row.file;
        EXPECT_EQ((interval.end - interval.start).count(), row.hours * 3600) << row.file;
        EXPECT_EQ(exportFileName(row.period, interval, u"md"_s, calendar).toStdString(), row.file);
    }
}

TEST(ReportPeriod, StepsKeepTheTimeOfDayAndClampTheDay) {
    const Calendar berlin = reportCalendar({.zone = QTimeZone("Europe/Berlin")});
    const struct {
        ReportPeriod period;
        StepDirection direction;
        const char* from;
        const char* to;
    } rows[] = {
        {day, StepDirection::forward, "2026-03-28 09:00", "2026-03-29 09:00"},
        {day, StepDirection::forward, "2026-03-28 02:30", "2026-03-29 03:30"}, // 02:30 is left out
        {week, StepDirection::back, "2026-10-26 09:00", "2026-10-19 09:00"},
        {month, StepDirection::forward, "2026-01-31 09:00", "2026-02-28 09:00"},
        {month, StepDirection::back, "2026-01-15 09:00", "2025-12-15 09:00"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(step(row.period, at(row.from, berlin), row.direction, berlin), at(row.to, berlin))
            << row.to;
    }
    for (const ReportPeriod period : allReportPeriods) {
        EXPECT_EQ(reportPeriodFromRaw(rawString(period)), period);
    }
    EXPECT_EQ(reportPeriodFromRaw(u"Week"), std::nullopt);
}

} // namespace
} // namespace kestu
