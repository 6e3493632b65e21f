// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/X11Input.h"

#include <xcb/screensaver.h>
#include <xcb/xinput.h>

namespace kestu {
namespace {

/// From version 2.2 of the extension raw events come in spite of grabs, and touches have some.
bool tellsRawEvents(const Xcb& xcb) {
    if (!xcb.has(xcb_input_id)) {
        return false;
    }
    const XcbReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        xcb.connection(), xcb_input_xi_query_version(xcb.connection(), 2, 2), nullptr));
    return version && (version->major_version > 2 || version->minor_version >= 2);
}

} // namespace

X11Input::X11Input(const Xcb& xcb, Seconds trusted)
    : m_xcb(xcb)
    , m_trusted(trusted)
    , m_hasCounter(xcb.has(xcb_screensaver_id))
    , m_hasRawEvents(tellsRawEvents(xcb))
    , m_notifier(xcb_get_file_descriptor(xcb.connection()), QSocketNotifier::Read) {
    connect(&m_notifier, &QSocketNotifier::activated, this, &X11Input::takeEvents);
}

Seconds X11Input::secondsSinceLastInput() {
    if (!m_hasCounter || m_xcb.isBroken()) {
        return Seconds{0};
    }
    takeEvents();
    const Moment now = Moment::clock::now();
    if (m_lastInput && pointer() != m_pointer) {
        confirm(now);
    }
    if (m_hasRawEvents && !m_lastInput && (!m_confirmed || now - *m_confirmed >= m_trusted)) {
        listen();
    }
    return m_lastInput ? Seconds(Moment::clock::now() - *m_lastInput) : idleCounter().value_or(Seconds{0});
}

std::optional<Seconds> X11Input::idleCounter() const {
    const auto cookie = xcb_screensaver_query_info(m_xcb.connection(), m_xcb.root());
    const XcbReply<xcb_screensaver_query_info_reply_t> info(
        xcb_screensaver_query_info_reply(m_xcb.connection(), cookie, nullptr));
    return info ? std::optional<Seconds>(info->ms_since_user_input / 1000.0) : std::nullopt;
}

std::optional<X11Input::Place> X11Input::pointer() const {
    const XcbReply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        m_xcb.connection(), xcb_query_pointer(m_xcb.connection(), m_xcb.root()), nullptr));
    return reply ? std::optional(Place(reply->root_x, reply->root_y)) : std::nullopt;
}

void X11Input::listen() {
    // In this order: what comes before the server listens is in the counter, what comes later is an event.
    selectRawEvents(true);
    if (const auto idle = idleCounter()) {
        m_lastInput = Moment::clock::now() - std::chrono::duration_cast<Moment::duration>(*idle);
        m_pointer = pointer();
    }
}

void X11Input::confirm(Moment input) {
    m_confirmed = input;
    m_lastInput.reset();
    selectRawEvents(false);
}

void X11Input::takeEvents() {
    if (m_xcb.isBroken()) {
        m_notifier.setEnabled(false);
        return;
    }
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_xcb.connection())}) {
        if ((event->response_type & ~0x80U) == XCB_GE_GENERIC && m_lastInput) {
            confirm(momentOf(reinterpret_cast<const xcb_input_raw_key_press_event_t*>(event.get())->time));
        }
    }
}

void X11Input::selectRawEvents(bool wanted) const {
    const struct {
        xcb_input_event_mask_t head{.deviceid = XCB_INPUT_DEVICE_ALL, .mask_len = 1};
        std::uint32_t mask;
    } selection{
        .mask = wanted
                    ? XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE |
                          XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                          XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE | XCB_INPUT_XI_EVENT_MASK_RAW_MOTION |
                          XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_UPDATE
                    : 0U};
    xcb_input_xi_select_events(m_xcb.connection(), m_xcb.root(), 1, &selection.head);
    xcb_flush(m_xcb.connection());
}

} // namespace kestu
