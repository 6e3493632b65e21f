// SPDX-License-Identifier: GPL-3.0-or-later
//
// The last input on an X11 display, from the screen-saver extension.
#pragma once

#include "platform/UserInput.h"
#include "platform/linux/Xcb.h"

namespace kestu {

class X11Input final : public UserInput {
public:
    /// `xcb` outlives this.
    explicit X11Input(const Xcb& xcb);

    [[nodiscard]] Seconds secondsSinceLastInput() override;

private:
    const Xcb& m_xcb;
    bool m_isAvailable;
};

} // namespace kestu
