// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the records lie. Called once when the store is opened, and by whoever shows the place.
#pragma once

#include <QString>

namespace kestu {

/// The folder "KESTU" under `base`, made if it is missing, private to its owner (0700). What an older
/// installation left under its own name is carried over first. Failures are ignored: opening the
/// database then says what is wrong.
[[nodiscard]] QString dataFolder(const QString& base);

/// The path of that folder, and nothing done.
[[nodiscard]] QString dataFolderPath(const QString& base);

/// The per-user data home: $XDG_DATA_HOME, else ~/.local/share.
[[nodiscard]] QString userDataHome();

} // namespace kestu
