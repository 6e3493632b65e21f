// SPDX-License-Identifier: GPL-3.0-or-later
//
// A store as years of full days leave it behind, for the benchmarks: made once, in a temporary folder (about
// 130 MB a year), and removed at the end.
#pragma once

#include "storage/RepositoryOpener.h"

#include <QFileInfo>
#include <QTemporaryDir>

namespace kestu::bench {

using namespace Qt::StringLiterals;

inline constexpr int activitiesADay = 1500;
inline constexpr double secondsADay = 86400;
inline constexpr double firstDay = 1456758000; // midnight in Tokyo

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

} // namespace kestu::bench
