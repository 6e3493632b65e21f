// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the login manager (org.freedesktop.login1 on the system bus) says: whether the machine sleeps and
// whether the session is locked. Delays every sleep until asleepChanged(true) has been heard, so that what is
// open can still be closed. LinuxSystemEvents owns one. Without the service: never asleep, never locked.
#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <QDeadlineTimer>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>

#include <chrono>

namespace kestu {

class LoginManager final : public QObject {
    Q_OBJECT

public:
    /// Reads the present state, which takes 0.15 seconds at most. `patience` is how long a login manager that
    /// went away, or was not ready yet, is given before it is asked again; each time twice as long, up to
    /// five minutes, until it answers.
    explicit LoginManager(const QDBusConnection& systemBus,
                          std::chrono::milliseconds patience = std::chrono::seconds(5));

    /// Reads the present state again, in 0.15 seconds at most. What is not answered in time counts as no
    /// until it is.
    void ask();

    /// Whether there is a login manager that knows our session.
    [[nodiscard]] bool knowsSession() const { return !m_isGone && !m_session.isEmpty(); }
    [[nodiscard]] bool isAsleep() const { return m_asleep; }
    [[nodiscard]] bool isLocked() const { return m_locked; }

Q_SIGNALS:
    void asleepChanged(bool asleep);
    void lockedChanged(bool locked);

private Q_SLOTS:
    void onPrepareForSleep(bool starting);
    void onSessionPropertiesChanged(const QString& interface, const QVariantMap& changed,
                                    const QStringList& invalidated);

private:
    void onOwnerChanged(const QString& newOwner);
    enum class Silence { meansNo, saysNothing };
    void readState(Silence silence);
    void askAgain();
    void followSession(const QString& path);
    [[nodiscard]] QString ownSession(const QDeadlineTimer& deadline) const;
    void takeInhibitor();
    void setAsleep(bool asleep);
    void setLocked(bool locked);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    std::chrono::milliseconds m_patience;
    std::chrono::milliseconds m_pause; // before the next question
    QTimer m_nextQuestion;
    QString m_session;                   // object path; empty while unknown
    QDBusUnixFileDescriptor m_inhibitor; // the machine does not sleep while this is open
    bool m_isGone = false;               // nobody has the service's name any more
    bool m_asleep = false;
    bool m_locked = false;
};

} // namespace kestu
