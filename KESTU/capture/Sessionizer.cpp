// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/Sessionizer.h"

#include <algorithm>
#include <cmath>

namespace kestu {

Sessionizer::Events Sessionizer::feed(const Sample& sample, Instant now, Instant since) {
    const bool isGoingOn = openEnd && isWithinGap(now);
    if (isGoingOn && sample == *openSample) {
        return extend(now);
    }
    Instant begin = now;
    if (isGoingOn) {
        begin = std::clamp(since, *openEnd, std::max(now, *openEnd));
    } else if (!openEnd && std::abs((now - since).count()) <= maxGap.count()) {
        begin = since;
    }
    Events events = replace(sample, begin);
    if (begin < now) {
        events.emplace_back(Moved{now});
        openEnd = now;
    }
    return events;
}

/// A gap that is not a number counts as too large.
bool Sessionizer::isWithinGap(Instant time) const {
    const Seconds gap = time - *openEnd;
    return gap <= maxGap && gap >= -maxGap;
}

Sessionizer::Events Sessionizer::replace(const Sample& sample, Instant begin) {
    Events events;
    if (openEnd) {
        if (isWithinGap(begin)) {
            events.emplace_back(Moved{begin});
        }
        events.emplace_back(Closed{});
    }
    openSample = sample;
    openStart = begin;
    openEnd = begin;
    events.emplace_back(Started{.sample = sample, .start = begin});
    return events;
}

Sessionizer::Events Sessionizer::extend(Instant time) {
    if (!openEnd || !isWithinGap(time) || time < *openEnd) {
        return {};
    }
    openEnd = time;
    return {Moved{time}};
}

Sessionizer::Events Sessionizer::finish(Instant time) {
    return openEnd ? close(isWithinGap(time) ? std::max(time, *openEnd) : *openEnd) : Events{};
}

Sessionizer::Events Sessionizer::close(Instant time) {
    if (!openSample || !openStart) {
        return {};
    }
    const Instant end = std::max(*openStart, time);
    clear();
    return {Moved{end}, Closed{}};
}

void Sessionizer::clear() {
    openSample.reset();
    openStart.reset();
    openEnd.reset();
}

} // namespace kestu
