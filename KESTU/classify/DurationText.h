// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one form in which every screen and report writes a length of time.
#pragma once

#include <QString>

namespace kestu {

/// "0分", "1分未満", "45分", "2時間", "1時間5分"; whole minutes, truncated.
[[nodiscard]] QString formatDuration(double seconds);

} // namespace kestu
