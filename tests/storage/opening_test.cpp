// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DataFolder.h"
#include "support/Files.h"
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
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::dump;
using test::failureOf;

/// A file as the first version of the program left it, with one rule.
const QString firstVersion = uR"(
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
)"_s;

const QString indexesBesidesStarts =
    u"SELECT sql FROM sqlite_master WHERE type = 'index' AND tbl_name = 'activity' AND name <> 'activity_start'"_s;
constexpr auto* tunedEnds = "CREATE INDEX activity_end ON activity(end) WHERE end - start > 43200";

/// The permission bits of `path`, in octal; empty when there is nothing.
std::string modeOf(const QString& path) {
    struct stat status {};
    const bool isThere = ::stat(QFile::encodeName(path).constData(), &status) == 0;
    return isThere ? QString::number(status.st_mode & 0777, 8).toStdString() : std::string();
}

/// A data home, with a quote in its path.
class Opening : public testing::Test {
protected:
    /// Makes the file anew as a program of `version` left it, with `more` in it; version 0 makes none.
    void startWithVersion(int version, const QString& more = {}) const {
        QDir(home).removeRecursively();
        if (version == 0) {
            return;
        }
        QDir().mkpath(folder);
        Database database(path);
        database.executeScript(firstVersion);
        if (version > 1) {
            migrate(database);
        }
        const auto later = version == 2 ? u"DROP TABLE rule_suggestion; DROP TABLE daily_note;"_s : QString();
        database.executeScript(later + u"PRAGMA user_version = %1;"_s.arg(version) + more);
        QFile::setPermissions(path, QFile::permissions(path) | QFile::ReadGroup | QFile::ReadOther);
    }

    std::unique_ptr<Repository> open(const std::function<void()>& onLongStep = {}) const {
        return openRepository({.explicitPath = {}, .dataHome = home}, systemNow, onLongStep);
    }

    [[nodiscard]] QString backup(int version) const {
        return folder + u"kestu-backup-v%1.sqlite"_s.arg(version);
    }

    const QTemporaryDir temporary;
    const QString home = temporary.filePath(u"it's ''mine'"_s);
    const QString folder = home + u"/KESTU/"_s;
    const QString path = folder + u"kestu.sqlite"_s;
};

TEST_F(Opening, BringsEveryOlderFileToTheCurrentSchemaBacksItUpAndClosesItToOthers) {
    const struct {
        int version;
        const char* backup; // its mode, or none
        std::int64_t versionAfter;
        const char* indexOfEnds;
    } rows[] = {{0, "", 3, tunedEnds},
                {1, "600", 3, tunedEnds},
                {2, "600", 3, tunedEnds},
                {3, "", 3, tunedEnds},
                {4, "", 4, "CREATE INDEX activity_end ON activity(end)"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.version);
        startWithVersion(row.version);
        const auto repository = open([] { ADD_FAILURE() << "a small file takes no time"; });

        EXPECT_EQ(repository->database().userVersion(), row.versionAfter);
        EXPECT_EQ(dump(repository->database(), indexesBesidesStarts), row.indexOfEnds);
        EXPECT_EQ(modeOf(backup(row.version)), row.backup);
        EXPECT_EQ(QDir(folder).entryList({u"*backup*"_s}).size(), *row.backup == '\0' ? 0 : 1);
        EXPECT_EQ(modeOf(folder), "700");
        for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s}) {
            EXPECT_EQ(modeOf(path + suffix), "600") << suffix.toStdString();
        }
        const bool hadRecords = row.version > 0;
        EXPECT_EQ(dump(repository->database(), u"SELECT * FROM rule"_s, 7),
                  hadRecords ? "9|5|∅|title|prefix|kestu|3" : "");
        const auto activities = repository->activitiesOverlapping(instantAt(0), instantAt(30));
        ASSERT_EQ(activities.size(), hadRecords ? 1U : 0U);
        EXPECT_TRUE(!hadRecords || activities[0].projectId == 5);
    }
}

TEST_F(Opening, ReplacesTheIndexesOfAFileThatAnOlderKestuHadAgain) {
    startWithVersion(3, u"CREATE INDEX activity_length ON activity(end - start);"_s);
    for (int opening = 0; opening < 2; ++opening) {
        EXPECT_EQ(dump(open()->database(), indexesBesidesStarts), tunedEnds);
        // As it opens this file now: it looks for its own index only.
        Database(path).executeScript(
            u"CREATE INDEX IF NOT EXISTS activity_length ON activity(end - start)"_s);
    }
}

