// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whole reports, to the character. The records are in golden/records.tsv: start, end (Tokyo), application,
// its id, title, address, project, tags, made by hand.
#include "reports/ReportBuilder.h"
#include "reports/ReportPeriod.h"
#include "support/Files.h"

#include <QDateTime>
#include <QLocale>

#include <gtest/gtest.h>

#include <limits>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

const Calendar tokyo = reportCalendar({.zone = QTimeZone("Asia/Tokyo")});

Instant tokyoTime(const QString& text) {
    return instantAt(static_cast<double>(QDateTime(QDate::fromString(text.left(10), Qt::ISODate),
                                                   QTime::fromString(text.mid(11), Qt::ISODate), tokyo.zone)
                                             .toSecsSinceEpoch()));
}

std::vector<Activity> records() {
    std::vector<Activity> activities;
    const QString lines = QString::fromUtf8(test::contentsOf(QStringLiteral(KESTU_GOLDEN "/records.tsv")));
    for (const QString& line : lines.split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList field = line.split(u'\t');
        Sample sample{.bundleId = field[3], .appName = field[2], .title = field[4], .url = std::nullopt};
        sample.title.replace(u"\\n"_s, u"\n"_s);
        sample.url = field[5].isEmpty() ? std::nullopt : std::optional(field[5]);
        Activity activity{.id = static_cast<ActivityId>(activities.size()),
                          .start = tokyoTime(field[0]),
                          .end = tokyoTime(field[1]),
                          .bundleId = sample.bundleId,
                          .appName = sample.appName,
                          .title = sample.title,
                          .url = sample.url,
                          .domain = sample.domain(),
                          .projectId = std::nullopt,
                          .isManual = field[8] == u"1",
                          .tagIds = {}};
        activity.projectId = field[6].isEmpty() ? std::nullopt : std::optional(field[6].toLongLong());
        for (const QString& tag : field[7].split(u',', Qt::SkipEmptyParts)) {
            activity.tagIds.insert(tag.toLongLong());
        }
        activities.push_back(activity);
    }
    std::ranges::stable_sort(activities, {}, &Activity::start); // as the store gives them
    return activities;
}

std::vector<Rule> rules() {
    const RuleTarget kestu{.kind = CategoryKind::project, .id = 1};
    const RuleTarget operations{.kind = CategoryKind::project, .id = 2};
    const RuleTarget client{.kind = CategoryKind::project, .id = 3};
    const auto tag = [](TagId id) { return RuleTarget{.kind = CategoryKind::tag, .id = id}; };
    using enum RuleField;
    using enum RuleOperator;
    return {{1, kestu, title, contains, u" Kestu "_s, 0}, {2, tag(1), domain, equals, u"example.jp"_s, 1},
            {3, operations, app, prefix, u"ター"_s, 2},   {4, tag(3), title, contains, u"夜"_s, 3},
            {5, client, title, contains, u"kestu"_s, 4},  {6, tag(2), title, contains, u"CAFÉ"_s, 5},
            {7, client, title, contains, u" \u3000"_s, 6}};
}

ReportBuilder reportOf(ReportPeriod period, const char* day, std::vector<Activity> activities) {
    const Interval range = periodInterval(period, tokyoTime(QString::fromUtf8(day) + u" 12:00:00"_s), tokyo);
    return {.range = range,
            .items = resolved(clipped(activities, range), rules()),
            .projects = {{1, u"開発 | KESTU"_s, {}, 0}, {2, u"運用"_s, {}, 1}, {3, u"客先A"_s, {}, 2}},
            .tags = {{1, u"会議"_s, {}, 0}, {2, u"文書"_s, {}, 1}, {3, u"夜間"_s, {}, 2}},
            .options = {},
            .notes = {},
            .calendar = tokyo};
}

/// The bytes: reading them as text would take the byte order mark away.
std::string golden(const char* name) {
    return test::contentsOf(QStringLiteral(KESTU_GOLDEN "/") + QString::fromUtf8(name)).toStdString();
}

TEST(GoldenReports, ComeOutTheSameUnderEveryLocale) {
    for (const char* locale : {"C", "ja_JP", "ar_EG"}) {
        QLocale::setDefault(QLocale(QString::fromUtf8(locale)));
        ReportBuilder week = reportOf(ReportPeriod::week, "2026-11-18", records());
        week.notes = {{u"2026-11-16"_s, u"設計を進めた。\n- 打ち合わせ"_s, u"user"_s, {}},
                      {u"2026-11-18"_s, u"長い調べもの"_s, u"assistant"_s, {}}};
        EXPECT_EQ(week.markdown().toStdString(), golden("week.md")) << locale;
        EXPECT_EQ(week.csv().toStdString(), golden("week.csv")) << locale;
        ReportBuilder day = reportOf(ReportPeriod::day, "2026-11-17", records());
        day.options.includeDetails = false;
        EXPECT_EQ(day.markdown().toStdString(), golden("day.md")) << locale;
        ReportBuilder month = reportOf(ReportPeriod::month, "2026-11-17", records());
        month.options.includeTimeline = false;
        EXPECT_EQ(month.markdown().toStdString(), golden("month.md")) << locale;
    }
    QLocale::setDefault(QLocale::c());
}

TEST(Reports, OfNothingOrOfImpossibleTimesAreStillWritten) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const auto withTimes = [](double start, double end) {
        Activity activity;
        activity.start = instantAt(start);
        activity.end = instantAt(end);
        activity.title = QString(QChar(0xD800)); // half of a pair
        return std::vector{activity};
    };
    for (const auto& activities :
         {std::vector<Activity>(), withTimes(nan, 1e10), withTimes(infinity, -infinity)}) {
        const ReportBuilder empty = reportOf(ReportPeriod::week, "2026-11-18", activities);
        const QString text = empty.markdown();
        EXPECT_TRUE(text.contains(u"- 記録の合計：0分（0.00時間）\n- 未分類：0分（0%）\n"_s))
            << text.toStdString();
        EXPECT_TRUE(text.contains(u"|---|---|---|---|\n\n## 日別\n"_s));
        EXPECT_TRUE(text.endsWith(u"5分以上）\n"_s));
        EXPECT_EQ(empty.csv().count(u"\r\n"_s), 1);
    }
    const QString always =
        reportOf(ReportPeriod::week, "2026-11-18", withTimes(-infinity, infinity)).markdown();
    EXPECT_TRUE(always.contains(u"- 記録の合計：168時間（168.00時間）"_s));
}

} // namespace
} // namespace kestu
