// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the report of a full month costs: the figures and the Markdown text, and the CSV text.
// Benchmarks run in the release preset; medians are what counts.
#include "reports/ReportBuilder.h"

#include <benchmark/benchmark.h>

namespace kestu {
namespace {

constexpr int daysOfMonth = 30;
constexpr int activitiesADay = 1500;
constexpr int distinctTitles = 3000;
constexpr int projectCount = 20;
constexpr int tagCount = 15;
constexpr double secondsADay = 86400;
constexpr double firstDay = 1793458800; // 2026-11-01 00:00 in Tokyo
constexpr double activityLength = 38.4; // sixteen hours of windows back to back

ResolvedActivity itemAt(int day, int index) {
    const int number = day * activitiesADay + index;
    const double start = firstDay + day * secondsADay + 25200 + index * activityLength;
    const bool isInBrowser = number % 3 == 0;
    const QString page = QString::number(number % distinctTitles);
    ResolvedActivity item;
    item.activity = {
        .id = number + 1,
        .start = instantAt(start),
        .end = instantAt(start + activityLength),
        .bundleId = QStringLiteral("application-%1").arg(number % 25),
        .appName = QStringLiteral("アプリケーション %1").arg(number % 25),
        .title = QStringLiteral("月の定例会議 議事録 その %1, 開発チームの共有ノート").arg(page),
        .url = isInBrowser ? std::optional(QStringLiteral("https://notes.example.co.jp/page/") + page)
                           : std::nullopt,
        .domain = isInBrowser ? std::optional(QStringLiteral("notes%1.example.co.jp").arg(number % 40))
                              : std::nullopt,
        .projectId = std::nullopt,
        .isManual = number % 500 == 0,
        .tagIds = {}};
    if (number % 7 != 0) {
        item.projectId = 1 + number / 5 % projectCount;
    }
    item.ruleTagIds = {1 + number % tagCount, 1 + number / 4 % tagCount};
    item.tagIds = item.ruleTagIds;
    return item;
}

ReportBuilder monthReport() {
    ReportBuilder report;
    report.range = {.start = instantAt(firstDay), .end = instantAt(firstDay + daysOfMonth * secondsADay)};
    report.calendar = {.zone = QTimeZone("Asia/Tokyo"), .firstWeekday = Qt::Monday};
    for (int day = 0; day < daysOfMonth; ++day) {
        for (int index = 0; index < activitiesADay; ++index) {
            report.items.push_back(itemAt(day, index));
        }
    }
    for (int id = 1; id <= projectCount; ++id) {
        report.projects.push_back(
            {.id = id, .name = QStringLiteral("プロジェクト %1").arg(id), .colorHex = {}, .sort = id});
    }
    for (int id = 1; id <= tagCount; ++id) {
        report.tags.push_back(
            {.id = id, .name = QStringLiteral("タグ %1").arg(id), .colorHex = {}, .sort = id});
    }
    return report;
}

void writeText(benchmark::State& state, QString (ReportBuilder::*text)() const) {
    const ReportBuilder report = monthReport();
    for ([[maybe_unused]] auto iteration : state) {
        benchmark::DoNotOptimize((report.*text)());
    }
}

void markdownOfMonth(benchmark::State& state) {
    writeText(state, &ReportBuilder::markdown);
}

void csvOfMonth(benchmark::State& state) {
    writeText(state, &ReportBuilder::csv);
}

BENCHMARK(markdownOfMonth)->Unit(benchmark::kMillisecond)->Repetitions(9)->ReportAggregatesOnly();
BENCHMARK(csvOfMonth)->Unit(benchmark::kMillisecond)->Repetitions(9)->ReportAggregatesOnly();

} // namespace
} // namespace kestu

BENCHMARK_MAIN();
