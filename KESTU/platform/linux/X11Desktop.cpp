// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/X11Desktop.h"

#include <chrono>
#include <utility>

namespace kestu {
namespace {

using namespace std::chrono_literals;

// Between two windows nothing is active for a moment (under a millisecond with openbox).
constexpr auto betweenWindows = 50ms;

} // namespace

X11Desktop::X11Desktop(const Xcb& xcb, std::function<bool()> isHeld)
    : m_xcb(xcb)
    , m_reader(xcb)
    , m_isHeld(std::move(isHeld))
    , m_notifier(xcb_get_file_descriptor(xcb.connection()), QSocketNotifier::Read) {
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(xcb.connection(), xcb.root(), XCB_CW_EVENT_MASK, &events);
    xcb_flush(xcb.connection());
    m_announced = m_reader.activeWindowId();
    m_nothingActive.setSingleShot(true);
    m_nothingActive.setInterval(betweenWindows);
    connect(&m_nothingActive, &QTimer::timeout, this, [this] { announce(m_reader.activeWindowId()); });
    connect(&m_notifier, &QSocketNotifier::activated, this, &X11Desktop::readEvents);
}

std::optional<FrontmostApplication> X11Desktop::frontmostApplication() {
    if (m_isHeld() || m_xcb.isBroken()) {
        m_front.reset();
        return std::nullopt;
    }
    const xcb_window_t window = m_reader.activeWindowId();
    if (window != XCB_NONE) {
        m_front = m_reader.read(window);
        m_sinceSomethingWasActive.start();
    } else if (!m_sinceSomethingWasActive.isValid() ||
               m_sinceSomethingWasActive.hasExpired(betweenWindows.count())) {
        m_front.reset();
    }
    takeEvents();
    if (!m_front) {
        return std::nullopt;
    }
    const ApplicationIdentity identity = m_ids.of({.wmInstance = m_front->instance,
                                                   .wmClass = m_front->wmClass,
                                                   .gtkApplicationId = m_front->gtkApplicationId,
                                                   .isDesktop = m_front->isDesktop,
                                                   .processId = m_front->processId});
    return FrontmostApplication{.bundleId = identity.bundleId,
                                .localizedName = identity.localizedName,
                                .processId = m_front->processId};
}

QString X11Desktop::focusedWindowTitle(std::int64_t processId) {
    return m_front && m_front->processId == processId ? m_front->title : QString();
}

void X11Desktop::readEvents() {
    if (m_xcb.isBroken()) {
        m_notifier.setEnabled(false);
        return;
    }
    takeEvents();
}

void X11Desktop::takeEvents() {
    // Waiting for a reply puts events that came before it into xcb's queue, where no notifier sees them.
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_xcb.connection())}) {
        const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event.get());
        if ((event->response_type & ~0x80U) != XCB_PROPERTY_NOTIFY || change->window != m_xcb.root() ||
            change->atom != m_reader.activeWindowAtom() || m_activeWindowEventSeen) {
            continue;
        }
        // Told from the event loop: this may run inside a tick, which would drop it.
        m_activeWindowEventSeen = true;
        QMetaObject::invokeMethod(this, &X11Desktop::noteActiveWindow, Qt::QueuedConnection);
    }
}

void X11Desktop::noteActiveWindow() {
    m_activeWindowEventSeen = false;
    const xcb_window_t window = m_reader.activeWindowId();
    if (window == XCB_NONE) {
        m_nothingActive.start();
    } else {
        announce(window);
    }
    takeEvents();
}

void X11Desktop::announce(xcb_window_t window) {
    m_nothingActive.stop();
    if (std::exchange(m_announced, window) != window) {
        Q_EMIT activeWindowChanged();
    }
}

} // namespace kestu
