// SPDX-License-Identifier: GPL-3.0-or-later
//
// A session of a Wayland compositor: what is asked of whom, by what the session offers and never by a
// desktop's name. LinuxPlatform owns one.
#pragma once

#include "platform/linux/DesktopSession.h"
#include "platform/linux/wayland/DisplayPowers.h"
#include "platform/linux/wayland/IdleNotifier.h"
#include "platform/linux/wayland/SwayTree.h"
#include "platform/linux/wayland/WaylandConnection.h"
#include "platform/linux/wayland/WaylandDesktop.h"

#include <QDBusConnection>

#include <memory>

namespace kestu {

class WaylandSession final : public DesktopSession {
public:
    WaylandSession(const QDBusConnection& sessionBus, IsHeld isHeld);
    ~WaylandSession() override;

    [[nodiscard]] Workspace& workspace() override { return m_desktop; }
    [[nodiscard]] UserInput& userInput() override {
        return m_mutterIdle ? static_cast<UserInput&>(*m_mutterIdle) : m_idleNotifier;
    }
    [[nodiscard]] DisplayPower& displayPower() override { return m_displayPower; }
    [[nodiscard]] QString source() const override;
    [[nodiscard]] Ability windows() override { return m_desktop.windows(); }
    [[nodiscard]] Ability titles() override { return m_desktop.titles(); }
    [[nodiscard]] Ability idle() override;
    [[nodiscard]] std::optional<bool> keepsDisplayOn(const FrontmostApplication& front,
                                                     const QDeadlineTimer& deadline) override;
    void request() override { m_desktop.request(); }

private:
    WaylandConnection m_connection;
    SwayTree m_sway;
    IdleNotifier m_idleNotifier;
    std::unique_ptr<UserInput> m_mutterIdle; // null where there is none
    DisplayPowers m_displayPower;
    WaylandDesktop m_desktop;
};

} // namespace kestu
