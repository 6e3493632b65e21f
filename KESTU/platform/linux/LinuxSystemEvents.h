// SPDX-License-Identifier: GPL-3.0-or-later
//
// Sleep, lock and sleeping displays from the login manager, the screen savers and the display server, folded
// into the events that the tracker hears. The Linux platform owns one. Any of the sources may be missing.
#pragma once

#include "platform/Abilities.h"
#include "platform/SystemEvents.h"
#include "platform/linux/DisplayPower.h"
#include "platform/linux/LoginManager.h"
#include "platform/linux/RecordingHold.h"
#include "platform/linux/ScreenSavers.h"

#include <QDBusConnection>
#include <QTimer>

#include <chrono>

namespace kestu {

class LinuxSystemEvents final : public SystemEvents {
    Q_OBJECT

public:
    /// Reads what holds recording back already, in 0.3 seconds at most. `displayPower` outlives this.
    LinuxSystemEvents(const QDBusConnection& systemBus, const QDBusConnection& sessionBus,
                      DisplayPower& displayPower,
                      std::chrono::milliseconds displayInterval = std::chrono::seconds(2));

    /// The machine or its displays sleep, or the screen is locked. An event tells only changes: whoever asks
    /// what is in front asks this first, for a session that was locked before KESTU started.
    [[nodiscard]] bool isHeld() const { return m_hold.isHeld(); }

    /// What this finds is in its answer and not told as an event too.
    [[nodiscard]] bool isHeldNow() override;

    /// Whether a locked screen can be told.
    [[nodiscard]] Ability lock() const;

    /// Another window came to the front.
    void noteActivation() { Q_EMIT applicationActivated(); }

    /// The window in front has another title.
    void noteTitle() { Q_EMIT titleChanged(); }

private:
    void noteSleep();
    void noteLock();
    void noteDisplays(DisplayPower::State state);
    void note(HoldReason reason, bool holds);

    DisplayPower& m_displayPower;
    LoginManager m_loginManager;
    ScreenSavers m_screenSavers;
    QTimer m_displayTimer;
    RecordingHold m_hold;
    bool m_isAsking = false;
};

} // namespace kestu
