// SPDX-License-Identifier: GPL-3.0-or-later
//
// The last input on an X11 display. The server's idle counter alone does not tell: programs reset it too, to
// keep the screen saver away. So every half minute one raw input event is waited for; until it comes, or the
// pointer has moved without one (remote controls place it), a fall of the counter is a program's. One event
// each time, so that typing wakes nobody.
#pragma once

#include "platform/UserInput.h"
#include "platform/linux/ServerTime.h"
#include "platform/linux/Xcb.h"

#include <QObject>
#include <QSocketNotifier>

#include <optional>
#include <utility>

namespace kestu {

class X11Input final : public QObject, public UserInput {
public:
    /// `xcb` outlives this and brings no other events. The counter is believed for `trusted` after an input
    /// event.
    explicit X11Input(const Xcb& xcb, Seconds trusted = Seconds{30});

    [[nodiscard]] Seconds secondsSinceLastInput() override;

private:
    using Place = std::pair<int, int>; // on the screen, in pixels

    [[nodiscard]] std::optional<Seconds> idleCounter() const;
    [[nodiscard]] std::optional<Place> pointer() const;
    void listen();
    void confirm(Moment input);
    void takeEvents();
    void selectRawEvents(bool wanted) const;

    const Xcb& m_xcb;
    Seconds m_trusted;
    bool m_hasCounter;
    bool m_hasRawEvents;
    std::optional<Moment> m_confirmed; // the last input event that was seen
    std::optional<Moment> m_lastInput; // present while an event is waited for
    std::optional<Place> m_pointer;    // when that began
    QSocketNotifier m_notifier;
};

} // namespace kestu
