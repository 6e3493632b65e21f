// SPDX-License-Identifier: GPL-3.0-or-later
//
// When the user last touched anything.
#pragma once

#include "base/Time.h"

namespace kestu {

class UserInput {
public:
    virtual ~UserInput() = default;

    /// Since the last input of any device in this login session; 0 when it cannot be known, so that a
    /// system without the answer records too much rather than nothing.
    [[nodiscard]] virtual Seconds secondsSinceLastInput() = 0;
};

} // namespace kestu
