// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/Xcb.h"

#include <cstring>

namespace kestu {
namespace {

// In units of four bytes: 1 MiB, far beyond any title that a person reads.
constexpr std::uint32_t longestProperty = 0x40000;

} // namespace

std::unique_ptr<Xcb> Xcb::connect(QString& why) {
    int screenNumber = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);
        why = QStringLiteral(
                  "X サーバー「%1」に接続できないため、記録されません。X11 のセッションでお使いください。")
                  .arg(qEnvironmentVariable("DISPLAY"));
        return nullptr;
    }
    auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int number = screenNumber; number > 0 && screen.rem > 1; --number) {
        xcb_screen_next(&screen);
    }
    return std::unique_ptr<Xcb>(new Xcb(connection, screen.data->root, screenNumber));
}

Xcb::Xcb(xcb_connection_t* connection, xcb_window_t root, int screenNumber)
    : m_connection(connection)
    , m_root(root)
    , m_screenNumber(screenNumber) {}

Xcb::~Xcb() {
    xcb_disconnect(m_connection);
}

xcb_atom_t Xcb::atom(const char* name) const {
    const auto cookie = xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

bool Xcb::isBroken() const {
    return xcb_connection_has_error(m_connection) != 0;
}

bool Xcb::has(xcb_extension_t& extension) const {
    const xcb_query_extension_reply_t* data = xcb_get_extension_data(m_connection, &extension);
    return data != nullptr && data->present != 0;
}

xcb_get_property_cookie_t Xcb::requestProperty(xcb_window_t window, xcb_atom_t property) const {
    // Of any type: some programs set another one than the standard asks for.
    return xcb_get_property(m_connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, longestProperty);
}

std::optional<XProperty> Xcb::property(xcb_get_property_cookie_t cookie) const {
    xcb_generic_error_t* error = nullptr;
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection, cookie, &error));
    std::free(error);
    if (!reply) {
        return std::nullopt;
    }
    const auto* bytes = static_cast<const char*>(xcb_get_property_value(reply.get()));
    return XProperty{.type = reply->type,
                     .bytes = QByteArray(bytes, xcb_get_property_value_length(reply.get()))};
}

void Xcb::select(xcb_window_t window, std::uint32_t events) const {
    xcb_change_window_attributes(m_connection, window, XCB_CW_EVENT_MASK, &events);
}

} // namespace kestu
