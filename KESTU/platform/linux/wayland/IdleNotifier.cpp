// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/IdleNotifier.h"

#include <ext-idle-notify-client.h>
#include <wayland-client.h>

#include <algorithm>
#include <utility>

namespace kestu {
namespace {

constexpr std::uint32_t newestVersion = 2;

} // namespace

struct IdleNotifier::Seat {
    IdleNotifier& owner;
    std::uint32_t global = 0;
    BoundSeat seat;
    Notification notification{};
    bool isIdle = false;
    Moment watchedSince{}; // silence says that somebody is there only when it has lasted since then
};

struct IdleNotifier::Listeners {
    static void idled(void* data, ext_idle_notification_v1*) {
        auto& seat = *static_cast<Seat*>(data);
        seat.owner.noteIdle(seat);
    }

    static void resumed(void* data, ext_idle_notification_v1*) {
        auto& seat = *static_cast<Seat*>(data);
        seat.isIdle = false;
        seat.watchedSince = seat.owner.m_connection.readAt();
        seat.owner.m_hasResumed = true;
    }

    static void probeIdled(void* data, ext_idle_notification_v1*) {
        auto& owner = *static_cast<IdleNotifier*>(data);
        owner.m_probe.reset();
        owner.m_probeTimer.stop();
    }

    static void ignore(void*, ext_idle_notification_v1*) {}

    static constexpr ext_idle_notification_v1_listener ofSeat{.idled = idled, .resumed = resumed};
    static constexpr ext_idle_notification_v1_listener ofProbe{.idled = probeIdled, .resumed = ignore};
};

void IdleNotifier::Destroy::operator()(ext_idle_notifier_v1* notifier) const {
    ext_idle_notifier_v1_destroy(notifier);
}

void IdleNotifier::Destroy::operator()(ext_idle_notification_v1* notification) const {
    ext_idle_notification_v1_destroy(notification);
}

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
        forgetNotifier();
        decide();
    });
}

IdleNotifier::~IdleNotifier() = default;

void IdleNotifier::add(const WaylandGlobal& global) {
    if (global.interface == wl_seat_interface.name) {
        m_seats.push_back(std::make_unique<Seat>(
            Seat{.owner = *this,
                 .global = global.name,
                 .seat = BoundSeat(m_connection.bind<wl_seat>(global, wl_seat_interface, 1))}));
    } else if (global.interface == ext_idle_notifier_v1_interface.name) {
        forgetNotifier();
        m_notifier.reset(
            m_connection.bind<ext_idle_notifier_v1>(global, ext_idle_notifier_v1_interface, newestVersion));
        m_version = ext_idle_notifier_v1_get_version(m_notifier.get());
        m_global = global.name;
    }
}

void IdleNotifier::remove(std::uint32_t name) {
    if (m_notifier && name == m_global) {
        forgetNotifier();
    }
    std::erase_if(m_seats, [name](const auto& seat) { return seat->global == name; });
}

void IdleNotifier::forgetNotifier() {
    m_probe.reset();
    m_probeTimer.stop();
    for (const auto& seat : m_seats) {
        seat->notification.reset();
    }
    m_notifier.reset();
    m_hasResumed = false;
    m_isAway = false;
}

void IdleNotifier::decide() {
    const bool isNew = std::exchange(m_couldTell, canTell()) != canTell();
    if (isNew && canTell()) {
        m_lastInput = m_connection.readAt(); // up to now nobody knew, which counts as presence
    }
    for (const auto& seat : m_seats) {
        if (m_notifier && !seat->notification) {
            watch(*seat, m_connection.readAt());
        }
    }
    if (std::exchange(m_hasResumed, false)) {
        takeResumed();
    }
    if (isNew) {
        Q_EMIT canTellChanged();
    }
}

void IdleNotifier::watch(Seat& seat, Moment since) {
    seat.notification = notificationAfter(seat.seat.get(), m_times.threshold);
    seat.isIdle = false;
    seat.watchedSince = since;
    ext_idle_notification_v1_add_listener(seat.notification.get(), &Listeners::ofSeat, &seat);
}

IdleNotifier::Notification IdleNotifier::notificationAfter(wl_seat* seat,
                                                           std::chrono::milliseconds time) const {
    const auto milliseconds = static_cast<std::uint32_t>(time.count());
    return Notification(
        looksAtInputAlone()
            ? ext_idle_notifier_v1_get_input_idle_notification(m_notifier.get(), milliseconds, seat)
            : ext_idle_notifier_v1_get_idle_notification(m_notifier.get(), milliseconds, seat));
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
    const auto answer = looksAtInputAlone() ? std::nullopt : m_sway.ask();
    if (answer && answer->isDisplayKeptOn) {
        m_isAway = true; // as before: an inhibitor's beginning is no input
    } else {
        noteInput(m_connection.readAt());
    }
}

void IdleNotifier::noteInput(Moment when) {
    m_lastInput = std::max(m_lastInput, when);
    m_isAway = false;
    m_probe.reset();
    m_probeTimer.stop();
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
    m_connection.read();
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
    if (!canTell() || looksAtInputAlone()) {
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
    m_probe = notificationAfter(m_seats.front()->seat.get(), m_times.probe);
    ext_idle_notification_v1_add_listener(m_probe.get(), &Listeners::ofProbe, this);
    m_connection.flush();
    m_probeTimer.start(m_times.probe + m_times.slack);
}

void IdleNotifier::takeProbe() {
    m_connection.read();
    if (!std::exchange(m_probe, nullptr) || !isIdle()) {
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
