// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/DayDrafts.h"

#include "base/LocalClock.h"

#include <algorithm>

namespace kestu {
namespace {

constexpr Seconds clickedGap{60};
constexpr Seconds hourLength{3600};
constexpr Seconds morning{9 * 3600};
constexpr Seconds quarter{15 * 60};

/// Minutes past the full hour on the wall clock.
int minuteAt(Instant instant, const Calendar& calendar) {
    const auto local = LocalClock(calendar).at(instant);
    return local ? local->secondOfDay / 60 % 60 : 0;
}

ManualDraft draftFor(const Interval& range) {
    return {
        .start = range.start, .end = range.end, .editingId = {}, .title = {}, .projectId = {}, .tagIds = {}};
}

Interval before(const Interval& range, Instant now) {
    return {.start = range.start, .end = range.start < now ? std::min(range.end, now) : range.end};
}

Interval behind(const Interval& range, Instant now) {
    return {.start = range.end > now ? std::max(range.start, now) : range.start, .end = range.end};
}

} // namespace

ManualDraft gapDraft(const Interval& gap, Instant now) {
    const Interval past = before(gap, now);
    return draftFor(past.end - past.start >= offeredGap ? past : behind(gap, now));
}

ManualDraft defaultDraft(const ShownDay& day, Instant now) {
    const auto offered = gaps(day.items, offeredGap);
    if (!offered.empty()) {
        return gapDraft(offered.front(), now);
    }
    if (day.isToday) {
        return draftFor({.start = now - hourLength, .end = now});
    }
    const Instant start = day.start + morning;
    return draftFor({.start = start, .end = start + hourLength});
}

ManualDraft clickedDraft(Items items, Instant hour, double x, double barWidth, Instant now,
                         const Calendar& calendar) {
    const double fraction = std::max(x / std::max(barWidth, 1.0), 0.0);
    const Instant clicked = hour + fraction * hourLength;
    const auto side = clicked < now ? before : behind;
    for (const Interval& gap : gaps(items, clickedGap)) {
        if (gap.start <= clicked && clicked < gap.end) {
            return draftFor(side(gap, now));
        }
    }
    const Instant start = hour + minuteAt(clicked, calendar) / 15 * quarter;
    return draftFor(side({.start = start, .end = start + quarter * 2}, now));
}

} // namespace kestu
