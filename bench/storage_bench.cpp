// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the store costs after one year and after ten of full days. The files are made once, in a temporary
// folder (about 1.5 GB), and removed at the end. The medians are what counts.
#include "storage/RepositoryOpener.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <map>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

constexpr int activitiesADay = 1500;
constexpr double secondsADay = 86400;
constexpr double firstDay = 1456758000; // midnight in Tokyo

/// A file of `years` full days: sixteen hours of windows back to back, a third of them in the browser,
/// some tagged; a hand-made entry of three days each year, and one of a whole year.
class RecordedYears final {
public:
    explicit RecordedYears(int years)
        : m_days(years * 365) {
        const auto repository = open();
        repository->database().transaction([&] { record(repository->database()); });
    }

    [[nodiscard]] std::unique_ptr<Repository> open() const {
        return openRepository({.explicitPath = m_path, .dataHome = {}}, systemNow);
    }

    /// Midnight at the beginning of the day that lies `daysAgo` days before the file's last.
    [[nodiscard]] Instant midnight(int daysAgo) const {
        return instantAt(firstDay + (m_days - 1 - daysAgo) * secondsADay);
    }

    [[nodiscard]] double bytesADay() const { return static_cast<double>(QFileInfo(m_path).size()) / m_days; }

private:
    void record(Database& database) const {
        database.executeScript(u"INSERT INTO tag (name, color) VALUES ('会議', '#4F7CF7')"_s);
        database.run(
            QStringLiteral(
                R"(WITH RECURSIVE counted(n) AS (SELECT 0 UNION ALL SELECT n + 1 FROM counted WHERE n + 1 < ?1)
INSERT INTO activity (start, end, bundle_id, app_name, title, url, domain)
SELECT ?2 + n / ?3 * 86400 + 25200 + n % ?3 * 38.4, ?2 + n / ?3 * 86400 + 25200 + (n % ?3 + 1) * 38.4,
    CASE n % 3 WHEN 0 THEN 'chromium' WHEN 1 THEN 'org.gnome.Terminal' ELSE 'code' END,
    CASE n % 3 WHEN 0 THEN 'Chromium' WHEN 1 THEN '端末' ELSE 'Visual Studio Code' END,
    printf('%d 月の定例会議 議事録 その %d - 開発チームの共有ノート', n % 12 + 1, n % 9973),
    CASE n % 3 WHEN 0 THEN printf('https://notes.example.co.jp/team/page/%d?view=week', n % 9973) END,
    CASE n % 3 WHEN 0 THEN 'notes.example.co.jp' END
FROM counted)"),
            {std::int64_t{m_days} * activitiesADay, firstDay, std::int64_t{activitiesADay}});
        database.executeScript(u"INSERT INTO activity_tag SELECT id, 1 FROM activity WHERE id % 50 = 0"_s);
        for (int day = 0; day < m_days; day += 365) {
            insertEntry(database, day, 3);
        }
        insertEntry(database, 0, 365);
    }

    static void insertEntry(Database& database, int day, int days) {
        const double start = firstDay + day * secondsADay;
        database.run(u"INSERT INTO activity (start, end, bundle_id, app_name, title, is_manual) "
                     "VALUES (?, ?, 'kestu.manual', '手動', '出張', 1)"_s,
                     {start, start + days * secondsADay});
    }

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(u"kestu.sqlite"_s);
    int m_days;
};

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

void writeTick(benchmark::State& state, RecordedFiles& files, int years) {
    const auto repository = fileOf(files, years).open();
    const Instant now = fileOf(files, years).midnight(-1);
    const ActivityId id = repository->insertActivity({}, now);
    int tick = 0;
    for ([[maybe_unused]] auto iteration : state) {
        repository->extendActivity(id, now + Seconds(++tick));
    }
    repository->deleteActivity(id);
}

void openFile(benchmark::State& state, RecordedFiles& files, int years) {
    const RecordedYears& file = fileOf(files, years);
    for ([[maybe_unused]] auto iteration : state) {
        benchmark::DoNotOptimize(file.open());
    }
}

void openWithoutLengthIndex(benchmark::State& state, RecordedFiles& files, int years) {
    const RecordedYears& file = fileOf(files, years);
    file.open()->database().executeScript(u"DROP INDEX activity_length"_s);
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
    add("tick/10 years", 101, [&](State& state) { writeTick(state, files, 10); });
    add("open/10 years", 21, [&](State& state) { openFile(state, files, 10); });
    add("open/10 years/first time", 1, [&](State& state) { openWithoutLengthIndex(state, files, 10); });
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
