// SPDX-License-Identifier: GPL-3.0-or-later
//
// The numbered steps that bring any older file up to the current schema. The schema is a contract with
// the assistant's process, which opens the same file: names, types and defaults must not drift.
#pragma once

#include <QStringView>

#include <functional>

namespace kestu {

class Database;

inline constexpr int currentSchemaVersion = 3;

/// Runs the steps that the file still lacks, each in a transaction of its own. A file of a newer version
/// is left as it is.
/// @throws DatabaseError when a step fails; the file then stays at the version before that step.
void migrate(Database& database);

/// SQL: whether an activity is a long one (more than 12 hours). Only those are in `activity_end` once a file
/// is tuned, so that extending a short one writes the row and no index.
inline constexpr QStringView isLongActivity = u"end - start > 43200";
inline constexpr double longActivity = 43200.0; // seconds

/// Replaces the indexes over every activity's end or length, which each tick of the recorder would have to
/// write, by one over the ends of long activities, with which reading a day does not slow down with age. Only
/// in a file at exactly the current version. `onLongStep` is called first where that may take seconds.
/// A failure is no error: the file stays as it was, and reads are slow, not wrong.
void tuneIndexes(Database& database, const std::function<void()>& onLongStep);

/// True where a pass over the whole file may take long enough to look like a hang.
[[nodiscard]] bool isLargeFile(const Database& database);

} // namespace kestu
