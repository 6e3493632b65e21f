// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/X11DisplayPower.h"

#include <xcb/dpms.h>

namespace kestu {
namespace {

bool isCapable(const Xcb& xcb) {
    if (!xcb.has(xcb_dpms_id)) {
        return false;
    }
    const XcbReply<xcb_dpms_capable_reply_t> reply(
        xcb_dpms_capable_reply(xcb.connection(), xcb_dpms_capable(xcb.connection()), nullptr));
    return reply && reply->capable != 0;
}

} // namespace

X11DisplayPower::X11DisplayPower(const Xcb& xcb)
    : m_xcb(xcb)
    , m_isAvailable(isCapable(xcb)) {}

DisplayPower::State X11DisplayPower::state() {
    if (!m_isAvailable || m_xcb.isBroken()) {
        return State::unknown;
    }
    const XcbReply<xcb_dpms_info_reply_t> info(
        xcb_dpms_info_reply(m_xcb.connection(), xcb_dpms_info(m_xcb.connection()), nullptr));
    if (!info) {
        return State::unknown;
    }
    return info->state != 0 && info->power_level != XCB_DPMS_DPMS_MODE_ON ? State::asleep : State::on;
}

} // namespace kestu
