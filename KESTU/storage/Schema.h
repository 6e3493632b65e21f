// SPDX-License-Identifier: GPL-3.0-or-later
//
// The numbered steps that bring any older file up to the current schema. The schema is a contract with
// the assistant's process, which opens the same file: names, types and defaults must not drift.
#pragma once

#include <functional>

namespace kestu {

class Database;

inline constexpr int currentSchemaVersion = 3;

/// Runs the steps that the file still lacks, each in a transaction of its own. A file of a newer version
/// is left as it is.
/// @throws DatabaseError when a step fails; the file then stays at the version before that step.
void migrate(Database& database);

/// Adds the index over the lengths of activities, with which reading a day does not slow down with age,
/// to a file at exactly the current version that lacks it. `onLongStep` is called first where that may
/// take seconds. A failure is no error: reads are then slow, not wrong.
void indexActivityLengths(Database& database, const std::function<void()>& onLongStep);

/// True where a pass over the whole file may take long enough to look like a hang.
[[nodiscard]] bool isLargeFile(const Database& database);

} // namespace kestu
