// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/DisplayPowers.h"

#include <utility>

namespace kestu {

DisplayPowers::DisplayPowers(std::vector<std::unique_ptr<DisplayPower>> powers)
    : m_powers(std::move(powers)) {
    for (const auto& power : m_powers) {
        connect(power.get(), &DisplayPower::changed, this, &DisplayPower::changed);
    }
}

DisplayPower::State DisplayPowers::state() {
    for (const auto& power : m_powers) {
        if (const State state = power->state(); state != State::unknown) {
            return state;
        }
    }
    return State::unknown;
}

} // namespace kestu
