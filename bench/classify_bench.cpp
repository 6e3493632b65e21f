// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the rules and the reports cost, on invented months of life-like size.
#include "classify/DayAggregation.h"
#include "reports/ReportBuilder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

constexpr double monthStart = 1'793'458'800; // 1 November 2026 in Tokyo
constexpr double monthLength = 30 * 86'400;

const QStringList words{u"設計"_s, u"会議"_s,   u"議事録"_s, u"レビュー"_s, u"Invoice"_s, u"kestu"_s,
                        u"main"_s, u"Inbox"_s,  u"調査"_s,   u"予算"_s,     u"Draft"_s,   u"テスト"_s,
                        u"移行"_s, u"README"_s, u"障害"_s,   u"見積もり"_s, u"Roadmap"_s, u"採用"_s};

QString titleOf(std::mt19937& random, int number) {
    const auto word = [&] { return words[static_cast<qsizetype>(random()) % words.size()]; };
    return QStringLiteral("%1 %2 – %3 (%4)").arg(word(), word(), word()).arg(number);
}

/// `count` activities over a month with `distinct` different titles; a third of them in a browser. Each text
/// has a buffer of its own, as when it comes from the store.
std::vector<Activity> month(int count, int distinct) {
    std::mt19937 random(1);
    QStringList titles;
    for (int i = 0; i < distinct; ++i) {
        titles << titleOf(random, i);
    }
    std::vector<Activity> activities;
    const double length = monthLength / count;
    for (int i = 0; i < count; ++i) {
        const QString& title = titles[i < distinct ? i : static_cast<qsizetype>(random()) % distinct];
        const auto own = [](const QString& text) { return QString(text.constData(), text.size()); };
        Activity activity;
        activity.id = i;
        activity.start = instantAt(monthStart + i * length);
        activity.end = activity.start + Seconds(length);
        activity.bundleId = own(QStringLiteral("jp.example.Tool%1").arg(i % 40));
        activity.appName = own(QStringLiteral("道具%1").arg(i % 40));
        activity.title = own(title);
        if (i % 3 == 0) {
            activity.domain = own(QStringLiteral("site%1.example.jp").arg(i % 200));
            activity.url = own(QStringLiteral("https://site%1.example.jp/%2").arg(i % 200).arg(i % distinct));
        }
        activities.push_back(activity);
    }
    return activities;
}

std::vector<Rule> rulesOf(int count) {
    std::mt19937 random(2);
    std::vector<Rule> rules;
    for (int i = 0; i < count; ++i) {
        const RuleField field = allRuleFields[random() % allRuleFields.size()];
        const QString value = field == RuleField::title ? titleOf(random, i).left(6 + i % 12)
                              : field == RuleField::app ? QStringLiteral("道具%1").arg(i % 60)
                                                        : QStringLiteral("site%1.").arg(i);
        rules.push_back({.id = i,
                         .target = {.kind = i % 2 == 0 ? CategoryKind::project : CategoryKind::tag, .id = i},
                         .field = field,
                         .op = allRuleOperators[random() % allRuleOperators.size()],
                         .value = value,
                         .sort = i});
    }
    return rules;
}

void resolve(benchmark::State& state) {
    const auto activities = month(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    const auto rules = rulesOf(static_cast<int>(state.range(2)));
    for ([[maybe_unused]] const auto& pass : state) {
        benchmark::DoNotOptimize(resolved(activities, rules));
    }
}

/// Two hours of every day are under an entry made by hand.
void countAMonth(benchmark::State& state) {
    auto activities = month(45'000, 3'000);
    for (int day = 0; day < 30; ++day) {
        Activity entry;
        entry.id = 45'000 + day;
        entry.start = instantAt(monthStart + day * 86'400 + 10 * 3'600);
        entry.end = entry.start + Seconds(7'200);
        entry.isManual = true;
        activities.push_back(entry);
    }
    std::ranges::stable_sort(activities, {}, &Activity::start);
    for ([[maybe_unused]] const auto& pass : state) {
        state.PauseTiming();
        auto copy = activities;
        state.ResumeTiming();
        benchmark::DoNotOptimize(counted(std::move(copy)));
    }
}

ReportBuilder monthReport() {
    ReportBuilder report{
        .range = {.start = instantAt(monthStart), .end = instantAt(monthStart + monthLength)},
        .items = resolved(month(45'000, 3'000), rulesOf(100)),
        .projects = {},
        .tags = {},
        .options = {},
        .notes = {},
        .calendar = {.zone = QTimeZone("Asia/Tokyo"), .firstWeekday = Qt::Monday}};
    for (int i = 0; i < 100; ++i) {
        report.projects.push_back(
            {.id = i, .name = QStringLiteral("案件%1").arg(i), .colorHex = {}, .sort = i});
        report.tags.push_back({.id = i, .name = QStringLiteral("札%1").arg(i), .colorHex = {}, .sort = i});
    }
    return report;
}

void markdownOfAMonth(benchmark::State& state) {
    const ReportBuilder report = monthReport();
    for ([[maybe_unused]] const auto& pass : state) {
        benchmark::DoNotOptimize(report.markdown());
    }
}

void csvOfAMonth(benchmark::State& state) {
    const ReportBuilder report = monthReport();
    for ([[maybe_unused]] const auto& pass : state) {
        benchmark::DoNotOptimize(report.csv());
    }
}

BENCHMARK(resolve)
    ->ArgNames({"activities", "titles", "rules"})
    ->Args({1'500, 400, 100})
    ->Args({45'000, 3'000, 100})
    ->Args({90'000, 3'000, 100})
    ->Args({50'000, 50'000, 500})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(countAMonth)->Unit(benchmark::kMillisecond);
BENCHMARK(markdownOfAMonth)->Unit(benchmark::kMillisecond);
BENCHMARK(csvOfAMonth)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace kestu

BENCHMARK_MAIN();
