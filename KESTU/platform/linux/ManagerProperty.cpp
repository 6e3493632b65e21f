// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ManagerProperty.h"

#include <utility>

namespace kestu {

ManagerProperty::ManagerProperty(std::unique_ptr<Xcb> xcb, const QByteArray& selection, const char* property)
    : m_xcb(std::move(xcb))
    , m_selection(m_xcb->atom((selection + QByteArray::number(m_xcb->screenNumber())).constData()))
    , m_property(m_xcb->atom(property))
    , m_announcement(m_xcb->atom("MANAGER"))
    , m_notifier(xcb_get_file_descriptor(m_xcb->connection()), QSocketNotifier::Read) {
    connect(&m_notifier, &QSocketNotifier::activated, this, &ManagerProperty::takeEvents);
    m_xcb->select(m_xcb->root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY); // where managers announce themselves
    follow();
    takeEvents();
}

void ManagerProperty::follow() {
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        m_xcb->connection(), xcb_get_selection_owner(m_xcb->connection(), m_selection), nullptr));
    m_manager = reply ? reply->owner : xcb_window_t{XCB_NONE};
    if (m_manager != XCB_NONE) {
        m_xcb->select(m_manager, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    }
    read();
}

void ManagerProperty::read() {
    const auto read =
        m_manager == XCB_NONE ? std::nullopt : m_xcb->property(m_xcb->requestProperty(m_manager, m_property));
    XProperty value = read.value_or(XProperty());
    if (value.type != m_value.type || value.bytes != m_value.bytes) {
        m_value = std::move(value);
        Q_EMIT changed();
    }
}

void ManagerProperty::takeEvents() {
    if (m_xcb->isBroken()) {
        m_notifier.setEnabled(false);
        return;
    }
    // Waiting for a reply puts events that came before it into xcb's queue, where no notifier sees them.
    bool isConcerned = true;
    while (std::exchange(isConcerned, false)) {
        while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_xcb->connection())}) {
            isConcerned = concerns(*event) || isConcerned;
        }
        if (isConcerned) {
            follow();
        }
    }
    xcb_flush(m_xcb->connection());
}

bool ManagerProperty::concerns(const xcb_generic_event_t& event) {
    switch (event.response_type & ~0x80U) {
    case XCB_CLIENT_MESSAGE: {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        return message.type == m_announcement && message.data.data32[1] == m_selection;
    }
    case XCB_DESTROY_NOTIFY:
        return reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == m_manager;
    case XCB_PROPERTY_NOTIFY:
        return reinterpret_cast<const xcb_property_notify_event_t&>(event).atom == m_property;
    default:
        return false;
    }
}

} // namespace kestu
