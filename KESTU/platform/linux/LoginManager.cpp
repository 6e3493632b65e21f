// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LoginManager.h"

#include "platform/linux/Bus.h"

#include <QDBusObjectPath>

#include <algorithm>

namespace kestu {

using namespace std::chrono_literals;

namespace {

constexpr auto answerBound = 150ms;

const QString service = QStringLiteral("org.freedesktop.login1");
const QString managerPath = QStringLiteral("/org/freedesktop/login1");
const QString managerInterface = QStringLiteral("org.freedesktop.login1.Manager");
const QString sessionInterface = QStringLiteral("org.freedesktop.login1.Session");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString lockedHint = QStringLiteral("LockedHint");

BusMethod managerMethod(const QString& method) {
    return {.service = service, .path = managerPath, .interface = managerInterface, .method = method};
}

} // namespace

LoginManager::LoginManager(const QDBusConnection& systemBus, std::chrono::milliseconds patience)
    : m_bus(systemBus)
    , m_watcher(service, systemBus, QDBusServiceWatcher::WatchForOwnerChange)
    , m_patience(patience)
    , m_pause(patience) {
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& newOwner) { onOwnerChanged(newOwner); });
    m_bus.connect(service, managerPath, managerInterface, QStringLiteral("PrepareForSleep"), this,
                  SLOT(onPrepareForSleep(bool)));
    m_nextQuestion.setSingleShot(true);
    connect(&m_nextQuestion, &QTimer::timeout, this,
            [this] { readState(m_isGone ? Silence::meansNo : Silence::saysNothing); });
    ask();
}

void LoginManager::ask() {
    readState(Silence::meansNo);
}

void LoginManager::onOwnerChanged(const QString& newOwner) {
    m_inhibitor = {}; // it was the former one's
    m_pause = m_patience;
    m_isGone = newOwner.isEmpty();
    if (m_isGone) {
        // It restarts during updates and knows the lock afterwards: only one that stays away is forgotten,
        // else a locked screen would be recorded for that moment.
        askAgain();
    } else {
        ask();
    }
}

/// A machine that is held back forever records nothing at all: where silence means no, what cannot be read
/// counts as no. One that is only slow may have told by an event meanwhile.
void LoginManager::readState(Silence silence) {
    const QDeadlineTimer deadline(answerBound);
    followSession(ownSession(deadline));
    const auto preparing = busProperty(m_bus, service, managerPath, managerInterface,
                                       QStringLiteral("PreparingForSleep"), deadline);
    const auto locked = m_session.isEmpty()
                            ? std::nullopt
                            : busProperty(m_bus, service, m_session, sessionInterface, lockedHint, deadline);
    if (locked || silence == Silence::meansNo) {
        setLocked(locked && locked->toBool());
    }
    if (preparing || silence == Silence::meansNo) {
        onPrepareForSleep(preparing && preparing->toBool());
    }
    if (preparing && locked) {
        m_nextQuestion.stop();
        m_pause = m_patience;
    } else if (m_bus.isConnected()) {
        askAgain();
    }
}

void LoginManager::askAgain() {
    constexpr std::chrono::milliseconds longestPause = 5min;
    m_nextQuestion.start(m_pause);
    m_pause = std::min(2 * m_pause, longestPause);
}

/// A program started by the user's service manager belongs to no session of its own; "auto" is then the
/// session that the user sees.
QString LoginManager::ownSession(const QDeadlineTimer& deadline) const {
    constexpr uint callersOwnProcess = 0;
    auto reply =
        callBus(m_bus, managerMethod(QStringLiteral("GetSessionByPID")), {callersOwnProcess}, deadline);
    if (!reply) {
        reply =
            callBus(m_bus, managerMethod(QStringLiteral("GetSession")), {QStringLiteral("auto")}, deadline);
    }
    return reply && !reply->isEmpty() ? reply->first().value<QDBusObjectPath>().path() : QString();
}

void LoginManager::followSession(const QString& path) {
    if (path.isEmpty() || path == m_session) {
        return;
    }
    const auto signal = QStringLiteral("PropertiesChanged");
    const auto* slot = SLOT(onSessionPropertiesChanged(QString, QVariantMap, QStringList));
    if (!m_session.isEmpty()) {
        m_bus.disconnect(service, m_session, propertiesInterface, signal, this, slot);
    }
    m_session = path;
    m_bus.connect(service, m_session, propertiesInterface, signal, this, slot);
}

void LoginManager::onSessionPropertiesChanged(const QString& interface, const QVariantMap& changed,
                                              const QStringList& /*invalidated*/) {
    if (interface == sessionInterface && changed.contains(lockedHint)) {
        setLocked(changed.value(lockedHint).toBool());
    }
}

void LoginManager::onPrepareForSleep(bool starting) {
    setAsleep(starting);
    if (starting) {
        m_inhibitor = {}; // everyone has heard it: the machine may sleep now
    } else if (!m_inhibitor.isValid()) {
        takeInhibitor();
    }
}

/// Not waited for: the login manager may first have to ask the authorisation service. A refusal costs only
/// the delay, the sleep itself is still reported.
void LoginManager::takeInhibitor() {
    callBusLater(m_bus, managerMethod(QStringLiteral("Inhibit")),
                 {QStringLiteral("sleep"), QStringLiteral("KESTU"),
                  QStringLiteral("スリープの前に記録中の作業を閉じるため"), QStringLiteral("delay")},
                 this, [this](const QVariantList& reply) {
                     if (!m_asleep && !reply.isEmpty()) {
                         m_inhibitor = reply.first().value<QDBusUnixFileDescriptor>();
                     }
                 });
}

void LoginManager::setAsleep(bool asleep) {
    if (m_asleep != asleep) {
        m_asleep = asleep;
        Q_EMIT asleepChanged(asleep);
    }
}

void LoginManager::setLocked(bool locked) {
    if (m_locked != locked) {
        m_locked = locked;
        Q_EMIT lockedChanged(locked);
    }
}

} // namespace kestu
