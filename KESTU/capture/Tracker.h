// SPDX-License-Identifier: GPL-3.0-or-later
//
// The capture loop, the one place where time enters the system. Every two seconds, and at once when another
// window or title comes to the front or the machine wakes, it takes one observation, decides whether the user
// is there, and writes what follows to the store. Created once by the application model and owned by it; all
// of it runs on the main thread.
#pragma once

#include "base/Time.h"
#include "capture/IdlePolicy.h"
#include "capture/RowWriter.h"
#include "capture/Sessionizer.h"
#include "capture/WindowInspector.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <optional>
#include <vector>

namespace kestu {

class Platform;
class Repository;

class Tracker final : public QObject {
public:
    /// Builds a stopped tracker; `repository` and `platform` outlive it.
    Tracker(Repository& repository, Platform& platform, Clock clock, Uptime uptime = systemUptime);

    /// Starts recording; the first tick comes at once.
    void start();

    /// Stops recording and closes the open activity at the current time.
    void stop();

    /// Forgets the open activity without writing anything, and ticks at once if running: recording goes on
    /// in a new row.
    void resetSession();

    [[nodiscard]] bool isRunning() const { return m_isRunning; }

    /// The row that is being extended.
    [[nodiscard]] std::optional<ActivityId> openActivityId() const { return m_writer.openId(); }

    /// The sample of the open activity.
    [[nodiscard]] const std::optional<Sample>& current() const { return m_current; }

    /// From this time without input the user counts as away.
    Seconds idleThreshold{180};
    IdlePolicy policy;

    /// Called once after every step that changed the open activity.
    std::function<void()> onUpdate;

private:
    void observeSystem();
    void tick();
    [[nodiscard]] Sessionizer::Events observe();
    [[nodiscard]] std::optional<Sessionizer::Events> undecided(const std::optional<WindowInFront>& front,
                                                               const ClockReading& asked);
    [[nodiscard]] std::optional<Sessionizer::Events> waitFor(Seconds time, Instant came);
    [[nodiscard]] bool isOtherTitle(const WindowInFront& front) const;
    [[nodiscard]] std::optional<Sample> sampleOf(const std::optional<WindowInFront>& front);
    [[nodiscard]] Instant cameAt(const std::optional<WindowInFront>& front, const ClockReading& asked,
                                 const ClockReading& now) const;
    [[nodiscard]] Sessionizer::Events leave();
    [[nodiscard]] Sessionizer::Events record(const Sample& sample, Instant came, Instant now);
    [[nodiscard]] Instant beginOf(const Sample& sample, Instant came, Instant now) const;
    void noteTitle();
    void suspend();
    void resume();
    void endSession();
    void apply(const Sessionizer::Events& events);
    void apply(const Sessionizer::Started& started);
    void apply(const Sessionizer::Moved& moved);
    void apply(const Sessionizer::Closed& closed);
    [[nodiscard]] ClockReading clocks() const { return {.time = m_clock(), .uptime = m_uptime()}; }

    Platform& m_platform;
    Clock m_clock;
    Uptime m_uptime;
    WindowInspector m_inspector;
    Sessionizer m_sessionizer;
    RowWriter m_writer;
    std::optional<Sample> m_current;
    std::optional<Sample> m_forgotten; // by resetSession: when it is seen again, no time lies between
    std::optional<ClockReading> m_nothingSince; // nothing is in front
    std::optional<Instant> m_seenUntil;         // what was seen up to here belongs to no later row
    Seconds m_presentUntil{};                   // the uptime until which the user was certainly there
    QTimer m_timer;
    QTimer m_again;                           // what has only just come decides when it has stayed
    QTimer m_titleTimer;                      // a title has come, and may stay
    Seconds m_lastTitleTick = Seconds::min(); // uptimes
    Seconds m_startedAt{};                    // of the open activity, when it was noticed
    std::vector<QMetaObject::Connection> m_observers;
    bool m_suspended = false; // while the screen is locked, or the machine or its displays sleep
    bool m_isTicking = false;
    bool m_isRunning = false;
};

} // namespace kestu
