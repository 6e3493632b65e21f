// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ActiveWindow.h"

#include "platform/linux/X11Text.h"

#include <QList>
#include <QSysInfo>

#include <xcb/res.h>

#include <cstring>

namespace kestu {
namespace {

std::uint32_t firstCard32(const XProperty& property) {
    std::uint32_t value = 0;
    if (property.bytes.size() >= static_cast<qsizetype>(sizeof value)) {
        std::memcpy(&value, property.bytes.constData(), sizeof value);
    }
    return value;
}

/// Whether the server can name the process behind a window (XRes from version 1.2).
bool canNameProcesses(const Xcb& xcb) {
    if (!xcb.has(xcb_res_id)) {
        return false;
    }
    const auto cookie = xcb_res_query_version(xcb.connection(), 1, 2);
    const XcbReply<xcb_res_query_version_reply_t> version(
        xcb_res_query_version_reply(xcb.connection(), cookie, nullptr));
    return version && (version->server_major > 1 || version->server_minor >= 2);
}

std::int64_t localClientPid(const Xcb& xcb, xcb_res_query_client_ids_cookie_t cookie) {
    xcb_generic_error_t* error = nullptr;
    const XcbReply<xcb_res_query_client_ids_reply_t> reply(
        xcb_res_query_client_ids_reply(xcb.connection(), cookie, &error));
    std::free(error);
    if (!reply) {
        return 0;
    }
    for (auto ids = xcb_res_query_client_ids_ids_iterator(reply.get()); ids.rem > 0;
         xcb_res_client_id_value_next(&ids)) {
        if ((ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 &&
            xcb_res_client_id_value_value_length(ids.data) > 0) {
            return *xcb_res_client_id_value_value(ids.data);
        }
    }
    return 0;
}

} // namespace

ActiveWindowReader::ActiveWindowReader(const Xcb& xcb)
    : m_xcb(xcb)
    , m_hasResources(canNameProcesses(xcb))
    , m_hostName(QSysInfo::machineHostName().toUtf8())
    , m_netWmName(xcb.atom("_NET_WM_NAME"))
    , m_netWmPid(xcb.atom("_NET_WM_PID"))
    , m_gtkApplicationId(xcb.atom("_GTK_APPLICATION_ID"))
    , m_windowType(xcb.atom("_NET_WM_WINDOW_TYPE"))
    , m_desktopType(xcb.atom("_NET_WM_WINDOW_TYPE_DESKTOP"))
    , m_windowRole(xcb.atom("WM_WINDOW_ROLE"))
    , m_utf8String(xcb.atom("UTF8_STRING"))
    , m_compoundText(xcb.atom("COMPOUND_TEXT")) {}

std::optional<ActiveWindow> ActiveWindowReader::read(xcb_window_t window) const {
    const auto netName = m_xcb.requestProperty(window, m_netWmName);
    const auto name = m_xcb.requestProperty(window, XCB_ATOM_WM_NAME);
    const auto wmClass = m_xcb.requestProperty(window, XCB_ATOM_WM_CLASS);
    const auto gtkId = m_xcb.requestProperty(window, m_gtkApplicationId);
    const auto type = m_xcb.requestProperty(window, m_windowType);
    const auto role = m_xcb.requestProperty(window, m_windowRole);
    const auto pid = m_xcb.requestProperty(window, m_netWmPid);
    const auto machine = m_xcb.requestProperty(window, XCB_ATOM_WM_CLIENT_MACHINE);
    xcb_res_query_client_ids_cookie_t clientIds{};
    if (m_hasResources) {
        const xcb_res_client_id_spec_t spec{.client = window,
                                            .mask = XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        clientIds = xcb_res_query_client_ids(m_xcb.connection(), 1, &spec);
    }

    const auto netNameProperty = m_xcb.property(netName);
    const auto nameProperty = m_xcb.property(name);
    const auto classProperty = m_xcb.property(wmClass);
    const auto roleProperty = m_xcb.property(role);
    const auto gtkIdProperty = m_xcb.property(gtkId);
    const auto typeProperty = m_xcb.property(type);
    const auto pidProperty = m_xcb.property(pid);
    const auto machineProperty = m_xcb.property(machine);
    const std::int64_t told = m_hasResources ? localClientPid(m_xcb, clientIds) : 0;
    if (!netNameProperty || !nameProperty || !classProperty || !roleProperty || !gtkIdProperty ||
        !typeProperty || !pidProperty || !machineProperty) {
        return std::nullopt;
    }
    const QList<QByteArray> classes = classProperty->bytes.split('\0');
    // The server's word is the host's truth; the window's own is its claim, and 1 inside a container.
    return ActiveWindow{.window = window,
                        .title = titleIn(*netNameProperty, *nameProperty),
                        .instance = QString::fromUtf8(classes.value(0)),
                        .wmClass = QString::fromUtf8(classes.value(1)),
                        .gtkApplicationId = QString::fromUtf8(gtkIdProperty->bytes),
                        .isDesktop = firstCard32(*typeProperty) == m_desktopType,
                        .role = QString::fromLatin1(roleProperty->bytes),
                        .processId = told != 0 ? told : claimedProcessId(*pidProperty, *machineProperty)};
}

std::optional<QString> ActiveWindowReader::title(xcb_window_t window) const {
    const auto netName = m_xcb.requestProperty(window, m_netWmName);
    const auto name = m_xcb.requestProperty(window, XCB_ATOM_WM_NAME);
    const auto netNameProperty = m_xcb.property(netName);
    const auto nameProperty = m_xcb.property(name);
    if (!netNameProperty || !nameProperty) {
        return std::nullopt;
    }
    return titleIn(*netNameProperty, *nameProperty);
}

QString ActiveWindowReader::titleIn(const XProperty& netName, const XProperty& name) const {
    for (const XProperty* property : {&netName, &name}) {
        const bool isUtf8 = property == &netName || property->type == m_utf8String;
        const auto encoding = isUtf8                             ? X11Encoding::utf8
                              : property->type == m_compoundText ? X11Encoding::compoundText
                                                                 : X11Encoding::latin1;
        const auto text = decodedX11Text(property->bytes, encoding);
        if (text && !text->isEmpty()) {
            return *text;
        }
    }
    return {};
}

std::int64_t ActiveWindowReader::claimedProcessId(const XProperty& pid, const XProperty& machine) const {
    return machine.bytes == m_hostName ? std::int64_t{firstCard32(pid)} : 0;
}

} // namespace kestu
