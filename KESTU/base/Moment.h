// SPDX-License-Identifier: GPL-3.0-or-later
//
// Points in time for measuring how long ago something was.
#pragma once

#include <chrono>

namespace kestu {

/// By a clock that nobody sets (CLOCK_MONOTONIC).
using Moment = std::chrono::steady_clock::time_point;

} // namespace kestu
