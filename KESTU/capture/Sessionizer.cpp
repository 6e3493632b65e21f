// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/Sessionizer.h"

#include <algorithm>

namespace kestu {

Sessionizer::Events Sessionizer::feed(const Sample& sample, Instant now) {
    Events events;
    if (openSample && openEnd) {
        // A gap that is not a number counts as too large.
        const bool isContinuous = now - *openEnd <= maxGap;
        if (isContinuous) {
            events.emplace_back(Moved{now});
            if (sample == *openSample) {
                openEnd = now;
                return events;
            }
        }
        events.emplace_back(Closed{});
        clear();
    }
    openSample = sample;
    openStart = now;
    openEnd = now;
    events.emplace_back(Started{.sample = sample, .start = now});
    return events;
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
