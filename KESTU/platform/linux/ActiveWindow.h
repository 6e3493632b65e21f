// SPDX-License-Identifier: GPL-3.0-or-later
//
// What X11 knows of the window in front.
#pragma once

#include "platform/linux/Xcb.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace kestu {

struct ActiveWindow {
    xcb_window_t window = XCB_NONE;
    QString title;
    QString instance; // the two halves of WM_CLASS
    QString wmClass;
    QString gtkApplicationId;
    bool isDesktop = false;
    QString role;
    std::int64_t processId = 0; // 0 when unknown
};

class ActiveWindowReader final {
public:
    explicit ActiveWindowReader(const Xcb& xcb);

    /// All of `window` in one round trip to the server, which answers even when the program hangs. Absent
    /// when the window has vanished.
    [[nodiscard]] std::optional<ActiveWindow> read(xcb_window_t window) const;

    /// The title alone. Absent when the window has vanished.
    [[nodiscard]] std::optional<QString> title(xcb_window_t window) const;

    [[nodiscard]] bool isTitle(xcb_atom_t property) const {
        return property == m_netWmName || property == XCB_ATOM_WM_NAME;
    }

private:
    [[nodiscard]] QString titleIn(const XProperty& netName, const XProperty& name) const;
    [[nodiscard]] std::int64_t claimedProcessId(const XProperty& pid, const XProperty& machine) const;

    const Xcb& m_xcb;
    bool m_hasResources;
    QByteArray m_hostName;
    xcb_atom_t m_netWmName;
    xcb_atom_t m_netWmPid;
    xcb_atom_t m_gtkApplicationId;
    xcb_atom_t m_windowType;
    xcb_atom_t m_desktopType;
    xcb_atom_t m_windowRole;
    xcb_atom_t m_utf8String;
    xcb_atom_t m_compoundText;
};

} // namespace kestu
