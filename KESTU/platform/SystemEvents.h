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

Q_SIGNALS:
    void willSleep();
    void screensDidSleep();
    void didWake();
    void screensDidWake();
    void applicationActivated(); // another window came to the front
    void screenLocked();
    void screenUnlocked();
};

} // namespace kestu
