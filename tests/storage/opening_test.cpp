// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DataFolder.h"
#include "support/TemporaryStore.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <map>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::dump;
using test::failureOf;

/// A file as the first version of the program left it, with one rule.
constexpr const char* firstVersion = R"(
CREATE TABLE activity (id INTEGER PRIMARY KEY, start REAL NOT NULL, end REAL NOT NULL,
bundle_id TEXT NOT NULL, app_name TEXT NOT NULL, title TEXT NOT NULL DEFAULT '', url TEXT, domain TEXT,
project_id INTEGER REFERENCES project(id) ON DELETE SET NULL);
CREATE INDEX activity_start ON activity(start);
CREATE INDEX activity_end ON activity(end);
CREATE TABLE project (id INTEGER PRIMARY KEY, name TEXT NOT NULL, color TEXT NOT NULL,
sort INTEGER NOT NULL DEFAULT 0);
CREATE TABLE rule (id INTEGER PRIMARY KEY,
project_id INTEGER NOT NULL REFERENCES project(id) ON DELETE CASCADE,
field TEXT NOT NULL, op TEXT NOT NULL, value TEXT NOT NULL, sort INTEGER NOT NULL DEFAULT 0);
INSERT INTO project VALUES (5, '開発', '#4F7CF7', 0);
INSERT INTO rule VALUES (9, 5, 'title', 'prefix', 'kestu', 3);
INSERT INTO activity VALUES (1, 10, 20, 'b', 'a', 't', NULL, NULL, 5);
PRAGMA user_version = 1;
)";

/// Makes `path` a file as a program of `version` left it; version 0 makes none.
void writeFileOfVersion(int version, const QString& path) {
    QDir().mkpath(QFileInfo(path).path());
    if (version > 0) {
        Database database(path);
        database.executeScript(QString::fromUtf8(firstVersion));
        if (version > 1) {
            migrate(database);
        }
        if (version == 2) {
            database.executeScript(u"DROP TABLE rule_suggestion; DROP TABLE daily_note"_s);
        }
        database.executeScript(u"PRAGMA user_version = %1"_s.arg(version));
        QFile::setPermissions(path, QFile::permissions(path) | QFile::ReadGroup | QFile::ReadOther);
    }
}

/// The permission bits of `path`, in octal; empty when there is nothing.
std::string modeOf(const QString& path) {
    struct stat status {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) {
        return {};
    }
    return QString::number(status.st_mode & 0777, 8).toStdString();
}

/// All files under `folder` with what is in them.
std::map<QString, QByteArray> filesUnder(const QString& folder) {
    std::map<QString, QByteArray> files;
    QDirIterator iterator(folder, QDir::Files, QDirIterator::Subdirectories);
    while (iterator.hasNext()) {
        QFile file(iterator.next());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        files[QDir(folder).relativeFilePath(file.fileName())] = file.readAll();
    }
    return files;
}

std::unique_ptr<Repository> openIn(const QString& dataHome, const std::function<void()>& onLongStep = {}) {
    return openRepository({.explicitPath = {}, .dataHome = dataHome}, systemNow, onLongStep);
}

TEST(Opening, BringsEveryOlderFileToTheCurrentSchemaBacksItUpAndClosesItToOthers) {
    const struct {
        int version;
        std::string backup; // its mode, or none
        std::int64_t versionAfter;
        std::string lengthIndexes;
    } rows[] = {{0, "", 3, "1"}, {1, "600", 3, "1"}, {2, "600", 3, "1"}, {3, "", 3, "1"}, {4, "", 4, "0"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.version);
        const QTemporaryDir temporary;
        const QString home = temporary.filePath(u"it's ''mine'"_s);
        const QString folder = home + u"/KESTU/"_s;
        const QString path = folder + u"kestu.sqlite"_s;
        writeFileOfVersion(row.version, path);
        const auto repository = openIn(home, [] { ADD_FAILURE() << "a small file takes no time"; });

        EXPECT_EQ(repository->database().userVersion(), row.versionAfter);
        const QString lengthIndexes = u"SELECT COUNT(*) FROM sqlite_master WHERE name = 'activity_length'"_s;
        EXPECT_EQ(dump(repository->database(), lengthIndexes, 1), row.lengthIndexes);
        EXPECT_EQ(modeOf(folder + u"kestu-backup-v%1.sqlite"_s.arg(row.version)), row.backup);
        EXPECT_EQ(QDir(folder).entryList({u"*backup*"_s}).size(), row.backup.empty() ? 0 : 1);
        EXPECT_EQ(modeOf(folder), "700");
        for (const char* suffix : {"", "-wal", "-shm"}) {
            EXPECT_EQ(modeOf(path + QString::fromUtf8(suffix)), "600") << suffix;
        }
        if (row.version > 0) {
            const Rule kept{.id = 9,
                            .target = {.kind = CategoryKind::project, .id = 5},
                            .field = RuleField::title,
                            .op = RuleOperator::prefix,
                            .value = u"kestu"_s,
                            .sort = 3};
            EXPECT_EQ(repository->rules(), std::vector{kept});
            const auto activities = repository->activitiesOverlapping(instantAt(0), instantAt(30));
            ASSERT_EQ(activities.size(), 1U);
            EXPECT_EQ(activities[0].projectId, 5);
        }
    }
}

