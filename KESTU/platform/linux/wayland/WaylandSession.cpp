// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/WaylandSession.h"

#include "platform/linux/wayland/AccessibleWindows.h"
#include "platform/linux/wayland/GnomeWindows.h"
#include "platform/linux/wayland/KWinDpms.h"
#include "platform/linux/wayland/KWinWindows.h"
#include "platform/linux/wayland/MutterDisplayPower.h"
#include "platform/linux/wayland/MutterIdle.h"
#include "platform/linux/wayland/WlrOutputPower.h"
#include "platform/linux/wayland/WlrToplevels.h"

#include <QStandardPaths>

#include <memory>
#include <utility>
#include <vector>

namespace kestu {
namespace {

std::unique_ptr<WindowSource> gnomeWindows(const QDBusConnection& sessionBus) {
    return std::make_unique<GnomeWindows>(sessionBus, std::make_unique<DesktopShellSettings>(),
                                          QStandardPaths::locateAll(QStandardPaths::GenericDataLocation,
                                                                    QStringLiteral("gnome-shell/extensions"),
                                                                    QStandardPaths::LocateDirectory));
}

/// In the order of preference.
std::vector<std::unique_ptr<WindowSource>> sourcesOf(WaylandConnection& connection, SwayTree& sway,
                                                     const QDBusConnection& sessionBus) {
    std::vector<std::unique_ptr<WindowSource>> sources;
    sources.push_back(std::make_unique<WlrToplevels>(connection, sway));
    sources.push_back(std::make_unique<KWinWindows>(
        sessionBus, QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation)));
    sources.push_back(gnomeWindows(sessionBus));
    sources.push_back(std::make_unique<AccessibleWindows>(sessionBus)); // the last resort
    return sources;
}

std::vector<std::unique_ptr<DisplayPower>> powersOf(WaylandConnection& connection,
                                                    const QDBusConnection& sessionBus) {
    std::vector<std::unique_ptr<DisplayPower>> powers;
    powers.push_back(std::make_unique<WlrOutputPower>(connection));
    powers.push_back(std::make_unique<KWinDpms>(connection));
    if (auto mutter = MutterDisplayPower::open(sessionBus)) {
        powers.push_back(std::move(mutter));
    }
    return powers;
}

} // namespace

WaylandSession::WaylandSession(const QDBusConnection& sessionBus, IsHeld isHeld)
    : m_idleNotifier(m_connection, m_sway)
    , m_mutterIdle(MutterIdle::open(sessionBus))
    , m_displayPower(powersOf(m_connection, sessionBus))
    , m_desktop(sourcesOf(m_connection, m_sway, sessionBus), std::move(isHeld)) {
    connect(&m_desktop, &WaylandDesktop::activated, this, &DesktopSession::activated);
    connect(&m_desktop, &WaylandDesktop::titleChanged, this, &DesktopSession::titleChanged);
    connect(&m_desktop, &WaylandDesktop::abilitiesChanged, this, &DesktopSession::abilitiesChanged);
    connect(&m_idleNotifier, &IdleNotifier::canTellChanged, this, &DesktopSession::abilitiesChanged);
    connect(&m_desktop, &WaylandDesktop::activated, &m_idleNotifier, &IdleNotifier::noteChange);
    connect(&m_desktop, &WaylandDesktop::titleChanged, &m_idleNotifier, &IdleNotifier::noteChange);
    m_connection.open(); // when all who listen are there
}

WaylandSession::~WaylandSession() = default;

QString WaylandSession::source() const {
    return m_desktop.source() ? m_desktop.source()->name() : QString();
}

Ability WaylandSession::idle() {
    return {.kind = m_mutterIdle || m_idleNotifier.canTell() ? Ability::Kind::yes : Ability::Kind::no};
}

std::optional<bool> WaylandSession::keepsDisplayOn(const FrontmostApplication& front,
                                                   const QDeadlineTimer& deadline) {
    const auto answer = m_sway.ask(deadline);
    const bool isSame =
        answer && answer->focused && front.processId != 0 && answer->focused->processId == front.processId;
    return isSame ? std::optional(answer->focused->keepsDisplayOn) : std::nullopt;
}

} // namespace kestu
