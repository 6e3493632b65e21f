// SPDX-License-Identifier: GPL-3.0-or-later
//
// Files that are not what they should be, disks that are full, writers that die. Whatever happens, the
// user's file is left as it was.
#include "support/Files.h"
#include "support/StoreProcess.h"
#include "support/TemporaryStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::contentsOf;
using test::failureOf;
using test::TemporaryStore;
using testing::StartsWith;

TEST(DamagedStore, IsRefusedWithTheReasonAndLeftAsItWas) {
    TemporaryStore store;
    store.repository.reset();
    ASSERT_EQ(::chmod(QFile::encodeName(store.folder.path()).constData(), 0755), 0); // strangers may look
    const auto in = [&](const QString& name) { return store.folder.filePath(name); };
    test::putFile(in(u"text"_s), QByteArray("私の大切な覚え書き\n").repeated(100));
    test::putFile(in(u"cut"_s), contentsOf(store.path).first(5000));
    test::putFile(in(u"readonly"_s), contentsOf(store.path));
    ASSERT_EQ(::chmod(QFile::encodeName(in(u"readonly"_s)).constData(), 0444), 0);
    ASSERT_TRUE(QDir().mkdir(in(u"folder"_s)));

    const std::pair<QString, const char*> rows[] = {
        {u"text"_s, "file is not a database — PRAGMA journal_mode = WAL"},
        {u"cut"_s, "database disk image is malformed — PRAGMA journal_mode = WAL"},
        {u"folder"_s, "open failed: unable to open database file"},
        {u"missing/kestu.sqlite"_s, "open failed: unable to open database file"},
        {u"readonly"_s, "open failed: attempt to write a readonly database"},
    };
    for (const auto& [name, message] : rows) {
        const QString path = in(name);
        const QByteArray before = contentsOf(path);
        // Root may write everything, so it steps aside; anybody else cannot, and need not.
        constexpr uid_t nobody = 65534;
        const uid_t user = ::geteuid();
        const bool hasSteppedAside = name == u"readonly" && ::seteuid(nobody) == 0;
        EXPECT_EQ(failureOf([&] { const Database opened(path); }), message);
        ASSERT_TRUE(!hasSteppedAside || ::seteuid(user) == 0);
        EXPECT_TRUE(contentsOf(path) == before) << name.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(in(u"missing"_s)));
}

TEST(DamagedStore, ReportsABadPageWithAndWithoutTheIndexOfLongActivities) {
    for (const bool isIndexed : {true, false}) {
        TemporaryStore store;
        store->extendActivity(store->insertActivity({}, instantAt(10)), instantAt(20));
        store.execute(isIndexed ? QString() : u"DROP INDEX activity_end"_s);
        store.repository.reset();
        constexpr qsizetype activityTable = 4096; // the second page, as it was made first
        const QByteArray damaged = contentsOf(store.path).replace(activityTable, 64, QByteArray(64, '\xAA'));
        test::putFile(store.path, damaged);

        store.repository = store.open();
        EXPECT_THAT(failureOf([&] { (void)store->activitiesOverlapping(instantAt(0), instantAt(30)); }),
                    StartsWith("database disk image is malformed — SELECT a.id"))
            << isIndexed;
        store.repository.reset();
        EXPECT_TRUE(contentsOf(store.path) == damaged);
    }
}

TEST(FullDisk, FailsTheWholeOperationAndKeepsWhatWasThere) {
    const TemporaryStore store;
    store->extendActivity(store->insertActivity({}, instantAt(0)), instantAt(100));
    store.execute(u"PRAGMA max_page_count = 1"_s); // as many as there are
    const auto addEntry = [&] {
        store.repository->database().transaction([&] {
            store->insertManualEntry({instantAt(10), instantAt(90), QString(100000, u'会'), {}, {}});
        });
    };
    const QString rows = u"SELECT start, end FROM activity ORDER BY start"_s;
    EXPECT_THAT(failureOf(addEntry), StartsWith("database or disk is full — INSERT INTO activity"));
    EXPECT_EQ(store.dump(rows, 2), "0.0|100.0");

    store.execute(u"PRAGMA max_page_count = 10000"_s);
    addEntry();
    EXPECT_EQ(store.dump(rows, 2), "0.0|10.0\n10.0|90.0\n90.0|100.0");
}

TEST(KilledWriter, LosesNothingThatItHadCommitted) {
    TemporaryStore store;
    store.repository.reset();
    const double reported = test::StoreProcess(store.path).recordUntilKilled();
    ASSERT_GT(reported, 0);
    store.repository = store.open();
    EXPECT_EQ(store.dump(u"PRAGMA integrity_check"_s), "ok");
    const auto activities = store->activitiesOverlapping(instantAt(0), instantAt(1));
    ASSERT_EQ(activities.size(), 1U);
    // The last commit may have come through without its report.
    EXPECT_GE(epochSeconds(activities[0].end), reported);
    EXPECT_LE(epochSeconds(activities[0].end), reported + 1);
}

} // namespace
} // namespace kestu
