// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether the windows of this session can be seen, and the desktop's own screen of accessibility settings.
// Owned by the Linux platform.
#pragma once

#include "platform/Accessibility.h"

namespace kestu {

class AccessibilityBus;
class DesktopSession;
class LinuxSystemEvents;

class DesktopAccessibility final : public Accessibility {
public:
    /// What is asked must outlive this.
    DesktopAccessibility(AccessibilityBus& bus, DesktopSession& session, const LinuxSystemEvents& events);
    DesktopAccessibility(const DesktopAccessibility&) = delete;
    DesktopAccessibility& operator=(const DesktopAccessibility&) = delete;

    [[nodiscard]] bool isGranted() override;

    /// Switches the accessibility bus on, from which the addresses in browsers come, and has the session do
    /// what it may. Takes 0.6 seconds at most.
    [[nodiscard]] bool request() override;

    [[nodiscard]] Abilities abilities() override;

    /// The settings of the running desktop; those of another one when only they are installed. Where GNOME's
    /// windows cannot be seen, those of its extensions.
    void openSettings() override;

private:
    [[nodiscard]] Ability addresses(Ability::Kind windows);

    AccessibilityBus& m_bus;
    DesktopSession& m_session;
    const LinuxSystemEvents& m_events;
};

} // namespace kestu
