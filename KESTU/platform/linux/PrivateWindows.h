// SPDX-License-Identifier: GPL-3.0-or-later
//
// Telling a browser's private window from an ordinary one by the name that the browser gives it. Nothing
// else on the desktop tells them apart.
#pragma once

#include <QString>

namespace kestu {

/// In doubt true: an address that is missing is a gap, one that should not have been recorded is a breach.
[[nodiscard]] bool isPrivateWindow(const QString& windowName);

} // namespace kestu
