// SPDX-License-Identifier: GPL-3.0-or-later
//
// The answers of a session that cannot be asked.
#pragma once

#include "platform/UserInput.h"
#include "platform/linux/DisplayPower.h"

namespace kestu {

class UnknownInput final : public UserInput {
public:
    [[nodiscard]] Seconds secondsSinceLastInput() override { return Seconds{0}; }
};

class UnknownDisplayPower final : public DisplayPower {
public:
    [[nodiscard]] State state() override { return State::unknown; }
};

} // namespace kestu
