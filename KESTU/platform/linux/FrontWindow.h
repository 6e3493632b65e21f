// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which window is in front: the one that the window manager names. Where it names none, or there is no window
// manager, the one that gets the keyboard's input. Window managers come and go; both are followed.
#pragma once

#include "platform/linux/ServerTime.h"
#include "platform/linux/Xcb.h"

#include <cstdint>
#include <optional>

namespace kestu {

class FrontWindow final {
public:
    /// `xcb` outlives this. Asks for events of the root window, and nobody else does on this connection.
    explicit FrontWindow(const Xcb& xcb);

    /// XCB_NONE when none is.
    [[nodiscard]] xcb_window_t id();

    /// When another window may have come to the front, if the event says so. Every event is to be passed
    /// here.
    [[nodiscard]] std::optional<Moment> newsIn(const xcb_generic_event_t& event);

    /// What must be asked of the window in front, so that its leaving is news.
    [[nodiscard]] std::uint32_t eventsOfFront() const;

    /// Whether the window in front can be told here. False where no window manager names it and the focus has
    /// never led to a window either.
    [[nodiscard]] bool canTell() const;

private:
    struct Look; // at one window

    void findManager();
    [[nodiscard]] xcb_window_t windowIn(xcb_window_t window, xcb_atom_t property) const;
    [[nodiscard]] bool isHandingOver() const;
    [[nodiscard]] xcb_window_t focused();
    [[nodiscard]] xcb_window_t underPointer() const;
    [[nodiscard]] xcb_window_t clientOf(xcb_window_t window) const;
    [[nodiscard]] xcb_window_t clientBelow(xcb_window_t frame, bool Look::*isClient) const;
    [[nodiscard]] std::optional<Look> lookAt(xcb_window_t window) const;
    void watchFocus(xcb_window_t window);

    const Xcb& m_xcb;
    xcb_atom_t m_activeWindow;
    xcb_atom_t m_supported;
    xcb_atom_t m_supportingCheck;
    xcb_atom_t m_wmState;
    xcb_window_t m_manager = XCB_NONE; // the window by which it shows that it lives
    bool m_isNamed = false;            // the manager names the window in front
    bool m_managerChanged = false;
    Moment m_unnamedSince;
    bool m_focusHasTold = false;            // since then
    xcb_window_t m_focusWatched = XCB_NONE; // the focus where that is not the client itself
};

} // namespace kestu
