// SPDX-License-Identifier: GPL-3.0-or-later
//
// How the program tells its own windows apart when it meets them on the desktop.
#pragma once

#include <QLatin1String>
#include <QStringView>

namespace kestu {

/// The application id: the name of the desktop entry, and what compositors know our windows by.
inline constexpr QLatin1String applicationId("kestu");

/// The window role of what the status item opens: its panel and its menu.
inline constexpr QLatin1String statusItemRole("kestu-status-item");

/// The whole title of that panel, which no other window of ours has: on Wayland windows have no role.
inline constexpr QStringView statusItemTitle(u"今日 — KESTU");

} // namespace kestu
