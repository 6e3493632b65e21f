// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/SingleInstance.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace kestu {
namespace {

using namespace std::chrono_literals;

/// Compositors give some dozen characters, session managers little more.
constexpr qsizetype longestToken = 512;

/// The second copy says its token at once; an older one has nothing to say and waits.
constexpr auto untilSaid = 200ms;

/// Empty when that cannot be a token.
QByteArray tokenIn(QByteArray line) {
    if (line.endsWith('\n')) {
        line.chop(1);
    }
    const bool isPlain = std::ranges::all_of(line, [](char c) { return c >= ' ' && c <= '~'; });
    return isPlain && line.size() <= longestToken ? line : QByteArray();
}

/// One spelling for one file, whichever links and relative parts lead to it and whether it exists yet.
QString canonicalPath(const QString& path) {
    const QFileInfo file(path);
    const QString existing = file.canonicalFilePath();
    return existing.isEmpty() ? QFileInfo(file.absolutePath()).canonicalFilePath() + u'/' + file.fileName()
                              : existing;
}

/// Short, because a socket's path has at most 107 bytes.
QString socketPathFor(const QString& databasePath) {
    const QByteArray hash =
        QCryptographicHash::hash(databasePath.toUtf8(), QCryptographicHash::Sha256).toHex();
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) +
           QStringLiteral("/kestu-%1.socket").arg(QLatin1StringView(hash.left(16)));
}

} // namespace

SingleInstance::SingleInstance(const QString& databasePath)
    : m_socketPath(socketPathFor(canonicalPath(databasePath)))
    , m_outcome(lock(canonicalPath(databasePath) + QStringLiteral(".lock"))) {
    if (m_outcome == Outcome::first) {
        listen();
    }
}

SingleInstance::~SingleInstance() {
    m_server.close(); // first, so that no one is told to ask a socket whose owner lets go
    if (m_lockFile >= 0) {
        ::close(m_lockFile);
    }
}

SingleInstance::Outcome SingleInstance::lock(const QString& lockPath) {
    m_lockFile = ::open(QFile::encodeName(lockPath).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (m_lockFile < 0) {
        return Outcome::unavailable;
    }
    if (::flock(m_lockFile, LOCK_EX | LOCK_NB) == 0) {
        return Outcome::first;
    }
    return errno == EWOULDBLOCK ? Outcome::second : Outcome::unavailable;
}

void SingleInstance::listen() {
    QLocalServer::removeServer(m_socketPath); // ours to remove: its owner was whoever held the lock before
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = m_server.nextPendingConnection()) {
            hear(*socket);
        }
    });
    // Without a socket (no runtime folder) the lock still holds; a second copy then just ends.
    m_server.listen(m_socketPath);
}

void SingleInstance::hear(QLocalSocket& asker) {
    const auto answerNow = [this, &asker] { answer(asker); };
    connect(&asker, &QLocalSocket::disconnected, this, answerNow);
    connect(&asker, &QLocalSocket::readyRead, this, [&asker, answerNow] {
        if (asker.canReadLine() || asker.bytesAvailable() > longestToken) {
            answerNow();
        }
    });
    QTimer::singleShot(untilSaid, &asker, answerNow);
}

void SingleInstance::answer(QLocalSocket& asker) {
    if (!asker.disconnect(this)) {
        return; // answered
    }
    const QByteArray token = tokenIn(asker.readLine(longestToken + 2));
    asker.deleteLater(); // which hangs up
    Q_EMIT activationRequested(token);
}

bool SingleInstance::askFirstToFront(const QByteArray& activationToken) const {
    const QDeadlineTimer deadline(2000);
    do {
        QLocalSocket socket;
        socket.connectToServer(m_socketPath);
        if (socket.waitForConnected(static_cast<int>(deadline.remainingTime()))) {
            socket.write(tokenIn(activationToken) + '\n');
            socket.flush();
            // The first one answers by hanging up.
            if (socket.state() == QLocalSocket::UnconnectedState ||
                socket.waitForDisconnected(static_cast<int>(deadline.remainingTime()))) {
                return true;
            }
        }
        QThread::msleep(50);
    } while (!deadline.hasExpired());
    return false;
}

} // namespace kestu
