// SPDX-License-Identifier: GPL-3.0-or-later
//
// The two kinds of time. An instant and a length are different types, so that they cannot be mixed up;
// both are double-precision seconds, in memory and in the database.
#pragma once

#include <chrono>
#include <cmath>
#include <functional>

namespace kestu {

/// A length of time in seconds.
using Seconds = std::chrono::duration<double>;

/// A point on the wall clock: seconds since the Unix epoch.
using Instant = std::chrono::sys_time<Seconds>;

/// What gives "now". Passed in wherever the time is needed, so that tests can play a whole day.
using Clock = std::function<Instant()>;

/// What counts the seconds that pass. Nobody sets it; it stands still while the machine sleeps.
using Uptime = std::function<Seconds()>;

[[nodiscard]] constexpr Instant instantAt(double epochSeconds) {
    return Instant{Seconds{epochSeconds}};
}

[[nodiscard]] constexpr double epochSeconds(Instant instant) {
    return instant.time_since_epoch().count();
}

/// From `start` up to, but not including, `end`.
struct Interval {
    Instant start{};
    Instant end{};
    bool operator==(const Interval&) const = default;
};

/// The time between two instants; 0 when the end lies before the start or either is not finite.
[[nodiscard]] inline Seconds lengthOf(Instant start, Instant end) {
    const Seconds length = end - start;
    return length > Seconds{0} && std::isfinite(length.count()) ? length : Seconds{0};
}

/// The system's wall clock.
[[nodiscard]] inline Instant systemNow() {
    return std::chrono::time_point_cast<Seconds>(std::chrono::system_clock::now());
}

/// The seconds that the machine has been awake.
[[nodiscard]] inline Seconds systemUptime() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

} // namespace kestu
