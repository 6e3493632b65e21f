// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the kernel's process tree says about who started a process and under which application id.
// Sandboxes put that id where the program cannot change it.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace kestu {

/// The application id of the Flatpak or Snap that the process is of (a Snap's as "snap_application", the
/// name of its desktop entry); absent outside of both, and for a program of the system that was started from
/// a Snap and stays in its scope. `procRoot` is "/proc", or a test's tree.
[[nodiscard]] std::optional<QString> sandboxId(const QString& procRoot, std::int64_t processId);

/// The id of the application whose systemd scope or service the process stands in. That may be another one's:
/// a terminal's or file manager's children stay in the scope of their parent.
[[nodiscard]] std::optional<QString> scopeId(const QString& procRoot, std::int64_t processId);

/// As scopeId, for the very process that the desktop started as that application. Absent for all that this
/// one has started, also when it has ended since.
[[nodiscard]] std::optional<QString> launchedId(const QString& procRoot, std::int64_t processId);

} // namespace kestu
