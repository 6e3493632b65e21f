// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/SessionKind.h"

#include "platform/linux/Xcb.h"
#include "platform/linux/wayland/LocalSocket.h"
#include "platform/linux/wayland/WaylandConnection.h"

#include <QString>
#include <QStringList>

#include <algorithm>

namespace kestu {
namespace {

bool isOfWaylandType() {
    return qEnvironmentVariable("XDG_SESSION_TYPE") == u"wayland";
}

bool isWaylandNamed() {
    return isOfWaylandType() || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

bool isX11Reachable() {
    QString why;
    return Xcb::connect(why) != nullptr;
}

/// A compositor that has crashed leaves its name in the environment of whatever outlived it.
bool isCompositorReachable() {
    // WAYLAND_SOCKET is a connection that was made for us; looking at it would use it up.
    return !qEnvironmentVariableIsEmpty("WAYLAND_SOCKET") ||
           LocalSocket(WaylandConnection::sessionSocket()).isConnected();
}

/// What Qt tries one after the other.
QStringList qtPlatforms() {
    const QString chosen = qEnvironmentVariable("QT_QPA_PLATFORM");
    if (!chosen.isEmpty()) {
        return chosen.split(u';');
    }
    return isWaylandNamed() ? QStringList{QStringLiteral("wayland"), QStringLiteral("xcb")}
                            : QStringList{QStringLiteral("xcb")};
}

} // namespace

bool isWaylandSession() {
    // XWayland sets DISPLAY too, and shows X11 programs only: what the session is, these two say.
    return isOfWaylandType() || (isWaylandNamed() && isCompositorReachable());
}

bool isDisplayReachable() {
    const QStringList platforms = qtPlatforms();
    return std::ranges::any_of(platforms, [](const QString& platform) {
        return platform.startsWith(u"wayland") ? isCompositorReachable()
               : platform.startsWith(u"xcb")   ? isX11Reachable()
                                               : true; // needs none
    });
}

} // namespace kestu