TEST(Opening, ShippedSchemaIsNeverEdited) {
    const test::TemporaryStore store;
    const std::string schema = dump(store.database(),
                                    u"SELECT sql FROM sqlite_master WHERE sql IS NOT NULL AND "
                                    "name <> 'activity_length' ORDER BY name"_s,
                                    1);
    EXPECT_EQ(QCryptographicHash::hash(QByteArray::fromStdString(schema), QCryptographicHash::Sha256).toHex(),
              "c2519fe1b3271a109150ba8c8161b4ee402a37cb9bd2457c476fbe94c032e81b")
        << schema;
}

TEST(Opening, AFailedStepLeavesTheFileBeforeItAndItsFirstBackupStays) {
    const QTemporaryDir home;
    const QString path = home.filePath(u"KESTU/kestu.sqlite"_s);
    const QString backup = home.filePath(u"KESTU/kestu-backup-v2.sqlite"_s);
    writeFileOfVersion(2, path);
    Database(path).executeScript(u"CREATE TABLE daily_note (x)"_s); // in the way of step 3
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_THAT(
            failureOf([&] { (void)openIn(home.path()); }),
            testing::StartsWith("table daily_note already exists — CREATE TABLE rule_suggestion (\n"));
        Database database(path);
        EXPECT_EQ(database.userVersion(), 2);
        EXPECT_EQ(failureOf([&] { database.run(u"DELETE FROM rule_suggestion"_s); }),
                  "no such table: rule_suggestion — DELETE FROM rule_suggestion");
        database.run(u"DELETE FROM rule"_s); // not in the backup of the first attempt
    }
    EXPECT_EQ(dump(Database(backup), u"SELECT COUNT(*) FROM rule"_s, 1), "1");
}

TEST(Opening, AnnouncesOnlyTheStepsThatTakeTheirTime) {
    const QTemporaryDir home;
    const QString path = home.filePath(u"KESTU/kestu.sqlite"_s);
    writeFileOfVersion(2, path);
    Database(path).executeScript(u"CREATE TABLE bulk (x); INSERT INTO bulk VALUES (zeroblob(70000000))"_s);
    int announced = 0;
    openIn(home.path(), [&] { ++announced; });
    EXPECT_EQ(announced, 2); // the backup and the index
    openIn(home.path(), [&] { ++announced; });
    EXPECT_EQ(announced, 2);
}

TEST(Opening, GoesOnWithoutABackupForWhichThereIsNoRoomAndLeavesNoHalfOfOne) {
    const QTemporaryDir home;
    const QString path = home.filePath(u"KESTU/kestu.sqlite"_s);
    writeFileOfVersion(2, path);
    Database(path).executeScript(u"CREATE TABLE bulk (x); INSERT INTO bulk VALUES (zeroblob(3000000))"_s);

    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit narrow{.rlim_cur = 1000000, .rlim_max = before.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN); // else the limit ends the process instead of failing the write
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &narrow), 0);
    EXPECT_EQ(openIn(home.path())->database().userVersion(), currentSchemaVersion);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_FALSE(QFileInfo::exists(home.filePath(u"KESTU/kestu-backup-v2.sqlite"_s)));
}

TEST(Opening, DoesWithoutTheLengthIndexWhereItCannotBeMade) {
    const QTemporaryDir home;
    const QString path = home.filePath(u"KESTU/kestu.sqlite"_s);
    writeFileOfVersion(3, path);
    Database(path).executeScript(u"CREATE TABLE activity_length (x)"_s);
    EXPECT_EQ(openIn(home.path())->activitiesOverlapping(instantAt(0), instantAt(30)).size(), 1U);
}

