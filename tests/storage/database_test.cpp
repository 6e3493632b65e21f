// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Database.h"

#include "support/StoreProcess.h"
#include "support/TemporaryStore.h"

#include <gtest/gtest.h>

#include <chrono>

namespace kestu {
namespace {

using test::dump;
using test::failureOf;
using test::StoreProcess;
using test::TemporaryStore;

TEST(Database, FailuresNameTheMessageAndTheStatement) {
    Database database(QStringLiteral(":memory:"));
    database.executeScript(QStringLiteral("CREATE TABLE t (x UNIQUE); INSERT INTO t VALUES (1)"));
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
    const QString script = QStringLiteral("DELETE FROM t; SELECT nonsense;");
    EXPECT_EQ(failureOf([&] { database.executeScript(script); }),
              "no such column: nonsense — DELETE FROM t; SELECT nonsense;");
    // A failed statement is finished: it keeps no lock that would stop the table from going away.
    EXPECT_EQ(failureOf([&] { database.executeScript(QStringLiteral("DROP TABLE t")); }), "");
}

TEST(Database, RowsReadBeforeAFailureAreDiscarded) {
    Database database(QStringLiteral(":memory:"));
    int rowsSeen = 0;
    const QString sql = QStringLiteral("SELECT abs(value) FROM (SELECT 1 AS value UNION ALL SELECT "
                                       "-9223372036854775807 - 1)");
    EXPECT_EQ(failureOf([&] { (void)database.query(sql, {}, [&](const Row&) { return ++rowsSeen; }); }),
              "integer overflow — " + sql.toStdString());
    EXPECT_EQ(rowsSeen, 1);
}

TEST(Database, OnlyFilesAreJournaledAheadButAllEnforceForeignKeys) {
    const TemporaryStore store;
    const Database memory(QStringLiteral(":memory:"));
    const QString journal = QStringLiteral("PRAGMA journal_mode");
    EXPECT_EQ(dump(store.database(), journal, 1), "wal");
    EXPECT_EQ(dump(memory, journal, 1), "memory");
    EXPECT_EQ(dump(memory, QStringLiteral("PRAGMA foreign_keys"), 1), "1");
}

TEST(Database, TextOfAnyKindIsStoredWholeBesideItsNeighbour) {
    Database database(QStringLiteral(":memory:"));
    database.executeScript(QStringLiteral("CREATE TABLE t (a, b)"));
    const QString replacement(QChar::ReplacementCharacter);
    const QString nul(QChar::Null);
    const QString mebibyte = QString(qsizetype{1024} * 1024, u'長');
    const struct {
        QString text;
        QString stored;
    } rows[] = {
        {QString(), QString()},
        {u'a' + nul + u'b' + nul, u'a' + replacement + u'b' + replacement},
        {QString(QChar(0xD800)) + u'x', QStringLiteral("?x")}, // half of a pair
        {QStringLiteral("😀 'quoted' %1"), QStringLiteral("😀 'quoted' %1")},
        {mebibyte, mebibyte},
    };
    for (const auto& row : rows) {
        database.run(QStringLiteral("INSERT INTO t VALUES (?, ?)"), {row.text, QStringLiteral("next")});
        const auto read =
            database.query(QStringLiteral("SELECT a, b FROM t ORDER BY rowid DESC LIMIT 1"), {},
                           [](const Row& found) { return std::pair(found.text(0), found.text(1)); });
        EXPECT_TRUE(read.at(0).first == row.stored) << read.at(0).first.left(40).toStdString();
        EXPECT_EQ(read.at(0).second, QStringLiteral("next"));
    }
    EXPECT_EQ(dump(database, QStringLiteral("SELECT CAST(x'61FF62' AS TEXT)"), 1), "a\uFFFDb");
}

TEST(Database, AFailedTransactionChangesNothingAndThrowsItsOwnError) {
    Database database(QStringLiteral(":memory:"));
    database.executeScript(QStringLiteral("CREATE TABLE p (id INTEGER PRIMARY KEY);"
                                          "CREATE TABLE c (p REFERENCES p DEFERRABLE INITIALLY DEFERRED)"));
    const auto insert = [&] { database.run(QStringLiteral("INSERT INTO c VALUES (7)")); };
    EXPECT_EQ(failureOf([&] {
                  database.transaction([&] {
                      insert();
                      throw DatabaseError(QStringLiteral("refused"));
                  });
              }),
              "refused");
    // SQLite has rolled this one back by itself already, so that ROLLBACK fails.
    EXPECT_EQ(failureOf([&] {
                  database.transaction([&] {
                      insert();
                      database.executeScript(QStringLiteral("INSERT OR ROLLBACK INTO p VALUES (1), (1)"));
                  });
              }),
              "UNIQUE constraint failed: p.id — INSERT OR ROLLBACK INTO p VALUES (1), (1)");
    EXPECT_EQ(failureOf([&] { database.transaction(insert); }), "FOREIGN KEY constraint failed — COMMIT");
    EXPECT_EQ(dump(database, QStringLiteral("SELECT COUNT(*) FROM c"), 1), "0");
    EXPECT_EQ(database.transaction([&] {
        database.run(QStringLiteral("INSERT INTO p VALUES (7)"));
        insert();
        return 5;
    }),
              5);
    EXPECT_EQ(dump(database, QStringLiteral("SELECT COUNT(*) FROM c"), 1), "1");
}

TEST(Database, WaitsThreeSecondsForAnothersLockWhileReadsGoOn) {
    const TemporaryStore store;
    const ActivityId id = store.repository->insertActivity({}, instantAt(10));
    StoreProcess other(store.path);
    ASSERT_EQ(other.execute(QStringLiteral("BEGIN IMMEDIATE")), "ok");

    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(failureOf([&] { store.repository->extendActivity(id, instantAt(20)); }),
              "database is locked — UPDATE activity SET end = ? WHERE id = ?");
    const Seconds waited = std::chrono::steady_clock::now() - before;
    EXPECT_GT(waited.count(), 2.5);
    EXPECT_LT(waited.count(), 6.0);
    EXPECT_EQ(store.repository->activitiesOverlapping(instantAt(0), instantAt(20)).size(), 1U);

    ASSERT_EQ(other.execute(QStringLiteral("ROLLBACK")), "ok");
    EXPECT_EQ(failureOf([&] { store.repository->extendActivity(id, instantAt(20)); }), "");
}

TEST(Database, DataVersionTellsOthersCommitsFromOurOwn) {
    const TemporaryStore store;
    StoreProcess other(store.path);
    const std::int64_t before = store.database().dataVersion();
    store.repository->insertActivity({}, instantAt(0));
    EXPECT_EQ(store.database().dataVersion(), before);

    ASSERT_EQ(other.execute(QStringLiteral("INSERT INTO daily_note VALUES ('2026-03-05', '要約', 'ai', 7)")),
              "ok");
    const std::int64_t after = store.database().dataVersion();
    EXPECT_NE(after, before);
    EXPECT_EQ(store.database().dataVersion(), after);
    EXPECT_EQ(store.repository->dailyNote(QStringLiteral("2026-03-05")),
              (DailyNote{.day = QStringLiteral("2026-03-05"),
                         .summary = QStringLiteral("要約"),
                         .author = QStringLiteral("ai"),
                         .updatedAt = instantAt(7)}));
}

} // namespace
} // namespace kestu
