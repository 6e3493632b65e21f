// SPDX-License-Identifier: GPL-3.0-or-later
//
// Our own connection to the X server. Not Qt's: it works with every Qt platform, and a protocol error on it
// cannot break the screens. Windows vanish between two questions, so an error reply is ordinary and simply
// reads as "nothing"; as an event it has a type that nobody waits for.
#pragma once

#include <QByteArray>
#include <QString>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <optional>

namespace kestu {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};

/// A reply or an event, which xcb allocates with malloc; null on an error.
template<typename T>
using XcbReply = std::unique_ptr<T, FreeReply>;

/// A property as the server holds it.
struct XProperty {
    xcb_atom_t type = XCB_NONE;
    QByteArray bytes;
};

class Xcb final {
public:
    /// Connects to $DISPLAY. Null when there is none; `why` then says so.
    [[nodiscard]] static std::unique_ptr<Xcb> connect(QString& why);

    ~Xcb();
    Xcb(const Xcb&) = delete;
    Xcb& operator=(const Xcb&) = delete;

    [[nodiscard]] xcb_connection_t* connection() const { return m_connection; }
    [[nodiscard]] xcb_window_t root() const { return m_root; }
    [[nodiscard]] int screenNumber() const { return m_screenNumber; }
    [[nodiscard]] xcb_atom_t atom(const char* name) const;
    [[nodiscard]] bool isBroken() const;

    /// Whether the server has this extension. Asking one that is not there would kill the connection.
    [[nodiscard]] bool has(xcb_extension_t& extension) const;

    [[nodiscard]] xcb_get_property_cookie_t requestProperty(xcb_window_t window, xcb_atom_t property) const;

    /// Absent when the window has vanished; empty when it has no such property.
    [[nodiscard]] std::optional<XProperty> property(xcb_get_property_cookie_t cookie) const;

    /// Asks for these events of a window, and for no others of it. A window that has vanished has none.
    void select(xcb_window_t window, std::uint32_t events) const;

private:
    Xcb(xcb_connection_t* connection, xcb_window_t root, int screenNumber);

    xcb_connection_t* m_connection;
    xcb_window_t m_root;
    int m_screenNumber;
};

} // namespace kestu
