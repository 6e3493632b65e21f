// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Database.h"

#include "support/CountingVfs.h"
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
    const QString duplicate = u"INSERT INTO t VALUES (1)"_s;
    EXPECT_EQ(failureOf([&] { database.run(duplicate); }),
              "UNIQUE constraint failed: t.x — " + duplicate.toStdString());
    EXPECT_EQ(failureOf([&] { database.run(u"SELECT nonsense"_s); }),
              "no such column: nonsense — SELECT nonsense");
    EXPECT_EQ(failureOf([&] { database.run({}); }), "not an error — ");
    EXPECT_EQ(failureOf([&] { database.executeScript(u"DELETE FROM t; SELECT nonsense;"_s); }),
              "no such column: nonsense — DELETE FROM t; SELECT nonsense;");
    database.executeScript(u"DROP TABLE t"_s); // a failed statement is finished and keeps no lock
}

TEST(Database, TextOfAnyKindIsStoredWholeBesideItsNeighbour) {
    Database database(u":memory:"_s);
    database.executeScript(u"CREATE TABLE t (a, b)"_s);
    const QString mebibyte(qsizetype{1024} * 1024, u'長');
    const QString plain = u"😀 'quoted' %1"_s;
    const std::pair<QString, QString> rows[] = {
        {{}, {}},
        {u"a\0b\0"_s, u"a\uFFFDb\uFFFD"_s},
        {QString(QChar(0xD800)) + u'x', u"?x"_s}, // half of a pair
        {plain, plain},
        {mebibyte, mebibyte},
    };
    for (const auto& [text, stored] : rows) {
        database.run(u"INSERT INTO t VALUES (?, ?)"_s, {text, u"next"_s});
        const std::string read = dump(database, u"SELECT a, b FROM t ORDER BY rowid DESC LIMIT 1"_s, 2);
        EXPECT_TRUE(read == stored.toStdString() + "|next") << read.substr(0, 100);
    }
    EXPECT_EQ(dump(database, u"SELECT CAST(x'61FF62' AS TEXT)"_s), "a\uFFFDb");
}

TEST(Database, AFailedTransactionChangesNothingAndThrowsItsOwnError) {
    Database database(u":memory:"_s);
    database.executeScript(u"CREATE TABLE p (id INTEGER PRIMARY KEY);"
                           "CREATE TABLE c (p REFERENCES p DEFERRABLE INITIALLY DEFERRED)"_s);
    const auto failureAfterInsert = [&](const std::function<void()>& next) {
        return failureOf([&] {
            database.transaction([&] {
                database.run(u"INSERT INTO c VALUES (7)"_s);
                next();
            });
        });
    };
    // SQLite rolls this one back by itself, so that ROLLBACK fails.
    const QString rollingBack = u"INSERT OR ROLLBACK INTO p VALUES (1), (1)"_s;
    EXPECT_EQ(failureAfterInsert([] { throw DatabaseError(u"refused"_s); }), "refused");
    EXPECT_EQ(failureAfterInsert([&] { database.executeScript(rollingBack); }),
              "UNIQUE constraint failed: p.id — " + rollingBack.toStdString());
    EXPECT_EQ(failureAfterInsert([] {}), "FOREIGN KEY constraint failed — COMMIT");
    EXPECT_EQ(dump(database, u"SELECT COUNT(*) FROM c"_s), "0");
    EXPECT_EQ(failureAfterInsert([&] { database.run(u"INSERT INTO p VALUES (7)"_s); }), "");
    EXPECT_EQ(dump(database, u"SELECT COUNT(*) FROM c"_s), "1");
}

