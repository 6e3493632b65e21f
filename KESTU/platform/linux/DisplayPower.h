// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether the displays are switched off. The display server has no event for it, so it is polled.
#pragma once

namespace kestu {

class DisplayPower {
public:
    enum class State { unknown, on, asleep };

    virtual ~DisplayPower() = default;

    /// Unknown where the system cannot say. Answers within a few milliseconds.
    [[nodiscard]] virtual State state() = 0;
};

} // namespace kestu
