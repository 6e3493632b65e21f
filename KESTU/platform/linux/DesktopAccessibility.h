// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether the windows of this session can be seen, and the desktop's own screen of accessibility settings.
// Owned by the Linux platform.
#pragma once

#include "platform/Accessibility.h"

namespace kestu {

class AccessibilityBus;

class DesktopAccessibility final : public Accessibility {
public:
    /// `bus` must outlive this. `areWindowsSeen` does not change while a session lasts.
    DesktopAccessibility(AccessibilityBus& bus, bool areWindowsSeen);
    DesktopAccessibility(const DesktopAccessibility&) = delete;
    DesktopAccessibility& operator=(const DesktopAccessibility&) = delete;

    [[nodiscard]] bool isGranted() override;

    /// Switches the accessibility bus on, from which the addresses in browsers come: titles need no switch
    /// here, so the answer is that of isGranted. Takes 0.3 seconds at most.
    [[nodiscard]] bool request() override;

    /// The settings of the running desktop; those of another one when only they are installed.
    void openSettings() override;

private:
    AccessibilityBus& m_bus;
    bool m_areWindowsSeen;
};

} // namespace kestu