TEST(Schema, ThatHasShippedIsNeverEdited) {
    Database database(u":memory:"_s);
    migrate(database);
    const std::string schema =
        dump(database, u"SELECT sql FROM sqlite_master WHERE sql IS NOT NULL ORDER BY name"_s);
    EXPECT_EQ(QCryptographicHash::hash(QByteArray::fromStdString(schema), QCryptographicHash::Sha256).toHex(),
              "c2519fe1b3271a109150ba8c8161b4ee402a37cb9bd2457c476fbe94c032e81b")
        << schema;
}

TEST_F(Opening, AFailedStepLeavesTheFileBeforeItAndItsFirstBackupStays) {
    startWithVersion(2, u"CREATE TABLE daily_note (x)"_s); // in the way of step 3
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_THAT(
            failureOf([&] { (void)open(); }),
            testing::StartsWith("table daily_note already exists — CREATE TABLE rule_suggestion (\n"));
        Database database(path);
        EXPECT_EQ(database.userVersion(), 2);
        EXPECT_EQ(dump(database, u"SELECT COUNT(*) FROM sqlite_master WHERE name = 'rule_suggestion'"_s),
                  "0");
        database.run(u"DELETE FROM rule"_s); // not in the backup of the first attempt
    }
    EXPECT_EQ(dump(Database(backup(2)), u"SELECT COUNT(*) FROM rule"_s), "1");
}

TEST_F(Opening, AnnouncesOnlyTheStepsThatTakeTheirTime) {
    startWithVersion(2, u"CREATE TABLE bulk (x); INSERT INTO bulk VALUES (zeroblob(70000000))"_s);
    int announced = 0;
    open([&] { ++announced; });
    EXPECT_EQ(announced, 2); // the backup and the index
    open([&] { ++announced; });
    EXPECT_EQ(announced, 2);
}

TEST_F(Opening, GoesOnWithoutABackupForWhichThereIsNoRoomAndLeavesNoHalfOfOne) {
    startWithVersion(2, u"CREATE TABLE bulk (x); INSERT INTO bulk VALUES (zeroblob(3000000))"_s);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit narrow{.rlim_cur = 1000000, .rlim_max = before.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN); // else the limit ends the process instead of failing the write
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &narrow), 0);
    EXPECT_EQ(open()->database().userVersion(), currentSchemaVersion);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_EQ(QDir(folder).entryList({u"*backup*"_s}).join(u' ').toStdString(), "");
}

TEST_F(Opening, ABackupThatWasCutOffNeverPassesForOne) {
    startWithVersion(2, u"CREATE TABLE bulk (x); INSERT INTO bulk VALUES (zeroblob(70000000))"_s);
    const QString unfinished = backup(2) + u".unfinished"_s;
    const pid_t child = ::fork();
    if (child == 0) {
        (void)open();
        ::_exit(0);
    }
    while (!QFileInfo::exists(unfinished) && !QFileInfo::exists(backup(2)) &&
           ::waitpid(child, nullptr, WNOHANG) == 0) {
        ::usleep(500);
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ASSERT_FALSE(QFileInfo::exists(backup(2)));
    ASSERT_TRUE(QFileInfo::exists(unfinished));

    (void)open();
    EXPECT_EQ(dump(Database(backup(2)), u"PRAGMA integrity_check"_s), "ok");
    EXPECT_EQ(dump(Database(backup(2)), u"SELECT LENGTH(x) FROM bulk"_s), "70000000");
    EXPECT_EQ(modeOf(backup(2)), "600");
    EXPECT_EQ(QDir(folder).entryList({u"*unfinished*"_s}).join(u' ').toStdString(), "");
}

TEST_F(Opening, ClosesTheCompanionsOfAFileBehindALinkToOthers) {
    startWithVersion(3);
    const auto other = open();
    const QString link = temporary.filePath(u"link.sqlite"_s);
    ASSERT_TRUE(QFile::link(path, link));
    for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s}) {
        ASSERT_EQ(::chmod(QFile::encodeName(path + suffix).constData(), 0644), 0);
    }
    const Database behindLink(link);
    for (const QString& suffix : {u""_s, u"-wal"_s, u"-shm"_s}) {
        EXPECT_EQ(modeOf(path + suffix), "600") << suffix.toStdString();
    }
}

