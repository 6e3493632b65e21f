// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the kernel shows of processes, and which of them started which. `procRoot` is where the kernel shows
// its processes: /proc, or a made-up one.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>

namespace kestu {

/// The content of `name` below the process's folder. Empty on any failure: processes end between two looks,
/// and those of other users stay closed.
[[nodiscard]] QByteArray processFile(const QString& procRoot, std::int64_t processId, QStringView name);

/// Absent when there is no such process (any more), and for one that nobody started.
[[nodiscard]] std::optional<std::int64_t> parentProcess(const QString& procRoot, std::int64_t processId);

/// Whether `processId` is `ancestor` or was started by it, at any remove.
[[nodiscard]] bool descendsFrom(const QString& procRoot, std::int64_t processId, std::int64_t ancestor);

/// When the process started, in the kernel's ticks since the machine did; 0 when there is no such process.
/// With the id, which is used again, it names one process for good.
[[nodiscard]] std::int64_t startOf(const QString& procRoot, std::int64_t processId);

/// What the link `name` below the process's folder points to; empty when that cannot be seen.
[[nodiscard]] QString linkTarget(const QString& procRoot, std::int64_t processId, QStringView name);

/// The file that a process runs, also when an update has replaced it since; empty when that cannot be seen.
[[nodiscard]] QString executableOf(const QString& procRoot, std::int64_t processId);

} // namespace kestu
