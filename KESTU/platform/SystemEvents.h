// SPDX-License-Identifier: GPL-3.0-or-later
//
// What happens to the machine and the session. Delivered on the main thread. Wake, display wake and unlock
// arrive only when nothing else (sleep, sleeping displays, lock) still holds recording back, so that a
// machine that wakes behind its locker stays unrecorded.
#pragma once

#include <QObject>

namespace kestu {

class SystemEvents : public QObject {
    Q_OBJECT

public:
    /// Whether the machine or its displays sleep or the screen is locked, asked of the system at this moment
    /// and not remembered from events, which can get lost. What cannot be known counts as no. Answers within
    /// 0.3 seconds.
    [[nodiscard]] virtual bool isHeldNow() = 0;

Q_SIGNALS:
    void willSleep();
    void screensDidSleep();
    void didWake();
    void screensDidWake();
    void applicationActivated(); // another window came to the front, or none is there any more
    void titleChanged();         // of the window in front; as often as it happens
    void screenLocked();
    void screenUnlocked();
};

} // namespace kestu
