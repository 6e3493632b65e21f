// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Database.h"

#include "support/StoreProcess.h"
#include "support/TemporaryStore.h"

#include <gtest/gtest.h>

#include <chrono>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::dump;
using test::failureOf;
using test::StoreProcess;
using test::TemporaryStore;

TEST(Database, FailuresNameTheMessageAndTheStatement) {
    Database database(u":memory:"_s);
    database.executeScript(u"CREATE TABLE t (x UNIQUE); INSERT INTO t VALUES (1)"_s);
    const struct {
        const char* sql;
        const char* message;
    } rows[] = {
        {"SELECT nonsense", "no such column: nonsense"},
        {"INSERT INTO t VALUES (1)", "UNIQUE constraint failed: t.x"},
        {"", "not an error"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(failureOf([&] { database.run(QString::fromUtf8(row.sql)); }),
                  std::string(row.message) + " — " + row.sql);
    }
    const QString script = u"DELETE FROM t; SELECT nonsense;"_s;
    EXPECT_EQ(failureOf([&] { database.executeScript(script); }),
              "no such column: nonsense — DELETE FROM t; SELECT nonsense;");
    // A failed statement is finished: it keeps no lock that would stop the table from going away.
    EXPECT_EQ(failureOf([&] { database.executeScript(u"DROP TABLE t"_s); }), "");
}

TEST(Database, RowsReadBeforeAFailureAreDiscarded) {
    Database database(u":memory:"_s);
    int rowsSeen = 0;
    const QString sql = u"SELECT abs(value) FROM (SELECT 1 AS value UNION ALL SELECT "
                        "-9223372036854775807 - 1)"_s;
    EXPECT_EQ(failureOf([&] { (void)database.query(sql, {}, [&](const Row&) { return ++rowsSeen; }); }),
              "integer overflow — " + sql.toStdString());
    EXPECT_EQ(rowsSeen, 1);
}

TEST(Database, OnlyFilesAreJournaledAheadButAllEnforceForeignKeys) {
    const TemporaryStore store;
    const Database memory(u":memory:"_s);
    const QString journal = u"PRAGMA journal_mode"_s;
    EXPECT_EQ(dump(store.database(), journal, 1), "wal");
    EXPECT_EQ(dump(memory, journal, 1), "memory");
    EXPECT_EQ(dump(memory, u"PRAGMA foreign_keys"_s, 1), "1");
}

TEST(Database, TextOfAnyKindIsStoredWholeBesideItsNeighbour) {
    Database database(u":memory:"_s);
    database.executeScript(u"CREATE TABLE t (a, b)"_s);
    const QString replacement(QChar::ReplacementCharacter);
    const QString nul(QChar::Null);
    const QString mebibyte = QString(qsizetype{1024} * 1024, u'長');
    const struct {
        QString text;
        QString stored;
    } rows[] = {
        {QString(), QString()},
        {u'a' + nul + u'b' + nul, u'a' + replacement + u'b' + replacement},
        {QString(QChar(0xD800)) + u'x', u"?x"_s}, // half of a pair
        {u"😀 'quoted' %1"_s, u"😀 'quoted' %1"_s},
        {mebibyte, mebibyte},
    };
    for (const auto& row : rows) {
        database.run(u"INSERT INTO t VALUES (?, ?)"_s, {row.text, u"next"_s});
        const auto read =
            database.query(u"SELECT a, b FROM t ORDER BY rowid DESC LIMIT 1"_s, {},
                           [](const Row& found) { return std::pair(found.text(0), found.text(1)); });
        EXPECT_TRUE(read.at(0).first == row.stored) << read.at(0).first.left(40).toStdString();
        EXPECT_EQ(read.at(0).second, u"next"_s);
    }
    EXPECT_EQ(dump(database, u"SELECT CAST(x'61FF62' AS TEXT)"_s, 1), "a\uFFFDb");
}

TEST(Database, AFailedTransactionChangesNothingAndThrowsItsOwnError) {
    Database database(u":memory:"_s);
    database.executeScript(u"CREATE TABLE p (id INTEGER PRIMARY KEY);"
                           "CREATE TABLE c (p REFERENCES p DEFERRABLE INITIALLY DEFERRED)"_s);
    const auto insert = [&] { database.run(u"INSERT INTO c VALUES (7)"_s); };
    EXPECT_EQ(failureOf([&] {
                  database.transaction([&] {
                      insert();
                      throw DatabaseError(u"refused"_s);
                  });
              }),
              "refused");
    // SQLite has rolled this one back by itself already, so that ROLLBACK fails.
    EXPECT_EQ(failureOf([&] {
                  database.transaction([&] {
                      insert();
                      database.executeScript(u"INSERT OR ROLLBACK INTO p VALUES (1), (1)"_s);
                  });
              }),
              "UNIQUE constraint failed: p.id — INSERT OR ROLLBACK INTO p VALUES (1), (1)");
    EXPECT_EQ(failureOf([&] { database.transaction(insert); }), "FOREIGN KEY constraint failed — COMMIT");
    EXPECT_EQ(dump(database, u"SELECT COUNT(*) FROM c"_s, 1), "0");
    EXPECT_EQ(database.transaction([&] {
        database.run(u"INSERT INTO p VALUES (7)"_s);
        insert();
        return 5;
    }),
              5);
    EXPECT_EQ(dump(database, u"SELECT COUNT(*) FROM c"_s, 1), "1");
}

TEST(Database, WaitsThreeSecondsForAnothersLockWhileReadsGoOn) {
    const TemporaryStore store;
    const ActivityId id = store.repository->insertActivity({}, instantAt(10));
    StoreProcess other(store.path);
    ASSERT_EQ(other.execute(u"BEGIN IMMEDIATE"_s), "ok");

    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(failureOf([&] { store.repository->extendActivity(id, instantAt(20)); }),
              "database is locked — UPDATE activity SET end = ? WHERE id = ?");
    const Seconds waited = std::chrono::steady_clock::now() - before;
    EXPECT_GT(waited.count(), 2.5);
    EXPECT_LT(waited.count(), 6.0);
    EXPECT_EQ(store.repository->activitiesOverlapping(instantAt(0), instantAt(20)).size(), 1U);

    ASSERT_EQ(other.execute(u"ROLLBACK"_s), "ok");
    EXPECT_EQ(failureOf([&] { store.repository->extendActivity(id, instantAt(20)); }), "");
}

TEST(Database, DataVersionTellsOthersCommitsFromOurOwn) {
    const TemporaryStore store;
    StoreProcess other(store.path);
    const std::int64_t before = store.database().dataVersion();
    store.repository->insertActivity({}, instantAt(0));
    EXPECT_EQ(store.database().dataVersion(), before);

    ASSERT_EQ(other.execute(u"INSERT INTO daily_note VALUES ('2026-03-05', '要約', 'ai', 7)"_s), "ok");
    const std::int64_t after = store.database().dataVersion();
    EXPECT_NE(after, before);
    EXPECT_EQ(store.database().dataVersion(), after);
    EXPECT_EQ(
        store.repository->dailyNote(u"2026-03-05"_s),
        (DailyNote{
            .day = u"2026-03-05"_s, .summary = u"要約"_s, .author = u"ai"_s, .updatedAt = instantAt(7)}));
}

} // namespace
} // namespace kestu
