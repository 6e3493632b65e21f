// SPDX-License-Identifier: GPL-3.0-or-later
//
// Files that are not what they should be, disks that are full, writers that die. Whatever happens, the
// user's file is left as it was.
#include "support/StoreProcess.h"
#include "support/TemporaryStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::dump;
using test::failureOf;
using test::StoreProcess;
using test::TemporaryStore;
using testing::StartsWith;

QByteArray bytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString& path, qint64 offset, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(offset) && file.write(bytes) == bytes.size());
}

TEST(DamagedStore, IsRefusedWithTheReasonAndLeftAsItWas) {
    TemporaryStore store;
    store.repository.reset();
    ASSERT_EQ(::chmod(QFile::encodeName(store.folder.path()).constData(), 0755), 0); // strangers may look
    const auto in = [&](const char* name) { return store.folder.filePath(QString::fromUtf8(name)); };
    write(in("text"), 0, QByteArray("私の大切な覚え書き\n").repeated(100));
    ASSERT_TRUE(QFile::copy(store.path, in("cut")) && QFile::resize(in("cut"), 5000));
    ASSERT_TRUE(QDir().mkdir(in("folder")));
    ASSERT_TRUE(QFile::copy(store.path, in("readonly")));
    ASSERT_EQ(::chmod(QFile::encodeName(in("readonly")).constData(), 0444), 0);

    const struct {
        const char* name;
        const char* message;
    } rows[] = {
        {"text", "file is not a database — PRAGMA journal_mode = WAL"},
        {"cut", "database disk image is malformed — PRAGMA journal_mode = WAL"},
        {"folder", "open failed: unable to open database file"},
        {"missing/kestu.sqlite", "open failed: unable to open database file"},
        {"readonly", "open failed: attempt to write a readonly database"},
    };
    for (const auto& row : rows) {
        const QByteArray before = bytesOf(in(row.name));
        // As root everything can be written; the readonly row needs somebody who is not.
        const bool isReadonly = std::string(row.name) == "readonly";
        const StoreProcess process(in(row.name),
                                   isReadonly ? StoreProcess::User::stranger : StoreProcess::User::same);
        EXPECT_EQ(process.greeting(), row.message);
        EXPECT_TRUE(bytesOf(in(row.name)) == before) << row.name;
    }
    EXPECT_FALSE(QFileInfo::exists(in("missing")));
}

TEST(DamagedStore, ReportsABadPageWhetherOrNotTheLengthsAreIndexed) {
    for (const bool isIndexed : {true, false}) {
        TemporaryStore store;
        store.repository->insertActivity({}, instantAt(10));
        store.repository->extendActivity(1, instantAt(20));
        if (!isIndexed) {
            store.database().executeScript(u"DROP INDEX activity_length"_s);
        }
        const QString place = u"SELECT (rootpage - 1) * (SELECT page_size FROM "
                              "pragma_page_size) FROM sqlite_master WHERE name = 'activity'"_s;
        const qint64 offset = std::stoll(dump(store.database(), place, 1));
        store.repository.reset();
        write(store.path, offset, QByteArray(64, '\xAA'));
        const QByteArray before = bytesOf(store.path);

        store.repository = store.open();
        EXPECT_THAT(
            failureOf([&] { (void)store.repository->activitiesOverlapping(instantAt(0), instantAt(30)); }),
            StartsWith("database disk image is malformed — SELECT a.id"));
        store.repository.reset();
        EXPECT_TRUE(bytesOf(store.path) == before);
    }
}

TEST(FullDisk, FailsTheWholeOperationAndKeepsWhatWasThere) {
    const TemporaryStore store;
    store.repository->insertActivity({}, instantAt(0));
    store.repository->extendActivity(1, instantAt(100));
    store.database().executeScript(u"PRAGMA max_page_count = 1"_s); // as many as there are
    const auto addEntry = [&] {
        store.database().transaction([&] {
            store.repository->insertManualEntry({.start = instantAt(10),
                                                 .end = instantAt(90),
                                                 .title = QString(100000, u'会'),
                                                 .projectId = {},
                                                 .tagIds = {}});
        });
    };
    const QString rows = u"SELECT start, end FROM activity ORDER BY start"_s;
    EXPECT_THAT(failureOf(addEntry), StartsWith("database or disk is full — INSERT INTO activity"));
    EXPECT_EQ(dump(store.database(), rows, 2), "0.0|100.0");

    store.database().executeScript(u"PRAGMA max_page_count = 10000"_s);
    EXPECT_EQ(failureOf(addEntry), "");
    EXPECT_EQ(dump(store.database(), rows, 2), "0.0|10.0\n10.0|90.0\n90.0|100.0");
}

TEST(KilledWriter, LosesNothingThatItHadCommitted) {
    TemporaryStore store;
    store.repository.reset();
    double reported = 0;
    {
        StoreProcess writer(store.path);
        ASSERT_EQ(writer.greeting(), "open");
        writer.startRecording();
        reported = writer.kill();
    }
    ASSERT_GT(reported, 0);
    store.repository = store.open();
    EXPECT_EQ(dump(store.database(), u"PRAGMA integrity_check"_s, 1), "ok");
    const auto activities = store.repository->activitiesOverlapping(instantAt(0), instantAt(1));
    ASSERT_EQ(activities.size(), 1U);
    // The last commit may have come through without its report.
    EXPECT_GE(epochSeconds(activities[0].end), reported);
    EXPECT_LE(epochSeconds(activities[0].end), reported + 1);
}

} // namespace
} // namespace kestu
