// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop of an X11 session: which window is in front, and the news that another one came there.
// Owned by LinuxPlatform.
#pragma once

#include "platform/Workspace.h"
#include "platform/linux/ActiveWindow.h"
#include "platform/linux/ApplicationResolver.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <functional>
#include <optional>

namespace kestu {

class X11Desktop final : public QObject, public Workspace {
    Q_OBJECT

public:
    /// `xcb` outlives this. While `isHeld` says that something holds recording back (a lock, sleep), nothing
    /// is in front: lockers do not become the active window, so the old one would still be reported.
    X11Desktop(const Xcb& xcb, std::function<bool()> isHeld);

    [[nodiscard]] std::optional<FrontmostApplication> frontmostApplication() override;
    [[nodiscard]] QString focusedWindowTitle(std::int64_t processId) override;

Q_SIGNALS:
    /// Another window came to the front, or none is there any more.
    void activeWindowChanged();

private:
    void readEvents();
    void takeEvents();
    void noteActiveWindow();
    void announce(xcb_window_t window);

    const Xcb& m_xcb;
    ActiveWindowReader m_reader;
    ApplicationIds m_ids;
    std::function<bool()> m_isHeld;
    std::optional<ActiveWindow> m_front; // as of the last frontmostApplication()
    xcb_window_t m_announced = XCB_NONE;
    bool m_activeWindowEventSeen = false;
    QElapsedTimer m_sinceSomethingWasActive;
    QTimer m_nothingActive;
    QSocketNotifier m_notifier;
};

} // namespace kestu
