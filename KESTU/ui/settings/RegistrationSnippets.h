// SPDX-License-Identifier: GPL-3.0-or-later
//
// The two texts with which an assistant's programs are told of our server: `server` is its path, which goes
// in as it stands.
#pragma once

#include <QString>

namespace kestu {

/// For the command line.
[[nodiscard]] QString registrationCommand(const QString& server);

/// For the desktop program's settings.
[[nodiscard]] QString registrationJson(const QString& server);

} // namespace kestu
