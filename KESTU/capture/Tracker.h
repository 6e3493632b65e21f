// SPDX-License-Identifier: GPL-3.0-or-later
//
// The capture loop, the one place where time enters the system. Every two seconds, and at once when another
// window comes to the front or the machine wakes, it takes one observation, decides whether the user is
// there, and writes what follows to the store. Created once by the application model and owned by it; all
// of it runs on the main thread.
#pragma once

#include "base/Time.h"
#include "capture/IdlePolicy.h"
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
    Tracker(Repository& repository, Platform& platform, Clock clock);

    /// Starts recording; the first tick comes at once.
    void start();

    /// Stops recording and closes the open activity at the current time.
    void stop();

    /// Forgets the open activity without writing anything, and ticks at once if running: recording goes on
    /// in a new row.
    void resetSession();

    [[nodiscard]] bool isRunning() const { return m_isRunning; }

    /// The row that is being extended.
    [[nodiscard]] std::optional<ActivityId> openActivityId() const { return m_openActivityId; }

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
    void suspend();
    void resume();
    void apply(const Sessionizer::Events& events);
    void apply(const Sessionizer::Started& started);
    void apply(const Sessionizer::Moved& moved);
    void apply(const Sessionizer::Closed& closed);

    Repository& m_repository;
    Platform& m_platform;
    Clock m_clock;
    WindowInspector m_inspector;
    Sessionizer m_sessionizer;
    std::optional<ActivityId> m_openActivityId; // absent also when the open activity's insert failed
    std::optional<Sample> m_current;
    QTimer m_timer;
    std::vector<QMetaObject::Connection> m_observers;
    bool m_suspended = false; // while the screen is locked, or the machine or its displays sleep
    bool m_isTicking = false;
    bool m_isRunning = false;
};

} // namespace kestu
