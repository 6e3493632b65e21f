// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/LocalSocket.h"

#include <QFile>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace kestu {
namespace {

/// Whether a call that could not be done at once is worth repeating now.
bool isReady(int socket, short event, const QDeadlineTimer& deadline) {
    if (errno == EINTR) {
        return !deadline.hasExpired();
    }
    pollfd asked{.fd = socket, .events = event, .revents = 0};
    return errno == EAGAIN && ::poll(&asked, 1, static_cast<int>(deadline.remainingTime())) > 0;
}

} // namespace

LocalSocket::LocalSocket(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    if (name.isEmpty() || name.size() >= static_cast<qsizetype>(sizeof address.sun_path)) {
        return;
    }
    std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
    m_socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_socket >= 0 && ::connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        ::close(release());
    }
}

LocalSocket::~LocalSocket() {
    if (m_socket >= 0) {
        ::close(m_socket);
    }
}

int LocalSocket::release() {
    return std::exchange(m_socket, -1);
}

bool LocalSocket::send(const QByteArray& bytes, const QDeadlineTimer& deadline) {
    qsizetype sent = 0;
    while (m_socket >= 0 && sent < bytes.size()) {
        const ssize_t taken = ::send(m_socket, bytes.constData() + sent,
                                     static_cast<std::size_t>(bytes.size() - sent), MSG_NOSIGNAL);
        if (taken < 0 && !isReady(m_socket, POLLOUT, deadline)) {
            return false;
        }
        sent += std::max<ssize_t>(taken, 0);
    }
    return m_socket >= 0;
}

QByteArray LocalSocket::receive(qsizetype size, const QDeadlineTimer& deadline) {
    constexpr qsizetype chunk = 64 << 10; // a length is only a claim until its bytes are there
    QByteArray bytes;
    while (m_socket >= 0 && bytes.size() < size) {
        QByteArray part(std::min(chunk, size - bytes.size()), Qt::Uninitialized);
        const ssize_t got = ::recv(m_socket, part.data(), static_cast<std::size_t>(part.size()), 0);
        if (got == 0 || (got < 0 && !isReady(m_socket, POLLIN, deadline)) || deadline.hasExpired()) {
            break;
        }
        bytes.append(part.constData(), std::max<ssize_t>(got, 0));
    }
    return bytes;
}

} // namespace kestu
