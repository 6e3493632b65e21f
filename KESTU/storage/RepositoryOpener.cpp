// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/RepositoryOpener.h"

#include "storage/DataFolder.h"
#include "storage/PrivateFiles.h"
#include "storage/Schema.h"

#include <QFile>
#include <QFileInfo>
#include <QStringBuilder>

namespace kestu {
namespace {

constexpr int firstSchemaVersion = 1;

QString backupPath(const QString& databasePath, std::int64_t version) {
    return QFileInfo(databasePath).path() + QStringLiteral("/kestu-backup-v%1.sqlite").arg(version);
}

/// With the journal that SQLite keeps beside it and would apply to the next one.
void removeUnfinished(const QString& path) {
    QFile::remove(path);
    QFile::remove(path % u"-journal");
}

/// Under another name until it is whole and on the disk: whatever has the backup's name is one.
void writeBackup(Database& database, const QString& path, const std::function<void()>& onLongStep) {
    const PrivateCreation forTheOwner;
    const QString unfinished = path % u".unfinished";
    removeUnfinished(unfinished); // of a start that was cut off
    QString quoted = unfinished;
    quoted.replace(QStringLiteral("'"), QStringLiteral("''"));
    try {
        if (onLongStep && isLargeFile(database)) {
            onLongStep();
        }
        database.executeScript(u"VACUUM INTO '" % quoted % u"'");
    } catch (const DatabaseError&) {
        // Without room for a copy the user still gets at the records.
        removeUnfinished(unfinished);
        return;
    }
    if (syncToDisk(unfinished) && QFile::rename(unfinished, path)) {
        [[maybe_unused]] const bool isNameSynced = syncToDisk(QFileInfo(path).path());
    }
}

/// Copies a file that is about to be migrated, once for each older version; a backup is never replaced.
void backUpOlderFile(Database& database, const QString& databasePath,
                     const std::function<void()>& onLongStep) {
    for (int version = firstSchemaVersion; version < currentSchemaVersion; ++version) {
        makeFilePrivate(backupPath(databasePath, version)); // one from before may be open to others
    }
    const std::int64_t version = database.userVersion();
    const QString backup = backupPath(databasePath, version);
    const bool isOlder = version >= firstSchemaVersion && version < currentSchemaVersion;
    if (isOlder && !QFileInfo::exists(backup)) {
        writeBackup(database, backup, onLongStep);
    }
}

/// Without preparing anything on the way.
QString databasePath(const StoreLocation& location) {
    return location.explicitPath.isEmpty() ? dataFolderPath(location.dataHome) % u"/kestu.sqlite"
                                           : location.explicitPath;
}

} // namespace

StoreLocation storeLocationFromEnvironment() {
    return {.explicitPath = qEnvironmentVariable("KESTU_DB_PATH"), .dataHome = userDataHome()};
}

QString prepareDatabasePath(const StoreLocation& location) {
    if (location.explicitPath.isEmpty()) {
        [[maybe_unused]] const QString folder = dataFolder(location.dataHome);
    }
    return databasePath(location);
}

std::unique_ptr<Repository> openRepository(const StoreLocation& location, Clock clock,
                                           const std::function<void()>& onLongStep) {
    const QString path = prepareDatabasePath(location);
    auto database = std::make_unique<Database>(path);
    if (location.explicitPath.isEmpty()) {
        backUpOlderFile(*database, path, onLongStep);
    }
    migrate(*database);
    tuneIndexes(*database, onLongStep);
    return std::make_unique<Repository>(std::move(database), std::move(clock));
}

std::unique_ptr<Repository> openRepositoryForReading(const StoreLocation& location) {
    const QString path = databasePath(location);
    if (!QFileInfo::exists(path)) {
        throw DatabaseError(
            QStringLiteral("記録のデータベースがありません（%1）。KESTU を一度起動してください。").arg(path));
    }
    auto database = std::make_unique<Database>(path, Database::Access::readOnly);
    // Not by the counter, which reads as 0 whatever is wrong with the file.
    const auto version = database->query(QStringLiteral("PRAGMA user_version"), {},
                                         [](const Row& row) { return row.integer(0); });
    if (version.at(0) < currentSchemaVersion) {
        throw DatabaseError(QStringLiteral("データベースの形式が古いため読めません（バージョン %1、%2）。"
                                           "KESTU を一度起動すると更新されます。")
                                .arg(version.at(0))
                                .arg(path));
    }
    return std::make_unique<Repository>(std::move(database), systemNow);
}

} // namespace kestu
