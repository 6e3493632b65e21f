// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether KESTU starts at login.
#pragma once

namespace kestu {

class LoginItem {
public:
    virtual ~LoginItem() = default;

    [[nodiscard]] virtual bool isEnabled() const = 0;

    /// @throws PlatformError with the system's reason.
    virtual void enable() = 0;
    virtual void disable() = 0;
};

} // namespace kestu
