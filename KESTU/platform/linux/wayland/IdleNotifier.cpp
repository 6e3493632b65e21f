// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/IdleNotifier.h"

#include <wayland-client.h>

#include <algorithm>
#include <utility>

namespace kestu {
struct IdleNotifier::Seat {
    std::uint32_t global = 0;
    BoundSeat seat;
    std::unique_ptr<IdleNotification> notification{};
    bool isIdle = false;
    Moment watchedSince{}; // silence says that somebody is there only when it has lasted since then
};

void IdleNotifier::Destroy::operator()(wl_seat* seat) const {
    wl_seat_destroy(seat);
}

IdleNotifier::IdleNotifier(WaylandConnection& connection, SwayTree& sway, IdleTimes times)
    : m_connection(connection)
    , m_sway(sway)
    , m_times(times) {
    m_probeTimer.setSingleShot(true);
    connect(&m_probeTimer, &QTimer::timeout, this, &IdleNotifier::takeProbe);
    connect(&connection, &WaylandConnection::globalAdded, this, &IdleNotifier::add);
    connect(&connection, &WaylandConnection::globalRemoved, this, &IdleNotifier::remove);
    connect(&connection, &WaylandConnection::dispatched, this, &IdleNotifier::decide);
    connect(&connection, &WaylandConnection::broken, this, [this] {
        m_seats.clear();
        forgetProtocol();
        decide();
    });
}

IdleNotifier::~IdleNotifier() = default;

void IdleNotifier::add(const WaylandGlobal& global) {
    if (global.interface == wl_seat_interface.name) {
        m_seats.push_back(std::make_unique<Seat>(
            Seat{.global = global.name,
                 .seat = BoundSeat(m_connection.bind<wl_seat>(global, wl_seat_interface, 1))}));
        return;
    }
    if (auto protocol = IdleProtocol::bind(m_connection, global);
        protocol && (!m_protocol || protocol->isPreferred())) {
        forgetProtocol();
        m_protocol = std::move(protocol);
        m_global = global.name;
    }
}

void IdleNotifier::remove(std::uint32_t name) {
    if (m_protocol && name == m_global) {
        forgetProtocol();
    }
    std::erase_if(m_seats, [name](const auto& seat) { return seat->global == name; });
}

void IdleNotifier::forgetProtocol() {
    endProbe();
    for (const auto& seat : m_seats) {
        seat->notification.reset();
    }
    m_protocol.reset();
    m_hasResumed = false;
    m_isAway = false;
}

void IdleNotifier::decide() {
    const bool isNew = std::exchange(m_couldTell, canTell()) != canTell();
    if (isNew && canTell()) {
        m_lastInput = m_connection.readAt(); // up to now nobody knew, which counts as presence
    }
    for (const auto& seat : m_seats) {
        if (m_protocol && !seat->notification) {
            watch(*seat, m_connection.readAt());
        }
    }
    if (m_isProbeAnswered) {
        endProbe();
    }
    if (std::exchange(m_hasResumed, false)) {
        takeResumed();
    }
    if (isNew) {
        Q_EMIT canTellChanged();
    }
}

void IdleNotifier::watch(Seat& seat, Moment since) {
    const auto resumed = [this, &seat] {
        seat.isIdle = false;
        seat.watchedSince = m_connection.readAt();
        m_hasResumed = true;
    };
    seat.notification = m_protocol->notify(seat.seat.get(), m_times.threshold,
                                           {.idled = [this, &seat] { noteIdle(seat); }, .resumed = resumed});
    seat.isIdle = false;
    seat.watchedSince = since;
}

void IdleNotifier::noteIdle(Seat& seat) {
    seat.isIdle = true;
    const Moment input = m_connection.readAt() - m_times.threshold;
    // A notification that is new, or that an inhibitor has silenced, begins to count with that and not with
    // an input.
    if (!std::exchange(m_isAway, false) && input > seat.watchedSince + m_times.slack) {
        m_lastInput = std::max(m_lastInput, input);
    }
}

void IdleNotifier::takeResumed() {
    const auto answer = m_protocol->looksAtInputAlone() ? std::nullopt : m_sway.ask();
    if (answer && answer->isDisplayKeptOn) {
        m_isAway = true; // as before: an inhibitor's beginning is no input
    } else {
        noteInput(m_connection.readAt());
    }
}

void IdleNotifier::noteInput(Moment when) {
    m_lastInput = std::max(m_lastInput, when);
    m_isAway = false;
    endProbe();
}

void IdleNotifier::lookWhetherReleased() {
    const auto answer = m_sway.ask();
    m_connection.read();
    if (m_isAway && !(answer && answer->isDisplayKeptOn)) {
        m_isAway = false;
        for (const auto& seat : m_seats) {
            seat->watchedSince = Moment::clock::now();
        }
    }
}

bool IdleNotifier::isIdle() const {
    return std::ranges::all_of(m_seats, [](const auto& seat) { return seat->isIdle; });
}

Moment IdleNotifier::lastInput(Moment now) const {
    Moment last = m_lastInput;
    const Moment silentSince = now - m_times.threshold - m_times.slack;
    for (const auto& seat : m_seats) {
        if (!m_isAway && !seat->isIdle && silentSince >= seat->watchedSince) {
            last = std::max(last, silentSince); // else it would have been told
        }
    }
    return last;
}

Seconds IdleNotifier::secondsSinceLastInput() {
    m_connection.check();
    if (!canTell()) {
        return Seconds{0};
    }
    if (m_isAway) {
        lookWhetherReleased();
    }
    const Moment now = Moment::clock::now();
    return now - lastInput(now);
}

void IdleNotifier::noteChange() {
    if (!canTell() || m_protocol->looksAtInputAlone()) {
        return;
    }
    if (m_isAway) {
        lookWhetherReleased();
        if (m_isAway) {
            noteInput(Moment::clock::now());
        }
    } else if (isIdle() && !m_sway.isThere()) { // which would have told of an inhibitor
        probe();
    }
}

void IdleNotifier::probe() {
    const Moment now = Moment::clock::now();
    if (m_probe || now < m_probedAt + m_times.probePause) {
        return;
    }
    m_probedAt = now;
    m_probe = m_protocol->notify(m_seats.front()->seat.get(), m_times.probe,
                                 {.idled = [this] { m_isProbeAnswered = true; }, .resumed = [] {}});
    m_connection.flush();
    m_probeTimer.start(m_times.probe + m_times.slack);
}

void IdleNotifier::endProbe() {
    m_probe.reset();
    m_probeTimer.stop();
    m_isProbeAnswered = false;
}

void IdleNotifier::takeProbe() {
    m_connection.read();
    const bool isSilenced = m_probe && isIdle();
    endProbe();
    if (!isSilenced) {
        return;
    }
    // An inhibitor silences it, and the long ones with it, which would never speak again: new ones do when it
    // ends.
    noteInput(m_probedAt);
    for (const auto& seat : m_seats) {
        watch(*seat, m_probedAt);
    }
    m_connection.flush();
}

} // namespace kestu
