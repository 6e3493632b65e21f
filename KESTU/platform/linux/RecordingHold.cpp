// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/RecordingHold.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace kestu {

namespace {

struct ReasonSignals {
    SystemSignal begun;
    SystemSignal ended;
};

constexpr std::array<ReasonSignals, 3> reasonSignals{{
    {.begun = &SystemEvents::willSleep, .ended = &SystemEvents::didWake},
    {.begun = &SystemEvents::screensDidSleep, .ended = &SystemEvents::screensDidWake},
    {.begun = &SystemEvents::screenLocked, .ended = &SystemEvents::screenUnlocked},
}};

constexpr std::size_t indexOf(HoldReason reason) {
    return static_cast<std::size_t>(reason);
}

} // namespace

SystemSignal RecordingHold::begin(HoldReason reason) {
    const bool heldAlready = std::exchange(m_holds.at(indexOf(reason)), true);
    return heldAlready ? nullptr : reasonSignals.at(indexOf(reason)).begun;
}

SystemSignal RecordingHold::end(HoldReason reason) {
    const bool held = std::exchange(m_holds.at(indexOf(reason)), false);
    return held && !isHeld() ? reasonSignals.at(indexOf(reason)).ended : nullptr;
}

bool RecordingHold::isHeld() const {
    return std::any_of(m_holds.begin(), m_holds.end(), std::identity{});
}

} // namespace kestu
