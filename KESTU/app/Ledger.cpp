// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Ledger.h"

#include "classify/Resolution.h"
#include "storage/Repository.h"

namespace kestu {

std::vector<Activity> countedIn(const Repository& repository, const Interval& range) {
    // Every entry that reaches into the range is read with it, so nothing in it is counted twice.
    return clipped(counted(repository.activitiesOverlapping(range.start, range.end)), range);
}

} // namespace kestu
