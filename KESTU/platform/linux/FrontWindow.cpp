// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/FrontWindow.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace kestu {
namespace {

using namespace std::chrono_literals;

// One window manager replaces another within half a second. Meanwhile the pointer's place means nothing.
constexpr auto handOver = 2s;

// A window manager puts one or two windows of its own around a client, beside some buttons.
constexpr int deepestFrame = 3;
constexpr size_t mostChildren = 64;
constexpr int deepestFocus = 16; // below the root; a program's own windows nest

// The focus leaves the window, or the pointer does, by whose place the focus may go.
constexpr std::uint32_t leavingEvents = XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_LEAVE_WINDOW;

std::vector<std::uint32_t> card32s(const std::optional<XProperty>& property) {
    const auto size = property ? static_cast<size_t>(property->bytes.size()) / sizeof(std::uint32_t) : 0;
    std::vector<std::uint32_t> values(size);
    if (size > 0) {
        std::memcpy(values.data(), property->bytes.constData(), size * sizeof(std::uint32_t));
    }
    return values;
}

} // namespace

struct FrontWindow::Look {
    xcb_window_t parent = XCB_NONE;
    std::vector<xcb_window_t> children;
    bool isManaged = false; // a window manager has it for a client
    bool isNamed = false;   // a program has given it a class or a title
};

FrontWindow::FrontWindow(const Xcb& xcb)
    : m_xcb(xcb)
    , m_activeWindow(xcb.atom("_NET_ACTIVE_WINDOW"))
    , m_supported(xcb.atom("_NET_SUPPORTED"))
    , m_supportingCheck(xcb.atom("_NET_SUPPORTING_WM_CHECK"))
    , m_wmState(xcb.atom("WM_STATE"))
    , m_unnamedSince(Moment::clock::now()) {
    findManager();
}

xcb_window_t FrontWindow::id() {
    if (std::exchange(m_managerChanged, false)) {
        findManager();
    }
    return m_isNamed ? windowIn(m_xcb.root(), m_activeWindow) : focused();
}

std::optional<Moment> FrontWindow::newsIn(const xcb_generic_event_t& event) {
    switch (event.response_type & ~0x80U) {
    case XCB_PROPERTY_NOTIFY: {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        const bool isOfManager = change.atom == m_supportingCheck || change.atom == m_supported;
        if (change.window != m_xcb.root() || (change.atom != m_activeWindow && !isOfManager)) {
            return std::nullopt;
        }
        m_managerChanged = m_managerChanged || isOfManager;
        return momentOf(change.time);
    }
    case XCB_DESTROY_NOTIFY:
        if (reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window != m_manager) {
            return std::nullopt;
        }
        m_managerChanged = true;
        return Moment::clock::now();
    case XCB_LEAVE_NOTIFY:
        return momentOf(reinterpret_cast<const xcb_leave_notify_event_t&>(event).time);
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT:
        return Moment::clock::now(); // these carry no time
    default:
        return std::nullopt;
    }
}

std::uint32_t FrontWindow::eventsOfFront() const {
    return m_isNamed ? 0 : leavingEvents;
}

bool FrontWindow::canTell() const {
    return m_isNamed || m_focusHasTold || isHandingOver();
}

