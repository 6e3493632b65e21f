// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/X11Input.h"

#include <xcb/screensaver.h>

namespace kestu {

X11Input::X11Input(const Xcb& xcb)
    : m_xcb(xcb)
    , m_isAvailable(xcb.has(xcb_screensaver_id)) {}

Seconds X11Input::secondsSinceLastInput() {
    if (!m_isAvailable || m_xcb.isBroken()) {
        return Seconds{0};
    }
    const auto cookie = xcb_screensaver_query_info(m_xcb.connection(), m_xcb.root());
    const XcbReply<xcb_screensaver_query_info_reply_t> info(
        xcb_screensaver_query_info_reply(m_xcb.connection(), cookie, nullptr));
    return info ? Seconds{info->ms_since_user_input / 1000.0} : Seconds{0};
}

} // namespace kestu
