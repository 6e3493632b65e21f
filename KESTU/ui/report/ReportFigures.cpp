// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/report/ReportFigures.h"

#include "base/LocalClock.h"
#include "reports/ReportText.h"
#include "ui/parts/Texts.h"

#include <algorithm>

namespace kestu {
namespace {

QDate dateAt(Instant instant, const Calendar& calendar) {
    const auto local = LocalClock(calendar).at(instant);
    return local ? local->date : QDate(1970, 1, 1);
}

QString monthAndDay(QDate date) {
    return QStringLiteral("%1月%2日").arg(date.month()).arg(date.day());
}

} // namespace

double ReportFigures::dailyAverage() const {
    int count = 0;
    for (std::size_t place = 0; place < days.size(); ++place) {
        count += place == 0 || days[place].day != days[place - 1].day ? 1 : 0;
    }
    return count == 0 ? 0 : total / count;
}

ReportFigures reportFigures(Items items, const Interval& range, const Calendar& calendar) {
    ReportFigures figures{.range = range,
                          .total = 0,
                          .unassigned = 0,
                          .manual = 0,
                          .projects = projectTotals(items),
                          .tags = tagTotals(items),
                          .apps = appTotals(items),
                          .domains = domainTotals(items),
                          .days = dailyTotals(items, range, calendar)};
    for (const auto& [projectId, seconds] : figures.projects) {
        figures.total += seconds;
        figures.unassigned += projectId ? 0 : seconds;
    }
    for (const ResolvedActivity& item : items) {
        figures.manual += item.activity.isManual ? secondsOf(item) : 0;
    }
    return figures;
}

QString shareText(double seconds, double total) {
    return fixedText(total > 0 ? seconds / total * 100 : 0, 0) + u'%';
}

QString periodTitle(ReportPeriod period, const Interval& range, const Calendar& calendar) {
    const QDate first = dateAt(range.start, calendar);
    switch (period) {
    case ReportPeriod::day:
        return dateText(first);
    case ReportPeriod::week:
        return monthAndDay(first) + u'〜' + monthAndDay(dateAt(range.end - Seconds{1}, calendar));
    case ReportPeriod::month:
        return QStringLiteral("%1年%2月").arg(first.year()).arg(first.month());
    }
    return {};
}

std::vector<QDate> daysOf(const Interval& range, const Calendar& calendar) {
    std::vector<QDate> days;
    const QDate last = dateAt(range.end - Seconds{1}, calendar);
    for (QDate day = dateAt(range.start, calendar); day <= last; day = day.addDays(1)) {
        days.push_back(day);
    }
    return days;
}

} // namespace kestu
