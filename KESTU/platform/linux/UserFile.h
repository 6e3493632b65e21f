// SPDX-License-Identifier: GPL-3.0-or-later
//
// Small files of the user's own, written whole or not at all.
#pragma once

#include <QByteArray>
#include <QString>

namespace kestu {

/// $XDG_CONFIG_HOME, else ~/.config.
[[nodiscard]] QString userConfigHome();

/// Puts `contents` in the place of the file in one step, readable by its owner alone (0600); a missing folder
/// is made for its owner alone (0700). Through a symbolic link the file that it points to is replaced.
/// @throws PlatformError: `failure` (a sentence without its full stop) and the system's reason. What was
/// there before is whole then.
void replaceUserFile(const QString& path, const QByteArray& contents, const QString& failure);

} // namespace kestu
