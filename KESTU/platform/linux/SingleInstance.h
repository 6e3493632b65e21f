// SPDX-License-Identifier: GPL-3.0-or-later
//
// Keeps a second recorder away from a database file. The lock is a flock on a file of its own beside the
// database: the kernel frees it when the process dies, so no stale lock keeps anyone out. (Opening the
// database file itself would drop SQLite's locks.) A second copy asks the first one to come to the front
// through a local socket.
#pragma once

#include <QByteArray>
#include <QLocalServer>
#include <QObject>
#include <QString>

class QLocalSocket;

namespace kestu {

class SingleInstance final : public QObject {
    Q_OBJECT

public:
    enum class Outcome {
        first,      // we hold the lock and listen
        second,     // another process holds it
        unavailable // no lock can be had here: no such folder, or a file system without locks
    };

    /// Tries to become the one recorder of the database at `databasePath`.
    explicit SingleInstance(const QString& databasePath);
    ~SingleInstance() override;

    [[nodiscard]] Outcome outcome() const { return m_outcome; }

    /// For the second copy: asks the first to come to the front, with the token by which the desktop lets it;
    /// empty for none. False when it did not answer within two seconds (it may be starting or ending just
    /// now).
    [[nodiscard]] bool askFirstToFront(const QByteArray& activationToken) const;

Q_SIGNALS:
    /// For the first copy: the user started another one. The token is empty when it had none, or none that
    /// could be one.
    void activationRequested(const QByteArray& activationToken);

private:
    [[nodiscard]] Outcome lock(const QString& lockPath);
    void listen();
    void hear(QLocalSocket& asker);
    void answer(QLocalSocket& asker);

    QString m_socketPath;
    int m_lockFile = -1;
    Outcome m_outcome;
    QLocalServer m_server;
};

} // namespace kestu
