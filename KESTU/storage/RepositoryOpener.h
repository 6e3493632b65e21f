// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one entry to the store: finds or creates the file, backs up and migrates an older one.
#pragma once

#include "base/Time.h"
#include "storage/Repository.h"

#include <QString>

#include <functional>
#include <memory>

namespace kestu {

struct StoreLocation {
    QString explicitPath; // KESTU_DB_PATH; empty for the data folder
    QString dataHome;     // the folder in which the data folder lies
};

/// From the environment: KESTU_DB_PATH and the per-user data home.
[[nodiscard]] StoreLocation storeLocationFromEnvironment();

/// The path of the database file. Makes the data folder and carries an older installation over unless the
/// location names a file itself.
[[nodiscard]] QString prepareDatabasePath(const StoreLocation& location);

/// Opens the file, backs up an older one (only in the data folder) and migrates it.
/// `onLongStep` is called before a step that may take seconds on a large file.
/// @throws DatabaseError when it cannot be opened, written or migrated.
[[nodiscard]] std::unique_ptr<Repository> openRepository(const StoreLocation& location, Clock clock,
                                                         const std::function<void()>& onLongStep = {});

/// Opens the file for reading, also while another process records into it. Creates, carries over, migrates
/// and changes nothing.
/// @throws DatabaseError when there is no file, or one that KESTU has yet to migrate; it says what to do.
[[nodiscard]] std::unique_ptr<Repository> openRepositoryForReading(const StoreLocation& location);

} // namespace kestu
