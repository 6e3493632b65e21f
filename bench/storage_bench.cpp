// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the store costs after one year and after ten of full days. The files are made once, in a temporary
// folder (about 1.5 GB), and removed at the end. The medians are what counts.
#include "RecordedYears.h"
#include "support/CountingVfs.h"

#include <benchmark/benchmark.h>

#include <map>
#include <optional>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using bench::RecordedYears;
using bench::secondsADay;

/// Owned by main(), so that the files go before the program ends.
using RecordedFiles = std::map<int, std::unique_ptr<RecordedYears>>;

const RecordedYears& fileOf(RecordedFiles& files, int years) {
    auto& file = files[years];
    if (!file) {
        file = std::make_unique<RecordedYears>(years);
    }
    return *file;
}

/// Reads `days` days; every repetition other ones, about as old.
void readDays(benchmark::State& state, RecordedFiles& files, int years, int daysAgo, int days) {
    const RecordedYears& file = fileOf(files, years);
    const auto repository = file.open();
    static int shift = 0;
    std::size_t rows = 0;
    for ([[maybe_unused]] auto iteration : state) {
        const Instant from = file.midnight(daysAgo + ++shift % 20);
        rows = repository->activitiesOverlapping(from, from + Seconds(days * secondsADay)).size();
    }
    state.counters["rows"] = static_cast<double>(rows);
    state.counters["bytes_a_day"] = file.bytesADay();
}

enum class Sync { each, none };

void writeTick(benchmark::State& state, RecordedFiles& files, int years, Sync sync) {
    test::CountingVfs disk;
    const auto repository = fileOf(files, years).open();
    const Instant now = fileOf(files, years).midnight(-1);
    const ActivityId id = repository->insertActivity({}, now);
    double tick = 0;
    (void)disk.take();
    for ([[maybe_unused]] auto iteration : state) {
        std::optional<Database::UnsyncedWrites> unsynced;
        if (sync == Sync::none) {
            unsynced.emplace(repository->database());
        }
        repository->extendActivity(id, now + Seconds(++tick));
    }
    const test::DiskCosts costs = disk.take();
    state.counters["bytes"] = static_cast<double>(costs.bytes) / tick;
    state.counters["syncs"] = static_cast<double>(costs.syncs) / tick;
    repository->deleteActivity(id);
}

void openFile(benchmark::State& state, RecordedFiles& files, int years) {
    const RecordedYears& file = fileOf(files, years);
    for ([[maybe_unused]] auto iteration : state) {
        benchmark::DoNotOptimize(file.open());
    }
}

void openWithFormerIndexes(benchmark::State& state, RecordedFiles& files, int years) {
    const RecordedYears& file = fileOf(files, years);
    file.open()->database().executeScript(u"DROP INDEX activity_end;"
                                          "CREATE INDEX activity_end ON activity(end);"
                                          "CREATE INDEX activity_length ON activity(end - start)"_s);
    for ([[maybe_unused]] auto iteration : state) {
        benchmark::DoNotOptimize(file.open());
    }
}

void registerAll(RecordedFiles& files) {
    const auto add = [](const char* name, int repetitions, const auto& measure) {
        benchmark::RegisterBenchmark(name, measure)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime()
            ->Iterations(1)
            ->Repetitions(repetitions)
            ->ReportAggregatesOnly();
    };
    constexpr int yesterday = 1;
    constexpr int fiveYears = 5 * 365;
    constexpr int nearlyTenYears = 10 * 365 - 30;
    using State = benchmark::State;
    add("day/1 year/yesterday", 41, [&](State& state) { readDays(state, files, 1, yesterday, 1); });
    add("day/10 years/yesterday", 41, [&](State& state) { readDays(state, files, 10, yesterday, 1); });
    add("day/10 years/5 years ago", 41, [&](State& state) { readDays(state, files, 10, fiveYears, 1); });
    add("day/10 years/10 years ago", 41,
        [&](State& state) { readDays(state, files, 10, nearlyTenYears, 1); });
    add("month/10 years/5 years ago", 21, [&](State& state) { readDays(state, files, 10, fiveYears, 30); });
    add("tick/10 years/synced", 101, [&](State& state) { writeTick(state, files, 10, Sync::each); });
    add("tick/10 years/unsynced", 101, [&](State& state) { writeTick(state, files, 10, Sync::none); });
    add("open/10 years", 21, [&](State& state) { openFile(state, files, 10); });
    add("open/10 years/first time", 1, [&](State& state) { openWithFormerIndexes(state, files, 10); });
}

} // namespace
} // namespace kestu

int main(int argc, char** argv) {
    kestu::RecordedFiles files;
    kestu::registerAll(files);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
