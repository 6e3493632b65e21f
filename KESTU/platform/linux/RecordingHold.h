// SPDX-License-Identifier: GPL-3.0-or-later
//
// What holds recording back: several reasons that come and go independently, folded into the one story that
// the tracker hears. LinuxSystemEvents owns one.
//
//   locked     |--------------------------|
//   asleep            |-----------|
//   told       ^lock  ^sleep      (no wake: still locked)  ^unlock
#pragma once

#include "platform/SystemEvents.h"

#include <array>
#include <cstddef>

namespace kestu {

enum class HoldReason : std::size_t { asleep, displaysAsleep, locked };

/// A signal of SystemEvents to be emitted; null for none.
using SystemSignal = void (SystemEvents::*)();

class RecordingHold final {
public:
    /// A reason begins: always told, unless it holds already.
    [[nodiscard]] SystemSignal begin(HoldReason reason);

    /// A reason ends: told only when no other one remains.
    [[nodiscard]] SystemSignal end(HoldReason reason);

    [[nodiscard]] bool isHeld() const;

private:
    std::array<bool, 3> m_holds{}; // by HoldReason
};

} // namespace kestu
