// SPDX-License-Identifier: GPL-3.0-or-later
//
// When something happened, by the X server's clock: the time of an event stays true when it is read late.
#pragma once

#include <xcb/xproto.h>

#include <chrono>

namespace kestu {

/// By a clock that nobody sets (CLOCK_MONOTONIC).
using Moment = std::chrono::steady_clock::time_point;

/// The time in an event: milliseconds of the same clock when the server runs here. `now` where it lies in
/// the future or more than ten seconds back, since it is another clock's then.
[[nodiscard]] Moment momentOf(xcb_timestamp_t serverTime, Moment now = Moment::clock::now());

} // namespace kestu