TEST(Opening, AnExplicitPathGetsNoBackupAndNoFolder) {
    const QTemporaryDir home;
    const QString path = home.filePath(u"elsewhere.sqlite"_s);
    writeFileOfVersion(2, path);
    (void)openRepository({.explicitPath = path, .dataHome = home.path()}, systemNow);
    EXPECT_EQ(QDir(home.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList(u"elsewhere.sqlite"_s));
}

TEST(StoreLocation, ComesFromTheEnvironment) {
    const QTemporaryDir home;
    const QString inHome = home.filePath(u"KESTU/kestu.sqlite"_s);
    const QByteArray former = qgetenv("HOME");
    qputenv("HOME", QFile::encodeName(home.filePath(u"me"_s)));
    const QString inMine = home.filePath(u"me/.local/share/KESTU/kestu.sqlite"_s);
    const struct {
        QString databasePath;
        QString dataHome;
        QString expected;
    } rows[] = {
        {home.filePath(u"a b.db"_s), home.path(), home.filePath(u"a b.db"_s)},
        {QString(), home.path(), inHome},
        {QString(), QString(), inMine},
        {QString(), u"relative"_s, inMine},
    };
    for (const auto& row : rows) {
        qputenv("KESTU_DB_PATH", QFile::encodeName(row.databasePath));
        qputenv("XDG_DATA_HOME", QFile::encodeName(row.dataHome));
        EXPECT_EQ(prepareDatabasePath(storeLocationFromEnvironment()), row.expected);
    }
    qunsetenv("KESTU_DB_PATH");
    qunsetenv("XDG_DATA_HOME");
    qputenv("HOME", former);
    EXPECT_EQ(modeOf(home.filePath(u"me/.local/share/KESTU"_s)), "700");
}

TEST(FormerInstallation, IsCarriedOverAndReplacesNothing) {
    using Files = std::map<QString, QByteArray>;
    const auto file = [](const char* name) { return QString::fromUtf8(name); };
    const struct {
        const char* name;
        Files before;
        Files after;
    } rows[] = {
        {"no new folder: everything moves, the files get their new names",
         {{file("Orvinta/orvinta.sqlite"), "db"},
          {file("Orvinta/orvinta.sqlite-wal"), "wal"},
          {file("Orvinta/other"), "x"}},
         {{file("KESTU/kestu.sqlite"), "db"},
          {file("KESTU/kestu.sqlite-wal"), "wal"},
          {file("KESTU/other"), "x"}}},
        {"both folders: the old one stays, files in the new one are renamed where the name is free",
         {{file("Orvinta/orvinta.sqlite"), "old"},
          {file("KESTU/orvinta.sqlite"), "moved"},
          {file("KESTU/orvinta.sqlite-shm"), "shm"},
          {file("KESTU/kestu.sqlite"), "new"}},
         {{file("Orvinta/orvinta.sqlite"), "old"},
          {file("KESTU/orvinta.sqlite"), "moved"},
          {file("KESTU/kestu.sqlite-shm"), "shm"},
          {file("KESTU/kestu.sqlite"), "new"}}},
        {"no old folder: nothing moves",
         {{file("KESTU/orvinta.sqlite"), "db"}},
         {{file("KESTU/orvinta.sqlite"), "db"}}},
        {"a file in place of the new folder: nothing moves",
         {{file("Orvinta/orvinta.sqlite"), "db"}, {file("KESTU"), "in the way"}},
         {{file("Orvinta/orvinta.sqlite"), "db"}, {file("KESTU"), "in the way"}}},
    };
    for (const auto& row : rows) {
        const QTemporaryDir home;
        for (const auto& [path, content] : row.before) {
            const QString whole = home.filePath(path);
            QDir().mkpath(QFileInfo(whole).path());
            QFile created(whole);
            ASSERT_TRUE(created.open(QIODevice::WriteOnly) && created.write(content) == content.size());
        }
        EXPECT_EQ(dataFolder(home.path()), home.filePath(u"KESTU"_s));
        EXPECT_TRUE(filesUnder(home.path()) == row.after) << row.name;
    }
}

} // namespace
} // namespace kestu
