// SPDX-License-Identifier: GPL-3.0-or-later
//
// What keeping the screens fresh costs on a full day with a hundred rules: reading everything anew, and the
// two ticks that find nothing new. The medians are what counts.
#include "app/AppModel.h"

#include "base/LocalClock.h"
#include "storage/RepositoryOpener.h"
#include "support/FakePlatform.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

constexpr int activitiesADay = 1500;
constexpr int ruleCount = 100;

/// Today at its end, sixteen hours of windows back to back, on a desktop that stands still.
class FullDay final {
public:
    FullDay() {
        const auto repository = open();
        repository->database().transaction([&] { record(*repository); });
    }

    [[nodiscard]] std::unique_ptr<AppModel> model(std::chrono::milliseconds watchInterval) {
        return std::make_unique<AppModel>(open(), m_platform,
                                          AppModel::Environment{.clock = [this] { return m_now; },
                                                                .calendar = systemCalendar,
                                                                .screen = {},
                                                                .watchInterval = watchInterval});
    }

    void tick() { Q_EMIT m_platform.events.applicationActivated(); }

private:
    [[nodiscard]] std::unique_ptr<Repository> open() const {
        return openRepository({.explicitPath = m_path, .dataHome = {}}, systemNow);
    }

    void record(Repository& repository) {
        const ProjectId project = repository.insertCategory(CategoryKind::project, u"開発"_s, u"#4F7CF7"_s);
        for (int rule = 0; rule < ruleCount; ++rule) {
            repository.insertRule({.kind = CategoryKind::project, .id = project}, RuleField::title,
                                  RuleOperator::contains, u"その %1 -"_s.arg(rule));
        }
        m_now = startOfDay(QDate(2026, 3, 4), systemCalendar()) + std::chrono::hours(16);
        Instant start = m_now - std::chrono::hours(8);
        for (int i = 0; i < activitiesADay; ++i) {
            const ActivityId id = repository.insertActivity(
                {.bundleId = u"chromium"_s,
                 .appName = u"Chromium"_s,
                 .title = u"定例会議 議事録 その %1 - 開発チームの共有ノート"_s.arg(i),
                 .url = u"https://notes.example.co.jp/team/page/%1?view=week"_s.arg(i)},
                start);
            start += Seconds{19};
            repository.extendActivity(id, start);
        }
        m_platform.fakeWorkspace.front = {u"code"_s, u"Editor"_s, 1};
    }

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(u"kestu.sqlite"_s);
    test::FakePlatform m_platform;
    Instant m_now{};
};

void reloadEverything(benchmark::State& state, FullDay& day) {
    const auto model = day.model(std::chrono::hours(1));
    for ([[maybe_unused]] auto iteration : state) {
        model->deleteRule(-1); // a write that finds nothing to change, and the reload after it
    }
    state.counters["items"] = static_cast<double>(model->dayItems().size());
}

void watchWithoutNews(benchmark::State& state, FullDay& day) {
    const auto model = day.model(std::chrono::milliseconds(0)); // due in every round of the event loop
    for ([[maybe_unused]] auto iteration : state) {
        QCoreApplication::processEvents();
    }
}

void tickInTheSameWindow(benchmark::State& state, FullDay& day) {
    const auto model = day.model(std::chrono::hours(1));
    model->start();
    for ([[maybe_unused]] auto iteration : state) {
        day.tick();
    }
}

void registerAll(FullDay& day) {
    const auto add = [&day](const char* name, auto measure) {
        benchmark::RegisterBenchmark(name, [measure, &day](benchmark::State& state) { measure(state, day); })
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime()
            ->Iterations(1)
            ->Repetitions(41)
            ->ReportAggregatesOnly();
    };
    add("reload/everything", reloadEverything);
    add("watch/nothing new", watchWithoutNews);
    add("tick/same window", tickInTheSameWindow);
}

} // namespace
} // namespace kestu

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    kestu::FullDay day;
    kestu::registerAll(day);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
