// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the golden reports are too short to show.
#include "reports/ReportBuilder.h"
#include "reports/ReportPeriod.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <tuple>
#include <utility>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

ReportBuilder monthIn(const char* zone, double anchor) {
    ReportBuilder report;
    report.calendar = reportCalendar({.zone = QTimeZone(zone)});
    report.range = periodInterval(ReportPeriod::month, instantAt(anchor), report.calendar);
    return report;
}

ResolvedActivity item(Instant start, double seconds, const QString& name) {
    ResolvedActivity item;
    item.activity.start = start;
    item.activity.end = start + Seconds{seconds};
    item.activity.appName = name;
    item.activity.title = name;
    item.activity.domain = name;
    return item;
}

TEST(MarkdownReport, AddsUpToEveryHourOfAMonthInWhichTheClockChanges) {
    const std::tuple<double, int, QStringView> months[] = {{1774699200, 743, u"| 2026/03/29(日) | 23時間 |"},
                                                           {1792843200, 745, u"| 2026/10/25(日) | 25時間 |"}};
    for (const auto& [anchor, hours, changingDay] : months) {
        ReportBuilder report = monthIn("Europe/Berlin", anchor);
        for (Instant hour = report.range.start; hour < report.range.end; hour += Seconds{3600}) {
            report.items.push_back(item(hour, 3600, {}));
            report.items.back().projectId = static_cast<ProjectId>(report.items.size() % 7);
        }
        const QString text = report.markdown();
        EXPECT_TRUE(text.contains(u"（31日間、記録のある日 31日）\n"));
        EXPECT_TRUE(text.contains(changingDay));
        int ofProjects = 0;
        int ofDays = 0;
        for (const QString& line : text.split(u'\n')) { // "| name or day | 24時間 |"
            const int ofRow = line.section(u'|', 2, 2).remove(u"時間"_s).toInt();
            (line.startsWith(u"| 未分類") ? ofProjects : ofDays) += ofRow;
        }
        EXPECT_EQ(ofProjects, hours);
        EXPECT_EQ(ofDays, hours);
    }
}

TEST(MarkdownReport, NamesTheTenFirstAppsAndSitesAndTheFiveFirstTitles) {
    ReportBuilder report = monthIn("Asia/Tokyo", 1794970800);
    for (int i = 1; i <= 12; ++i) {
        report.items.push_back(item(report.range.start, i * 60, QChar(u'a' + i)));
    }
    const QString text = report.markdown();
    EXPECT_TRUE(text.contains(u"\n- m：12分\n- l：11分\n"));
    EXPECT_EQ(text.count(QRegularExpression(u"\n- .：\\d+分"_s)), 10 + 10);
    EXPECT_EQ(text.count(QRegularExpression(u"\n- .：.：\\d+分"_s)), 5);
}

TEST(MarkdownReport, JoinsOverPausesOfTwoMinutesAndRoundsTiesToEven) {
    ReportBuilder report = monthIn("Asia/Tokyo", 1794970800);
    for (const auto& [offset, seconds] : {std::pair(0, 300), {420, 150}, {691, 1800}}) {
        report.items.push_back(item(report.range.start + Seconds(offset), seconds, u"端末"_s));
    }
    const QString text = report.markdown();
    EXPECT_TRUE(text.contains(u"（0.62時間）\n")) << text.toStdString(); // 0.625
    EXPECT_TRUE(text.endsWith(u"- 00:00–00:09 未分類（7分）：端末\n- 00:11–00:41 未分類（30分）：端末\n"))
        << text.toStdString();
}

TEST(CsvReport, SortsTagsByTheirNamesCodePoints) {
    ReportBuilder report = monthIn("Asia/Tokyo", 1794970800);
    report.items = {item(report.range.start, 60, {})};
    report.items.front().tagIds = {1, 2, 3, 99};
    report.tags = {{1, u"🎯目標"_s, {}, 0}, {2, u"集中"_s, {}, 0}, {3, u"会議"_s, {}, 0}};
    EXPECT_TRUE(report.csv().contains(u",会議;集中;（削除済みのタグ）;🎯目標,")) << report.csv().toStdString();
}

} // namespace
} // namespace kestu
