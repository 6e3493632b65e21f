// SPDX-License-Identifier: GPL-3.0-or-later
//
// Turns a stream of observations into the life of one activity at a time: started, moved, closed. A plain
// value owned by the tracker; it knows no store, no clock and no platform.
#pragma once

#include "base/Time.h"
#include "storage/Records.h"

#include <optional>
#include <variant>
#include <vector>

namespace kestu {

struct Sessionizer {
    /// A new activity with this sample begins; its end equals its start.
    struct Started {
        Sample sample;
        Instant start{};
        bool operator==(const Started&) const = default;
    };
    /// The open activity's end becomes this time.
    struct Moved {
        Instant end{};
        bool operator==(const Moved&) const = default;
    };
    /// The open activity is finished; nothing is open any more.
    struct Closed {
        bool operator==(const Closed&) const = default;
    };
    using Event = std::variant<Started, Moved, Closed>;
    using Events = std::vector<Event>;

    /// The largest silence between two observations that still lets the open activity go on.
    Seconds maxGap{10};

    // All three are present while an activity is open, and absent otherwise.
    std::optional<Sample> openSample;
    std::optional<Instant> openStart;
    std::optional<Instant> openEnd; // the time of the last extension

    /// At `now` the application in front looked like `sample`, and had done so from `since` on. An equal
    /// sample within `maxGap` extends the open activity; everything else starts a new one, which begins when
    /// it came:
    ///
    ///   open    |-------|....           |-------|....
    ///   since         ^ (too early)          now ^   ^since
    ///   new             |---|                      |-|
    ///
    /// A clock that was set back by up to `maxGap` leaves the open end where it is until it has caught up.
    [[nodiscard]] Events feed(const Sample& sample, Instant now, Instant since);
    [[nodiscard]] Events feed(const Sample& sample, Instant now) { return feed(sample, now, now); }

    /// What is open goes on to `time`; neither back, nor over a silence of more than `maxGap`.
    [[nodiscard]] Events extend(Instant time);

    /// What is open goes on to `time`, as far as extend() would take it, and ends there.
    [[nodiscard]] Events finish(Instant time);

    /// Whatever is open ends at `time`: earlier than its last extension if need be, never before its start.
    [[nodiscard]] Events close(Instant time);

private:
    [[nodiscard]] bool isWithinGap(Instant time) const;
    [[nodiscard]] Events replace(const Sample& sample, Instant begin);
    void clear();
};

} // namespace kestu
