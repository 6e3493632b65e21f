// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one reading of a period: what every screen and report of it begins with.
#pragma once

#include "base/Time.h"
#include "storage/Records.h"

#include <vector>

namespace kestu {

class Repository;

/// What counts of the records in `range`, cut to it, by start, then id.
/// @throws DatabaseError
[[nodiscard]] std::vector<Activity> countedIn(const Repository& repository, const Interval& range);

} // namespace kestu
