// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the kernel's process tree says about who started a process and under which application id.
// Sandboxes put that id where the program cannot change it.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace kestu {

/// The application id of the Flatpak or Snap that the process runs in (a Snap's as "snap_application", the
/// name of its desktop entry); absent outside of both. `procRoot` is "/proc", or a test's tree.
[[nodiscard]] std::optional<QString> sandboxId(const QString& procRoot, std::int64_t processId);

/// The application id under which the desktop started the process in a systemd scope or service of its
/// own. Absent for a process that only inherited its scope: a terminal's or file manager's children stay in
/// the scope of their parent.
[[nodiscard]] std::optional<QString> launchedId(const QString& procRoot, std::int64_t processId);

} // namespace kestu
