// SPDX-License-Identifier: GPL-3.0-or-later
//
// The last input on a Wayland desktop: the compositor tells when nobody has touched a seat for ten seconds,
// and when somebody does again. Up to version 1 of its protocol an idle inhibitor (a film) makes it silent,
// and two things must be told apart from input: with some compositors an inhibitor's beginning, with others
// that nothing at all comes while it is held, whoever types.
#pragma once

#include "platform/UserInput.h"
#include "platform/linux/wayland/SwayTree.h"
#include "platform/linux/wayland/WaylandConnection.h"

#include <QTimer>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

struct ext_idle_notification_v1;
struct ext_idle_notifier_v1;
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
    [[nodiscard]] bool canTell() const { return m_notifier && !m_seats.empty(); }

    /// Another window came to the front, or the one there has another title. Where an inhibitor silences the
    /// compositor, somebody is there then; else it says nothing, for titles change by themselves.
    void noteChange();

Q_SIGNALS:
    void canTellChanged();

private:
    struct Seat;
    struct Listeners;
    struct Destroy {
        void operator()(ext_idle_notifier_v1* notifier) const;
        void operator()(ext_idle_notification_v1* notification) const;
        void operator()(wl_seat* seat) const;
    };
    using BoundSeat = std::unique_ptr<wl_seat, Destroy>;
    using Notification = std::unique_ptr<ext_idle_notification_v1, Destroy>;

    void add(const WaylandGlobal& global);
    void remove(std::uint32_t name);
    void forgetNotifier();
    void decide();
    void noteIdle(Seat& seat);
    void noteInput(Moment when);
    void takeResumed();
    void lookWhetherReleased();
    void watch(Seat& seat, Moment since);
    [[nodiscard]] Notification notificationAfter(wl_seat* seat, std::chrono::milliseconds time) const;
    [[nodiscard]] bool isIdle() const;
    [[nodiscard]] bool looksAtInputAlone() const { return m_version >= 2; }
    [[nodiscard]] Moment lastInput(Moment now) const;
    void probe();
    void takeProbe();

    WaylandConnection& m_connection;
    SwayTree& m_sway;
    IdleTimes m_times;
    std::unique_ptr<ext_idle_notifier_v1, Destroy> m_notifier;
    std::uint32_t m_global = 0;  // of the notifier
    std::uint32_t m_version = 0; // of the notifier
    std::vector<std::unique_ptr<Seat>> m_seats;
    bool m_couldTell = false;

    Moment m_lastInput;        // as far as it was told
    bool m_hasResumed = false; // in what is just being told
    bool m_isAway = false;     // an inhibitor silences the compositor, and nobody was there when it began

    // Asks for a short idleness, beside the long one that has been told: if that does not come, an inhibitor
    // is held.
    Notification m_probe;
    Moment m_probedAt;
    QTimer m_probeTimer;
};

} // namespace kestu
