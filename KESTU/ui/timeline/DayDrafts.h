// SPDX-License-Identifier: GPL-3.0-or-later
//
// The entries that the timeline proposes, before the user has changed anything. One that begins before now
// ends by now: nobody knows yet what comes. Pure functions; each call makes a draft with an id of its own.
#pragma once

#include "app/ManualDraft.h"
#include "base/Calendar.h"
#include "classify/DayAggregation.h"

namespace kestu {

/// The shortest gap that is offered by itself; a click finds shorter ones.
inline constexpr Seconds offeredGap{300};

/// For a gap: what lies before `now` of it, or behind it where that is less than the shortest offered gap.
[[nodiscard]] ManualDraft gapDraft(const Interval& gap, Instant now);

struct ShownDay {
    Items items; // of that day, clipped to it
    Instant start{};
    bool isToday = false;
};

/// For the button: the first offered gap, else the last hour of today, else 9 to 10 o'clock.
[[nodiscard]] ManualDraft defaultDraft(const ShownDay& day, Instant now);

/// For a click at `x` of a bar so wide, in the row that begins at `hour`: the gap around that time, else half
/// an hour from the quarter before it; of either only the side of `now` on which the click lies.
[[nodiscard]] ManualDraft clickedDraft(Items items, Instant hour, double x, double barWidth, Instant now,
                                       const Calendar& calendar);

} // namespace kestu
