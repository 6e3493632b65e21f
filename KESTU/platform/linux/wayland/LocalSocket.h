// SPDX-License-Identifier: GPL-3.0-or-later
//
// A connection to a socket of this machine that never waits beyond a deadline. Qt's own blocks while the
// other side's queue is full.
#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>

namespace kestu {

class LocalSocket final {
public:
    /// Connects at once or not at all.
    explicit LocalSocket(const QString& path);
    ~LocalSocket();
    LocalSocket(const LocalSocket&) = delete;
    LocalSocket& operator=(const LocalSocket&) = delete;

    [[nodiscard]] bool isConnected() const { return m_socket >= 0; }

    /// For whom the socket stays open, who closes it; -1 when it is not connected.
    [[nodiscard]] int release();

    /// False when not all was taken by `deadline`.
    [[nodiscard]] bool send(const QByteArray& bytes, const QDeadlineTimer& deadline);

    /// Just `size` bytes; fewer when the other side ends, or has not sent them by `deadline`.
    [[nodiscard]] QByteArray receive(qsizetype size, const QDeadlineTimer& deadline);

private:
    int m_socket = -1;
};

} // namespace kestu
