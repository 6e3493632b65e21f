// SPDX-License-Identifier: GPL-3.0-or-later
//
// How the program tells its own windows apart when it meets them on the desktop.
#pragma once

#include <QLatin1String>

namespace kestu {

/// The window role of what the status item opens: its panel and its menu.
inline constexpr QLatin1String statusItemRole("kestu-status-item");

} // namespace kestu
