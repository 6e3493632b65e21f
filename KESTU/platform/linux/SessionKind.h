// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the environment says of the session, and whether that still holds.
#pragma once

namespace kestu {

/// Whether windows are shown by a Wayland compositor, also when our own come to it through XWayland.
[[nodiscard]] bool isWaylandSession();

/// Whether there is a screen that Qt would find to show anything on: a display that is named but gone is
/// none.
[[nodiscard]] bool isDisplayReachable();

} // namespace kestu
