// SPDX-License-Identifier: GPL-3.0-or-later
//
// The command line: what it reads, what it leaves alone, and what it says.
#include "app/ReportCommand.h"

#include "storage/Repository.h"
#include "storage/Schema.h"
#include "support/Files.h"
#include "support/Program.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using test::contentsOf;

class ReportCommandTest : public testing::Test {
protected:
    /// A store with one activity of 90 minutes from 23:00 on the 18th, Tokyo time.
    void makeStore() const {
        auto database = std::make_unique<Database>(path);
        migrate(*database);
        Repository repository(std::move(database), systemNow);
        const ActivityId id = repository.insertActivity(
            {.bundleId = {}, .appName = QStringLiteral("編集"), .title = QStringLiteral("メモ"), .url = {}},
            instantAt(1795010400));
        repository.extendActivity(id, instantAt(1795010400 + 5400));
    }

    [[nodiscard]] CommandResult run(const QString& arguments) const {
        return runCommand(arguments.split(u' '), {.location = {.explicitPath = path, .dataHome = {}},
                                                  .calendar = {.zone = QTimeZone("Asia/Tokyo")},
                                                  .now = instantAt(1795014000)});
    }

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("kestu.sqlite"));
};

TEST_F(ReportCommandTest, WritesThePeriodAroundTheDateAndClipsWhatCrossesIt) {
    makeStore();
    const struct {
        const char* arguments;
        const char* contains;
        const char* lacks;
    } rows[] = {
        {"report", "（2026/11/16(月)〜2026/11/22(日)）", "あああ"},
        {"report", "- 記録の合計：1時間30分（1.50時間）", "日ごとのまとめ"},
        {"report --period day --date 2026-11-18", "- 記録の合計：1時間（1.00時間）", "## 日別"},
        {"report --period day --date 2026-11-19", "- 記録の合計：30分（0.50時間）", "23:"},
        {"report --period month --date 2026-02-28", "- 記録の合計：0分（0.00時間）", "平均"},
        {"report --no-details", "## 時系列", "ウィンドウ名の上位"},
        {"report --no-timeline", "ウィンドウ名の上位", "## 時系列"},
        {"report --format csv", "2026-11-18,23:00,00:30,90.0,未分類,,編集,メモ,,,自動\r\n", "#"},
    };
    for (const auto& row : rows) {
        const CommandResult result = run(QString::fromUtf8(row.arguments));
        EXPECT_EQ(result.exitCode, 0) << result.errors.toStdString();
        EXPECT_TRUE(result.output.contains(QString::fromUtf8(row.contains))) << row.arguments;
        EXPECT_FALSE(result.output.contains(QString::fromUtf8(row.lacks))) << row.arguments;
    }
    const QString target = folder.filePath(QStringLiteral("report.md"));
    EXPECT_EQ(run(QStringLiteral("report --output ") + target).output, QString());
    EXPECT_EQ(contentsOf(target), run(QStringLiteral("report")).output.toUtf8());
    const CommandResult refused = run(QStringLiteral("report --output /proc/none/report.md"));
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.errors.startsWith(QStringLiteral("保存できませんでした：")));
}

TEST_F(ReportCommandTest, CountsWhatWasRecordedUnderAnEntryOnce) {
    makeStore();
    Database(path).executeScript(
        QStringLiteral("INSERT INTO activity (start, end, bundle_id, app_name, title, is_manual) "
                       "SELECT start + 600, end - 600, 'kestu.manual', '手動', '会議', 1 FROM activity"));
    EXPECT_TRUE(run(QStringLiteral("report")).output.contains(QStringLiteral("- 記録の合計：1時間30分")));
    EXPECT_TRUE(
        run(QStringLiteral("report --format csv"))
            .output.contains(QStringLiteral("2026-11-18,23:00,23:10,10.0,未分類,,編集,メモ,,,自動\r\n"
                                            "2026-11-18,23:10,00:20,70.0,未分類,,手動,会議,,,手動\r\n"
                                            "2026-11-19,00:20,00:30,10.0,未分類,,編集,メモ,,,自動\r\n")));
}

TEST_F(ReportCommandTest, RefusesWhatItDoesNotUnderstand) {
    makeStore();
    for (const char* arguments :
         {"report --perod day", "report day", "report --period year", "report --date 2026-02-29",
          "report --date 18.11.2026", "report --date", "report --format html", "report --output "}) {
        const CommandResult result = run(QString::fromUtf8(arguments));
        EXPECT_EQ(result.exitCode, 2) << arguments;
        EXPECT_TRUE(result.errors.contains(QStringLiteral("使い方: kestu report"))) << arguments;
        EXPECT_EQ(result.output, QString()) << arguments;
    }
}

TEST_F(ReportCommandTest, ChangesNothingAndSaysWhatToDoWithAFileThatItCannotRead) {
    EXPECT_EQ(run(QStringLiteral("report")).exitCode, 1);
    EXPECT_TRUE(QDir(folder.path()).isEmpty()) << "it makes no file";

    makeStore();
    const QStringList files = QDir(folder.path()).entryList(QDir::Files);
    const QByteArray bytes = contentsOf(path);
    {
        Database recorder(path);
        recorder.executeScript(QStringLiteral("BEGIN IMMEDIATE"));
        EXPECT_EQ(run(QStringLiteral("report")).exitCode, 0) << "also while something is being written";
    }
    EXPECT_EQ(run(QStringLiteral("report")).exitCode, 0);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), files);
    EXPECT_EQ(contentsOf(path), bytes);

    for (const int version : {0, 1, 2}) {
        Database(path).executeScript(QStringLiteral("PRAGMA user_version = %1").arg(version));
        const CommandResult result = run(QStringLiteral("report"));
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_TRUE(result.errors.contains(QStringLiteral("バージョン %1").arg(version)));
        EXPECT_EQ(Database(path).userVersion(), version);
    }
    test::putFile(path, "これはデータベースではありません");
    EXPECT_TRUE(run(QStringLiteral("report")).errors.startsWith(QStringLiteral("file is not a database")));
}

TEST_F(ReportCommandTest, SaysTheSameUnderEveryLocaleAndInEveryZoneButForTheZone) {
    makeStore();
    const auto text = [this](const char* zone, const char* locale) {
        qputenv("TZ", zone);
        qputenv("LC_ALL", locale);
        qputenv("KESTU_DB_PATH", path.toUtf8());
        return test::outputOf(
            QStringLiteral(KESTU_PROGRAM),
            {QStringLiteral("report"), QStringLiteral("--date"), QStringLiteral("2026-11-18")});
    };
    for (const auto& [zone, line] : {std::pair{"Asia/Tokyo", "- 23:00–00:30 "},
                                     {"Europe/Berlin", "- 15:00–16:30 "},
                                     {"America/St_Johns", "- 10:30–12:00 "}}) {
        const QString inC = text(zone, "C");
        EXPECT_TRUE(inC.contains(QString::fromUtf8(line))) << zone;
        EXPECT_TRUE(inC.contains(QStringLiteral("- 時刻は %1 の").arg(QString::fromUtf8(zone))));
        EXPECT_EQ(text(zone, "ja_JP.UTF-8"), inC) << zone;
        EXPECT_EQ(text(zone, "ar_EG.UTF-8"), inC) << zone;
    }
}

} // namespace
} // namespace kestu
