// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LinuxSystemEvents.h"

#include <QScopedValueRollback>

namespace kestu {

LinuxSystemEvents::LinuxSystemEvents(const QDBusConnection& systemBus, const QDBusConnection& sessionBus,
                                     DisplayPower& displayPower, std::chrono::milliseconds displayInterval)
    : m_displayPower(displayPower)
    , m_loginManager(systemBus)
    , m_screenSavers(sessionBus) {
    connect(&m_loginManager, &LoginManager::asleepChanged, this, &LinuxSystemEvents::noteSleep);
    connect(&m_loginManager, &LoginManager::lockedChanged, this, &LinuxSystemEvents::noteLock);
    connect(&m_screenSavers, &ScreenSavers::activeChanged, this, &LinuxSystemEvents::noteLock);
    connect(&m_displayTimer, &QTimer::timeout, this, [this] { noteDisplays(m_displayPower.state()); });

    const DisplayPower::State displays = m_displayPower.state();
    if (m_displayPower.tellsChanges()) {
        connect(&m_displayPower, &DisplayPower::changed, this,
                [this] { noteDisplays(m_displayPower.state()); });
    } else if (displays != DisplayPower::State::unknown) {
        m_displayTimer.start(displayInterval);
    }
    // Nobody can listen yet, so what holds already is only remembered.
    noteSleep();
    noteLock();
    noteDisplays(displays);
}

bool LinuxSystemEvents::isHeldNow() {
    const QScopedValueRollback asking(m_isAsking, true);
    m_loginManager.ask();
    m_screenSavers.ask();
    noteDisplays(m_displayPower.state());
    return isHeld();
}

Ability LinuxSystemEvents::lock() const {
    if (m_screenSavers.isAnyThere()) {
        return {.kind = Ability::Kind::yes};
    }
    if (m_loginManager.knowsSession()) {
        return {.kind = Ability::Kind::partly,
                .note = QStringLiteral("画面をロックするプログラムがシステムに知らせたときだけわかります。"
                                       "知らせないときは、操作のない時間として切り取ります。")};
    }
    return {.note = QStringLiteral("ログインマネージャー（systemd-logind など）が見つかりません。"
                                   "ロック中は、操作のない時間として切り取ります。")};
}

void LinuxSystemEvents::noteSleep() {
    note(HoldReason::asleep, m_loginManager.isAsleep());
}

void LinuxSystemEvents::noteLock() {
    note(HoldReason::locked, m_loginManager.isLocked() || m_screenSavers.isActive());
}

void LinuxSystemEvents::noteDisplays(DisplayPower::State state) {
    note(HoldReason::displaysAsleep, state == DisplayPower::State::asleep);
}

void LinuxSystemEvents::note(HoldReason reason, bool holds) {
    const SystemSignal signal = holds ? m_hold.begin(reason) : m_hold.end(reason);
    if (signal && !m_isAsking) {
        Q_EMIT(this->*signal)();
    }
}

} // namespace kestu
