// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether the displays of an X11 session sleep, from the DPMS extension, which has no events.
#pragma once

#include "platform/linux/DisplayPower.h"
#include "platform/linux/Xcb.h"

namespace kestu {

class X11DisplayPower final : public DisplayPower {
public:
    /// `xcb` outlives this.
    explicit X11DisplayPower(const Xcb& xcb);

    [[nodiscard]] State state() override;

private:
    const Xcb& m_xcb;
    bool m_isAvailable;
};

} // namespace kestu
