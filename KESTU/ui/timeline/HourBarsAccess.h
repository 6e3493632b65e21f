// SPDX-License-Identifier: GPL-3.0-or-later
//
// The hour bars as assistive technology sees them: a list with an item for each slice.
#pragma once

#include "ui/timeline/HourGeometry.h"

namespace kestu {

class HourBars;

/// Once is enough, more does not harm.
void installHourBarsAccess();

/// Slices came or went.
void reportRearranged(HourBars& bars);

/// The selection moved there.
void reportSelected(HourBars& bars, SlicePlace place);

} // namespace kestu
