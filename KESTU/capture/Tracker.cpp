// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/Tracker.h"

#include "platform/Platform.h"
#include "platform/SystemEvents.h"
#include "platform/UserInput.h"
#include "storage/Repository.h"

#include <QScopedValueRollback>

#include <utility>

namespace kestu {
namespace {

using namespace std::chrono_literals;

constexpr auto tickInterval = 2s;

// However present the user seems to be, nobody watches for longer without touching anything.
constexpr Seconds keepAliveLimit = 3h;

} // namespace

Tracker::Tracker(Repository& repository, Platform& platform, Clock clock)
    : m_repository(repository)
    , m_platform(platform)
    , m_clock(std::move(clock))
    , m_inspector(platform.workspace(), platform.browserScripting()) {
    // Coarse lets the system join wake-ups: Qt moves such a timer by at most 5 % of its interval.
    m_timer.setTimerType(Qt::CoarseTimer);
    m_timer.setInterval(tickInterval);
    connect(&m_timer, &QTimer::timeout, this, &Tracker::tick);
}

void Tracker::start() {
    if (m_isRunning) {
        return;
    }
    m_isRunning = true;
    m_timer.start();
    observeSystem();
    tick();
}

void Tracker::observeSystem() {
    const SystemEvents* events = &m_platform.systemEvents();
    m_observers = {
        connect(events, &SystemEvents::willSleep, this, &Tracker::suspend),
        connect(events, &SystemEvents::screensDidSleep, this, &Tracker::suspend),
        connect(events, &SystemEvents::didWake, this, &Tracker::resume),
        connect(events, &SystemEvents::screensDidWake, this, &Tracker::resume),
        connect(events, &SystemEvents::applicationActivated, this, &Tracker::tick),
        connect(events, &SystemEvents::screenLocked, this, &Tracker::suspend),
        connect(events, &SystemEvents::screenUnlocked, this, &Tracker::resume),
    };
}

void Tracker::stop() {
    if (!m_isRunning) {
        return;
    }
    m_isRunning = false;
    m_timer.stop();
    for (const QMetaObject::Connection& observer : std::exchange(m_observers, {})) {
        disconnect(observer);
    }
    apply(m_sessionizer.close(m_clock()));
}

void Tracker::resetSession() {
    m_sessionizer = Sessionizer{};
    m_openActivityId.reset();
    m_current.reset();
    if (m_isRunning) {
        tick();
    }
}

void Tracker::suspend() {
    m_suspended = true;
    apply(m_sessionizer.close(m_clock()));
}

void Tracker::resume() {
    m_suspended = false;
    tick();
}

void Tracker::tick() {
    // A platform query may run the event loop, and with it the next tick.
    if (m_suspended || m_isTicking) {
        return;
    }
    const QScopedValueRollback guard(m_isTicking, true);
    apply(observe());
}

Sessionizer::Events Tracker::observe() {
    const Seconds idle = m_platform.userInput().secondsSinceLastInput();
    const std::optional<Sample> sample = m_inspector.sample();
    const Instant now = m_clock();
    if (idle >= idleThreshold) {
        const bool isHeld =
            frontmostPreventsDisplaySleep(m_platform.workspace(), m_platform.displayAssertions());
        if (!policy.keepsAlive(sample, isHeld)) {
            return m_sessionizer.close(now - idle); // the user left at the last input
        }
        if (idle >= keepAliveLimit) {
            return m_sessionizer.close(now);
        }
    }
    if (!sample || policy.excludedBundleIds.contains(sample->bundleId)) {
        return m_sessionizer.close(now);
    }
    return m_sessionizer.feed(*sample, now);
}

void Tracker::apply(const Sessionizer::Events& events) {
    if (events.empty()) {
        return;
    }
    for (const Sessionizer::Event& event : events) {
        std::visit([this](const auto& what) { apply(what); }, event);
    }
    if (onUpdate) {
        onUpdate();
    }
}

void Tracker::apply(const Sessionizer::Started& started) {
    m_current = started.sample;
    try {
        m_openActivityId = m_repository.insertActivity(started.sample, started.start);
    } catch (const DatabaseError&) {
        // Capture never reports: this activity stays unwritten, the next one is tried afresh.
        m_openActivityId.reset();
    }
}

void Tracker::apply(const Sessionizer::Moved& moved) {
    if (!m_openActivityId) {
        return;
    }
    try {
        m_repository.extendActivity(*m_openActivityId, moved.end);
    } catch (const DatabaseError&) {
        // Dropped: the next tick writes a later end into the same row.
    }
}

void Tracker::apply(const Sessionizer::Closed&) {
    m_openActivityId.reset();
    m_current.reset();
}

} // namespace kestu
