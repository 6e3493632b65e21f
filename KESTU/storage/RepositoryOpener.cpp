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

void writeBackup(Database& database, const QString& path, const std::function<void()>& onLongStep) {
    const PrivateCreation forTheOwner;
    QString quoted = path;
    quoted.replace(QStringLiteral("'"), QStringLiteral("''"));
    try {
        if (onLongStep && isLargeFile(database)) {
            onLongStep();
        }
        database.executeScript(u"VACUUM INTO '" % quoted % u"'");
    } catch (const DatabaseError&) {
        // Without room for a copy the user still gets at the records. But half a copy must not pass for a
        // backup; it is ours, as nothing lay at this path before.
        QFile::remove(path);
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

} // namespace

StoreLocation storeLocationFromEnvironment() {
    return {.explicitPath = qEnvironmentVariable("KESTU_DB_PATH"), .dataHome = userDataHome()};
}

QString prepareDatabasePath(const StoreLocation& location) {
    return location.explicitPath.isEmpty() ? dataFolder(location.dataHome) % u"/kestu.sqlite"
                                           : location.explicitPath;
}

std::unique_ptr<Repository> openRepository(const StoreLocation& location, Clock clock,
                                           const std::function<void()>& onLongStep) {
    const QString path = prepareDatabasePath(location);
    auto database = std::make_unique<Database>(path);
    if (location.explicitPath.isEmpty()) {
        backUpOlderFile(*database, path, onLongStep);
    }
    migrate(*database);
    indexActivityLengths(*database, onLongStep);
    return std::make_unique<Repository>(std::move(database), std::move(clock));
}

} // namespace kestu
