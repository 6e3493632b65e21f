// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/Tracker.h"

#include "platform/Platform.h"
#include "platform/SystemEvents.h"
#include "platform/UserInput.h"
#include "storage/Repository.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <utility>

namespace kestu {
namespace {

using namespace std::chrono_literals;

constexpr auto tickInterval = 2s;

// However present the user seems to be, nobody watches for longer without touching anything.
constexpr Seconds keepAliveLimit = 3h;

// Panels, launchers and windows that have no name yet are in front for less.
constexpr Seconds fleeting = 100ms;

// While a window manager is replaced nothing is in front for up to half a second.
constexpr Seconds bridged = 600ms;

// A title is looked at when it has stayed for so long, and makes a row at most so often.
constexpr Seconds settled = 250ms;
constexpr Seconds titleInterval = 1s;

std::chrono::milliseconds inMilliseconds(Seconds time) {
    return std::chrono::ceil<std::chrono::milliseconds>(time);
}

/// How long ago the window became what it is; absent when unknown.
std::optional<Seconds> ageOf(const WindowInFront& front) {
    if (front.inFrontFor && front.titledFor) {
        return std::min(*front.inFrontFor, *front.titledFor);
    }
    return front.inFrontFor ? front.inFrontFor : front.titledFor;
}

} // namespace

Tracker::Tracker(Repository& repository, Platform& platform, Clock clock, Uptime uptime)
    : m_platform(platform)
    , m_clock(std::move(clock))
    , m_uptime(std::move(uptime))
    , m_inspector(platform.workspace(), platform.browserScripting())
    , m_writer(repository) {
    // Coarse lets the system join wake-ups: Qt moves such a timer by at most 5 % of its interval.
    m_timer.setTimerType(Qt::CoarseTimer);
    m_timer.setInterval(tickInterval);
    m_again.setTimerType(Qt::PreciseTimer);
    m_again.setSingleShot(true);
    m_titleTimer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &Tracker::tick);
    connect(&m_again, &QTimer::timeout, this, &Tracker::tick);
    connect(&m_titleTimer, &QTimer::timeout, this, [this] {
        m_lastTitleTick = m_uptime();
        tick();
    });
}

void Tracker::start() {
    if (m_isRunning) {
        return;
    }
    m_isRunning = true;
    m_presentUntil = Seconds::min();
    m_timer.start();
    observeSystem();
    m_suspended = m_platform.systemEvents().isHeldNow();
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
        connect(events, &SystemEvents::titleChanged, this, &Tracker::noteTitle),
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
    endSession();
}

void Tracker::resetSession() {
    if (m_sessionizer.openSample) {
        m_forgotten = m_sessionizer.openSample;
        m_seenUntil = m_writer.openUntil();
    }
    m_sessionizer = Sessionizer{};
    m_writer.finish();
    m_current.reset();
    if (m_isRunning) {
        tick();
    }
}

void Tracker::suspend() {
    m_suspended = true;
    endSession();
}

void Tracker::resume() {
    m_suspended = false;
    tick();
}

/// Closes the open activity at the current time. What comes next is another session, whatever it shows.
void Tracker::endSession() {
    m_again.stop();
    m_titleTimer.stop();
    m_writer.syncNext();
    apply(m_sessionizer.finish(m_nothingSince ? m_nothingSince->time : m_clock()));
    m_writer.settle();
    m_nothingSince.reset();
    m_seenUntil.reset();
    m_forgotten.reset();
}

void Tracker::noteTitle() {
    const Seconds quiet = titleInterval - (m_uptime() - m_lastTitleTick);
    m_titleTimer.start(inMilliseconds(std::max(settled, quiet)));
}

void Tracker::tick() {
    // A platform query may run the event loop, and with it the next tick.
    if (m_suspended || m_isTicking) {
        return;
    }
    const QScopedValueRollback guard(m_isTicking, true);
    apply(observe());
    m_writer.settleUntil(m_presentUntil);
}

Sessionizer::Events Tracker::observe() {
    const Seconds idle = m_platform.userInput().secondsSinceLastInput();
    const ClockReading asked = clocks();
    const std::optional<WindowInFront> front = m_inspector.front();
    if (auto events = undecided(front, asked)) {
        return std::move(*events);
    }
    const std::optional<Sample> sample = sampleOf(front);
    const ClockReading now = clocks();
    m_presentUntil = std::max(m_presentUntil, asked.uptime - idle);
    if (idle >= idleThreshold) {
        const bool isHeld =
            frontmostPreventsDisplaySleep(m_platform.workspace(), m_platform.displayAssertions());
        if (!policy.keepsAlive(sample, isHeld)) {
            return leave();
        }
        m_presentUntil = now.uptime;
        if (idle >= keepAliveLimit) {
            return m_sessionizer.finish(now.time);
        }
    }
    if (!sample || policy.excludedBundleIds.contains(sample->bundleId)) {
        m_seenUntil = now.time;
        return m_sessionizer.finish(cameAt(front, asked, now));
    }
    return record(*sample, cameAt(front, asked, now), now.time);
}