TEST(Database, WaitsThreeSecondsForAnothersLockWhileReadsGoOn) {
    const TemporaryStore store;
    const ActivityId id = store->insertActivity({}, instantAt(10));
    StoreProcess other(store.path);
    other.execute(u"BEGIN IMMEDIATE"_s);

    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(failureOf([&] { store->extendActivity(id, instantAt(20)); }),
              "database is locked — UPDATE activity SET end = ? WHERE id = ?");
    const Seconds waited = std::chrono::steady_clock::now() - before;
    EXPECT_GT(waited.count(), 2.5);
    EXPECT_LT(waited.count(), 10.0);
    EXPECT_EQ(store->activitiesOverlapping(instantAt(0), instantAt(20)).size(), 1U);

    other.execute(u"ROLLBACK"_s);
    EXPECT_EQ(failureOf([&] { store->extendActivity(id, instantAt(20)); }), "");
}

TEST(Database, DataVersionTellsOthersCommitsFromOurOwn) {
    const TemporaryStore store;
    StoreProcess other(store.path);
    const auto version = [&] { return store.repository->database().dataVersion(); };
    const std::int64_t before = version();
    store->insertActivity({}, instantAt(0));
    EXPECT_EQ(version(), before);

    other.execute(
        u"INSERT INTO daily_note VALUES ('2026-03-05', '要約', 'ai', 7); INSERT INTO rule_suggestion "
        "VALUES (4, 'tag', '会議', 'title', 'equals', '定例', '毎週', 8)"_s);
    const std::int64_t after = version();
    EXPECT_NE(after, before);
    EXPECT_EQ(version(), after);
    EXPECT_EQ(store->dailyNote(u"2026-03-05"_s),
              (DailyNote{u"2026-03-05"_s, u"要約"_s, u"ai"_s, instantAt(7)}));
    const RuleSuggestion suggested{
        4,         CategoryKind::tag, u"会議"_s,   RuleField::title, RuleOperator::equals,
        u"定例"_s, u"毎週"_s,         instantAt(8)};
    EXPECT_EQ(store->suggestions(), std::vector{suggested});
}

/// Sixteen hours of windows, and one that is being recorded.
ActivityId recordDay(Repository& repository) {
    repository.database().transaction([&] {
        for (int count = 0; count < 1500; ++count) {
            repository.extendActivity(repository.insertActivity({}, instantAt(40 * count)),
                                      instantAt(40 * count + 38));
        }
    });
    return repository.insertActivity({}, instantAt(60000));
}

TEST(Database, ATickWritesOnePageAndOnlySavingWaitsForTheDisk) {
    test::CountingVfs disk;
    TemporaryStore store;
    store.execute(u"PRAGMA synchronous = FULL"_s); // as the application leaves it
    const ActivityId id = recordDay(*store.repository);
    constexpr int ticks = 100;
    (void)disk.take();
    for (int tick = 1; tick <= ticks; ++tick) {
        const auto unsynced = store->unsyncedWrites();
        store->extendActivity(id, instantAt(60000 + 2 * tick));
    }
    const test::DiskCosts ticking = disk.take();
    EXPECT_EQ(ticking.syncs, 0);
    EXPECT_LE(ticking.bytes / ticks, 6000);
    EXPECT_GT(ticking.bytes / ticks, 4000) << "nothing is counted";

    store->saveDailyNote(u"2026-03-05"_s, u"要約"_s, u"user"_s);
    EXPECT_EQ(disk.take().syncs, 1);
    EXPECT_EQ(store.dump(u"PRAGMA synchronous"_s), "2");
}

TEST(Database, WritesAreSyncedAgainAfterAnUnsyncedOneThatFailed) {
    const TemporaryStore store;
    store.execute(u"PRAGMA synchronous = FULL"_s);
    EXPECT_NE(failureOf([&] {
                  const auto unsynced = store->unsyncedWrites();
                  const auto again = store->unsyncedWrites();
                  store.repository->database().transaction([] { throw DatabaseError(u"refused"_s); });
              }),
              "");
    EXPECT_EQ(store.dump(u"PRAGMA synchronous"_s), "2");
}

} // namespace
} // namespace kestu
