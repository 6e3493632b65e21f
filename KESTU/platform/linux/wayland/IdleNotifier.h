// SPDX-License-Identifier: GPL-3.0-or-later
//
// The last input on a Wayland desktop: the compositor tells when nobody has touched a seat for ten seconds,
// and when somebody does again. Up to version 1 of its protocol an idle inhibitor (a film) makes it silent,
// and two things must be told apart from input: with some compositors an inhibitor's beginning, with others
// that nothing at all comes while it is held, whoever types.
#pragma once

#include "platform/UserInput.h"
#include "platform/linux/wayland/IdleProtocol.h"
#include "platform/linux/wayland/SwayTree.h"
#include "platform/linux/wayland/WaylandConnection.h"

#include <QTimer>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

struct wl_seat;

namespace kestu {

struct IdleTimes {
    std::chrono::milliseconds threshold{10000}; // players take some time until they hold an inhibitor
    std::chrono::milliseconds probe{1000};
    std::chrono::milliseconds slack{500}; // for what the compositor tells to be here
    std::chrono::milliseconds probePause{10000};
};

class IdleNotifier final : public QObject, public UserInput {
    Q_OBJECT

public:
    /// Both outlive this.
    IdleNotifier(WaylandConnection& connection, SwayTree& sway, IdleTimes times = {});
    ~IdleNotifier() override;

    [[nodiscard]] Seconds secondsSinceLastInput() override;

    /// Whether the compositor tells of input at all.
    [[nodiscard]] bool canTell() const { return m_protocol && !m_seats.empty(); }

    /// Another window came to the front, or the one there has another title. Where an inhibitor silences the
    /// compositor, somebody is there then; else it says nothing, for titles change by themselves.
    void noteChange();

Q_SIGNALS:
    void canTellChanged();

private:
    struct Seat;
    struct Destroy {
        void operator()(wl_seat* seat) const;
    };
    using BoundSeat = std::unique_ptr<wl_seat, Destroy>;

    void add(const WaylandGlobal& global);
    void remove(std::uint32_t name);
    void forgetProtocol();
    void decide();
    void noteIdle(Seat& seat);
    void noteInput(Moment when);
    void takeResumed();
    void lookWhetherReleased();
    void watch(Seat& seat, Moment since);
    [[nodiscard]] bool isIdle() const;
    [[nodiscard]] Moment lastInput(Moment now) const;
    void probe();
    void takeProbe();
    void endProbe();

    WaylandConnection& m_connection;
    SwayTree& m_sway;
    IdleTimes m_times;
    std::unique_ptr<IdleProtocol> m_protocol;
    std::uint32_t m_global = 0; // of the protocol
    std::vector<std::unique_ptr<Seat>> m_seats;
    bool m_couldTell = false;

    Moment m_lastInput;        // as far as it was told
    bool m_hasResumed = false; // in what is just being told
    bool m_isAway = false;     // an inhibitor silences the compositor, and nobody was there when it began

    // Asks for a short idleness, beside the long one that has been told: if that does not come, an inhibitor
    // is held.
    std::unique_ptr<IdleNotification> m_probe;
    bool m_isProbeAnswered = false;
    Moment m_probedAt;
    QTimer m_probeTimer;
};

} // namespace kestu