/// The events of a tick that decides nothing, because what is in front may be gone in a moment: a window that
/// has only just come, nothing at all, a title so soon after the last one. What is open goes on at least
/// until that came.
std::optional<Sessionizer::Events> Tracker::undecided(const std::optional<WindowInFront>& front,
                                                      const ClockReading& asked) {
    if (!front) {
        m_nothingSince = m_nothingSince.value_or(asked);
        return waitFor(bridged - (asked.uptime - m_nothingSince->uptime), m_nothingSince->time);
    }
    m_nothingSince.reset();
    if (front->isOwnPanel) {
        return std::nullopt;
    }
    if (front->inFrontFor && *front->inFrontFor < fleeting) {
        return waitFor(fleeting - *front->inFrontFor, asked.time - *front->inFrontFor);
    }
    if (isOtherTitle(*front)) {
        return waitFor(titleInterval - (asked.uptime - m_startedAt), asked.time - *front->titledFor);
    }
    return std::nullopt;
}

/// Absent when there is nothing to wait for.
std::optional<Sessionizer::Events> Tracker::waitFor(Seconds time, Instant came) {
    if (time <= Seconds{0}) {
        return std::nullopt;
    }
    m_again.start(inMilliseconds(time));
    // Worth a write only when this goes on for long.
    const bool isBehind = m_sessionizer.openEnd && came - *m_sessionizer.openEnd >= tickInterval;
    return isBehind ? m_sessionizer.extend(came) : Sessionizer::Events{};
}

/// Whether the window of the open activity is still in front, only under another title.
bool Tracker::isOtherTitle(const WindowInFront& front) const {
    const auto& open = m_sessionizer.openSample;
    return open && front.titledFor && open->bundleId == front.bundleId && open->title != front.title &&
           !(front.inFrontFor && *front.inFrontFor <= *front.titledFor);
}

std::optional<Sample> Tracker::sampleOf(const std::optional<WindowInFront>& front) {
    if (!front || front->isIgnored) {
        return std::nullopt;
    }
    return front->isOwnPanel ? m_sessionizer.openSample : std::optional(m_inspector.sample(*front));
}

/// When what is in front came; `now` when that is unknown.
Instant Tracker::cameAt(const std::optional<WindowInFront>& front, const ClockReading& asked,
                        const ClockReading& now) const {
    if (!front) {
        return m_nothingSince ? m_nothingSince->time : now.time;
    }
    const std::optional<Seconds> age = ageOf(*front);
    return age ? asked.time - *age : now.time;
}

/// The user has left: at the last input, or when nothing kept the display awake any more.
Sessionizer::Events Tracker::leave() {
    const bool wasOpen = m_sessionizer.openSample.has_value();
    m_sessionizer = Sessionizer{};
    m_seenUntil.reset();
    m_forgotten.reset();
    m_writer.settleUntil(m_presentUntil);
    const bool isCut = m_writer.cutAbsence();
    return wasOpen || isCut ? Sessionizer::Events{Sessionizer::Closed{}} : Sessionizer::Events{};
}

Sessionizer::Events Tracker::record(const Sample& sample, Instant came, Instant now) {
    const Instant since = m_sessionizer.openSample ? came : beginOf(sample, came, now);
    m_seenUntil.reset();
    m_forgotten.reset();
    return m_sessionizer.feed(sample, now, since);
}

/// When an activity begins that follows none: now, or when it came where all the time since is known.
Instant Tracker::beginOf(const Sample& sample, Instant came, Instant now) const {
    Instant begin = now;
    if (m_seenUntil) {
        begin = std::min(now, m_forgotten == sample ? *m_seenUntil : std::max(came, *m_seenUntil));
    }
    // Where the clock was set back a little, what is written already is not written again.
    const auto written = m_writer.writtenUntil();
    return written && *written > begin && *written - now <= m_sessionizer.maxGap ? *written : begin;
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
    const ClockReading now = clocks();
    m_startedAt = now.uptime;
    m_current = started.sample;
    m_writer.begin(started.sample, started.start, now);
}

void Tracker::apply(const Sessionizer::Moved& moved) {
    m_writer.extend(moved.end, clocks());
}

void Tracker::apply(const Sessionizer::Closed&) {
    m_writer.finish();
    m_current.reset();
}

} // namespace kestu