TEST_F(Opening, DoesWithoutTheIndexOfLongActivitiesWhereItCannotBeMade) {
    startWithVersion(3, u"DROP INDEX activity_end; CREATE TABLE activity_end (x);"
                        "CREATE INDEX activity_length ON activity(end - start)"_s);
    const auto repository = open();
    EXPECT_EQ(repository->activitiesOverlapping(instantAt(0), instantAt(30)).size(), 1U);
    EXPECT_EQ(dump(repository->database(), indexesBesidesStarts),
              "CREATE INDEX activity_length ON activity(end - start)")
        << "all or nothing";
}

TEST_F(Opening, AnExplicitPathGetsNoBackup) {
    startWithVersion(2);
    (void)openRepository({.explicitPath = path, .dataHome = home}, systemNow);
    EXPECT_FALSE(QFileInfo::exists(backup(2)));
}

TEST(StoreLocation, ComesFromTheEnvironment) {
    const QTemporaryDir folder;
    const QString home = folder.path();
    const auto pathFor = [](const QString& databasePath, const QString& dataHome) {
        qputenv("KESTU_DB_PATH", QFile::encodeName(databasePath));
        qputenv("XDG_DATA_HOME", QFile::encodeName(dataHome));
        return prepareDatabasePath(storeLocationFromEnvironment());
    };
    const QByteArray former = qgetenv("HOME");
    qputenv("HOME", QFile::encodeName(home + u"/me"_s));
    const QString inMine = home + u"/me/.local/share/KESTU/kestu.sqlite"_s;
    EXPECT_EQ(pathFor(home + u"/a b.db"_s, home), home + u"/a b.db"_s);
    EXPECT_FALSE(QFileInfo::exists(home + u"/KESTU"_s)) << "nobody needs it";
    EXPECT_EQ(pathFor({}, home), home + u"/KESTU/kestu.sqlite"_s);
    EXPECT_EQ(pathFor({}, {}), inMine);
    EXPECT_EQ(pathFor({}, u"relative"_s), inMine);
    qunsetenv("KESTU_DB_PATH");
    qunsetenv("XDG_DATA_HOME");
    qputenv("HOME", former);
}

TEST(FormerInstallation, IsCarriedOverAndReplacesNothing) {
    const struct {
        const char* name;
        QString before; // files with their contents
        QString after;  // sorted
    } rows[] = {
        {"no new folder: everything moves, the files get their new names",
         u"Orvinta/orvinta.sqlite:db Orvinta/orvinta.sqlite-wal:wal Orvinta/other:x"_s,
         u"KESTU/kestu.sqlite-wal:wal KESTU/kestu.sqlite:db KESTU/other:x"_s},
        {"both folders: the old one stays, files in the new one are renamed where the name is free",
         u"KESTU/kestu.sqlite:new KESTU/orvinta.sqlite-shm:shm KESTU/orvinta.sqlite:moved Orvinta/orvinta.sqlite:old"_s,
         u"KESTU/kestu.sqlite-shm:shm KESTU/kestu.sqlite:new KESTU/orvinta.sqlite:moved Orvinta/orvinta.sqlite:old"_s},
        {"no old folder: nothing moves", u"KESTU/orvinta.sqlite:db"_s, u"KESTU/orvinta.sqlite:db"_s},
        {"a file in place of the new folder: nothing moves", u"KESTU:way Orvinta/orvinta.sqlite:db"_s,
         u"KESTU:way Orvinta/orvinta.sqlite:db"_s},
    };
    for (const auto& row : rows) {
        const QTemporaryDir home;
        for (const QString& file : row.before.split(u' ')) {
            test::putFile(home.filePath(file.section(u':', 0, 0)), file.section(u':', 1).toUtf8());
        }
        EXPECT_EQ(dataFolder(home.path()), home.filePath(u"KESTU"_s));
        QStringList after;
        for (QDirIterator files(home.path(), QDir::Files, QDirIterator::Subdirectories); files.hasNext();) {
            const QString path = files.next();
            after +=
                QDir(home.path()).relativeFilePath(path) + u':' + QString::fromUtf8(test::contentsOf(path));
        }
        after.sort();
        EXPECT_EQ(after.join(u' ').toStdString(), row.after.toStdString()) << row.name;
    }
}

} // namespace
} // namespace kestu
