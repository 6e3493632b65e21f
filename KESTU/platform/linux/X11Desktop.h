// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop of an X11 session: which window is in front and since when, and the news that another one came
// there or that it has another title. Owned by LinuxPlatform.
#pragma once

#include "platform/Workspace.h"
#include "platform/linux/ActiveWindow.h"
#include "platform/linux/ApplicationResolver.h"
#include "platform/linux/FrontWindow.h"
#include "platform/linux/ServerTime.h"

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
    [[nodiscard]] QString whyUnseen() override;

Q_SIGNALS:
    /// Another window came to the front, or none is there any more.
    void activeWindowChanged();

    /// The window in front has another title.
    void titleChanged();

private:
    void readEvents();
    void takeEvents();
    void take(const xcb_generic_event_t& event);
    void settle();
    void readFront();
    void select();
    void follow(xcb_window_t window, std::optional<Moment> since);
    void noteTitle(const QString& title);
    void tellLater();
    void tell();
    void announce();

    const Xcb& m_xcb;
    FrontWindow m_frontWindow;
    ActiveWindowReader m_reader;
    ApplicationIds m_ids;
    std::function<bool()> m_isHeld;
    std::optional<ActiveWindow> m_front; // as of the last frontmostApplication()

    // The window that is followed: it is in front as far as events and questions have told.
    xcb_window_t m_window = XCB_NONE;
    std::uint32_t m_selected = 0; // the events that are asked of it
    std::optional<Moment> m_since;
    QString m_title;
    std::optional<Moment> m_titledSince;

    std::optional<Moment> m_switchedAt; // by an event that nobody has looked into
    std::optional<Moment> m_titleEvent; // the last one of the window
    bool m_hasTitleEvent = false;       // that nobody has looked into
    bool m_hasNewTitle = false;         // that is not told yet
    bool m_willTell = false;
    xcb_window_t m_announced = XCB_NONE;
    QTimer m_nothingActive;
    QSocketNotifier m_notifier;
};

} // namespace kestu
