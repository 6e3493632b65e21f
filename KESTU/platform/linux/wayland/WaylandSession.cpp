// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/WaylandSession.h"

#include "platform/linux/Unknown.h"
#include "platform/linux/wayland/AccessibleWindows.h"

#include <utility>

namespace kestu {
namespace {

std::vector<std::unique_ptr<WindowSource>> sourcesOf(const QDBusConnection& sessionBus) {
    std::vector<std::unique_ptr<WindowSource>> sources;
    sources.push_back(std::make_unique<AccessibleWindows>(sessionBus)); // the last resort
    return sources;
}

} // namespace

WaylandSession::WaylandSession(const QDBusConnection& sessionBus, IsHeld isHeld)
    : m_desktop(sourcesOf(sessionBus), std::move(isHeld))
    , m_input(std::make_unique<UnknownInput>())
    , m_displayPower(std::make_unique<UnknownDisplayPower>()) {
    connect(&m_desktop, &WaylandDesktop::activated, this, &DesktopSession::activated);
    connect(&m_desktop, &WaylandDesktop::titleChanged, this, &DesktopSession::titleChanged);
    connect(&m_desktop, &WaylandDesktop::abilitiesChanged, this, &DesktopSession::abilitiesChanged);
}

WaylandSession::~WaylandSession() = default;

QString WaylandSession::source() const {
    return m_desktop.source() ? m_desktop.source()->name() : QString();
}

Ability WaylandSession::idle() {
    return {};
}

} // namespace kestu
