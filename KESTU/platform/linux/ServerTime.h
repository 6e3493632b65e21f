// SPDX-License-Identifier: GPL-3.0-or-later
//
// When something happened, by the X server's clock: the time of an event stays true when it is read late.
#pragma once

#include "base/Moment.h"

#include <xcb/xproto.h>

namespace kestu {

/// The time in an event: milliseconds of the same clock when the server runs here. `now` where it lies in
/// the future or more than ten seconds back, since it is another clock's then.
[[nodiscard]] Moment momentOf(xcb_timestamp_t serverTime, Moment now = Moment::clock::now());

} // namespace kestu
