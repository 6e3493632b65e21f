// SPDX-License-Identifier: GPL-3.0-or-later
//
// A session of a Wayland compositor: what is asked of whom, by what the session offers and never by a
// desktop's name. LinuxPlatform owns one.
#pragma once

#include "platform/linux/DesktopSession.h"
#include "platform/linux/wayland/WaylandDesktop.h"

#include <QDBusConnection>

#include <memory>

namespace kestu {

class WaylandSession final : public DesktopSession {
public:
    WaylandSession(const QDBusConnection& sessionBus, IsHeld isHeld);
    ~WaylandSession() override;

    [[nodiscard]] Workspace& workspace() override { return m_desktop; }
    [[nodiscard]] UserInput& userInput() override { return *m_input; }
    [[nodiscard]] DisplayPower& displayPower() override { return *m_displayPower; }
    [[nodiscard]] QString source() const override;
    [[nodiscard]] Ability windows() override { return m_desktop.windows(); }
    [[nodiscard]] Ability titles() override { return m_desktop.titles(); }
    [[nodiscard]] Ability idle() override;
    void request() override { m_desktop.request(); }

private:
    WaylandDesktop m_desktop;
    std::unique_ptr<UserInput> m_input;
    std::unique_ptr<DisplayPower> m_displayPower;
    Ability m_idle;
};

} // namespace kestu
