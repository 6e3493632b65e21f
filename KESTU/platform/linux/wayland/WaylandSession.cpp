// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/WaylandSession.h"

#include "platform/linux/Unknown.h"
#include "platform/linux/wayland/GnomeWindows.h"
#include "platform/linux/wayland/KWinWindows.h"
#include "platform/linux/wayland/MutterDisplayPower.h"
#include "platform/linux/wayland/MutterIdle.h"

#include <QStandardPaths>

#include <utility>

namespace kestu {
namespace {

std::unique_ptr<WindowSource> gnomeWindows(const QDBusConnection& sessionBus) {
    return std::make_unique<GnomeWindows>(sessionBus, std::make_unique<DesktopShellSettings>(),
                                          QStandardPaths::locateAll(QStandardPaths::GenericDataLocation,
                                                                    QStringLiteral("gnome-shell/extensions"),
                                                                    QStandardPaths::LocateDirectory));
}

std::vector<std::unique_ptr<WindowSource>> sourcesOf(const QDBusConnection& sessionBus) {
    std::vector<std::unique_ptr<WindowSource>> sources;
    sources.push_back(std::make_unique<KWinWindows>(
        sessionBus, QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation)));
    sources.push_back(gnomeWindows(sessionBus));
    return sources;
}

std::unique_ptr<UserInput> inputOf(const QDBusConnection& sessionBus) {
    return MutterIdle::open(sessionBus);
}

std::unique_ptr<DisplayPower> displayPowerOf(const QDBusConnection& sessionBus) {
    return MutterDisplayPower::open(sessionBus);
}

} // namespace

WaylandSession::WaylandSession(const QDBusConnection& sessionBus, IsHeld isHeld)
    : m_desktop(sourcesOf(sessionBus), std::move(isHeld))
    , m_input(inputOf(sessionBus))
    , m_displayPower(displayPowerOf(sessionBus)) {
    m_idle.kind = m_input ? Ability::Kind::yes : Ability::Kind::no;
    if (!m_input) {
        m_input = std::make_unique<UnknownInput>();
    }
    if (!m_displayPower) {
        m_displayPower = std::make_unique<UnknownDisplayPower>();
    }
    connect(&m_desktop, &WaylandDesktop::activated, this, &DesktopSession::activated);
    connect(&m_desktop, &WaylandDesktop::titleChanged, this, &DesktopSession::titleChanged);
    connect(&m_desktop, &WaylandDesktop::abilitiesChanged, this, &DesktopSession::abilitiesChanged);
}

WaylandSession::~WaylandSession() = default;

QString WaylandSession::source() const {
    return m_desktop.source() ? m_desktop.source()->name() : QString();
}

Ability WaylandSession::idle() {
    return m_idle;
}

} // namespace kestu