void FrontWindow::findManager() {
    // In this order: what changes after the question is an event.
    m_xcb.select(m_xcb.root(), XCB_EVENT_MASK_PROPERTY_CHANGE | leavingEvents);
    m_manager = windowIn(m_xcb.root(), m_supportingCheck);
    if (m_manager != XCB_NONE) {
        m_xcb.select(m_manager, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        // One that has ended leaves its name on the root window, and the id may be another window's by now.
        m_manager = windowIn(m_manager, m_supportingCheck) == m_manager ? m_manager : XCB_NONE;
    }
    const auto supported = card32s(m_xcb.property(m_xcb.requestProperty(m_xcb.root(), m_supported)));
    const bool wasNamed = std::exchange(
        m_isNamed, m_manager != XCB_NONE && std::ranges::find(supported, m_activeWindow) != supported.end());
    if (m_isNamed) {
        m_xcb.select(m_xcb.root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
        watchFocus(XCB_NONE);
    } else if (wasNamed) {
        m_unnamedSince = Moment::clock::now();
        m_focusHasTold = false;
    }
}

xcb_window_t FrontWindow::windowIn(xcb_window_t window, xcb_atom_t property) const {
    const auto values = card32s(m_xcb.property(m_xcb.requestProperty(window, property)));
    return values.empty() ? xcb_window_t{XCB_NONE} : values.front();
}

bool FrontWindow::isHandingOver() const {
    return Moment::clock::now() - m_unnamedSince < handOver;
}

xcb_window_t FrontWindow::focused() {
    const XcbReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(m_xcb.connection(), xcb_get_input_focus(m_xcb.connection()), nullptr));
    xcb_window_t focus = reply ? reply->focus : xcb_window_t{XCB_NONE};
    if (focus == XCB_INPUT_FOCUS_POINTER_ROOT || focus == m_xcb.root()) {
        focus = isHandingOver() ? xcb_window_t{XCB_NONE} : underPointer(); // which gets the keys then
    }
    const xcb_window_t client = focus == XCB_NONE ? xcb_window_t{XCB_NONE} : clientOf(focus);
    watchFocus(focus == client ? xcb_window_t{XCB_NONE} : focus);
    m_focusHasTold = m_focusHasTold || client != XCB_NONE;
    return client;
}

xcb_window_t FrontWindow::underPointer() const {
    const XcbReply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
        m_xcb.connection(), xcb_query_pointer(m_xcb.connection(), m_xcb.root()), nullptr));
    return pointer ? pointer->child : xcb_window_t{XCB_NONE};
}

xcb_window_t FrontWindow::clientOf(xcb_window_t window) const {
    xcb_window_t outermost = window;
    xcb_window_t named = XCB_NONE;
    for (int depth = 0; depth < deepestFocus; ++depth) {
        const auto look = lookAt(window);
        if (!look || look->isManaged) {
            return look ? window : xcb_window_t{XCB_NONE};
        }
        named = look->isNamed ? window : named;
        outermost = window;
        window = look->parent;
        if (window == m_xcb.root() || window == XCB_NONE) {
            break;
        }
    }
    if (const xcb_window_t client = clientBelow(outermost, &Look::isManaged)) {
        return client;
    }
    return named != XCB_NONE ? named : clientBelow(outermost, &Look::isNamed);
}

xcb_window_t FrontWindow::clientBelow(xcb_window_t frame, bool Look::*isClient) const {
    std::vector<xcb_window_t> level{frame};
    for (int depth = 0; depth < deepestFrame; ++depth) {
        std::vector<xcb_window_t> below;
        for (const xcb_window_t window : level) {
            const auto look = lookAt(window);
            if (look && (*look).*isClient) {
                return window;
            }
            if (look && below.size() + look->children.size() <= mostChildren) {
                below.insert(below.end(), look->children.begin(), look->children.end());
            }
        }
        level = std::move(below);
    }
    return XCB_NONE;
}

std::optional<FrontWindow::Look> FrontWindow::lookAt(xcb_window_t window) const {
    const auto tree = xcb_query_tree(m_xcb.connection(), window);
    const auto state = m_xcb.requestProperty(window, m_wmState);
    const auto wmClass = m_xcb.requestProperty(window, XCB_ATOM_WM_CLASS);
    const auto name = m_xcb.requestProperty(window, XCB_ATOM_WM_NAME);
    xcb_generic_error_t* error = nullptr;
    const XcbReply<xcb_query_tree_reply_t> found(xcb_query_tree_reply(m_xcb.connection(), tree, &error));
    std::free(error);
    const auto has = [this](xcb_get_property_cookie_t cookie) {
        const auto property = m_xcb.property(cookie);
        return property && property->type != XCB_NONE;
    };
    Look look;
    look.isManaged = has(state);
    const bool hasClass = has(wmClass);
    look.isNamed = has(name) || hasClass;
    if (!found) {
        return std::nullopt;
    }
    look.parent = found->parent;
    const xcb_window_t* children = xcb_query_tree_children(found.get());
    look.children.assign(children, children + xcb_query_tree_children_length(found.get()));
    return look;
}

void FrontWindow::watchFocus(xcb_window_t window) {
    const xcb_window_t former = std::exchange(m_focusWatched, window);
    if (former == window) {
        return;
    }
    if (former != XCB_NONE) {
        m_xcb.select(former, XCB_EVENT_MASK_NO_EVENT);
    }
    if (window != XCB_NONE) {
        m_xcb.select(window, leavingEvents);
    }
}

} // namespace kestu
