// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/WaylandConnection.h"

#include "platform/linux/wayland/LocalSocket.h"

#include <QFileInfo>
#include <QScopedValueRollback>

#include <poll.h>

#include <wayland-client.h>

#include <cerrno>
#include <utility>

namespace kestu {
namespace {

using namespace std::chrono_literals;

// A compositor that comes back makes its socket shortly before it listens there.
constexpr auto firstPause = 20ms;

// One that ends every connection at once is not to keep us busy.
constexpr auto longestPause = 30s;
constexpr auto lasting = 10s;

// The library reads some kilobytes at a time. One that never stops telling holds nobody.
constexpr int mostReads = 256;

bool hasInput(int socket, std::chrono::milliseconds patience) {
    pollfd asked{.fd = socket, .events = POLLIN, .revents = 0};
    return ::poll(&asked, 1, static_cast<int>(patience.count())) > 0;
}

/// The notifier may be the one that calls.
void drop(std::unique_ptr<QSocketNotifier>& notifier) {
    if (notifier) {
        notifier->setEnabled(false);
        notifier.release()->deleteLater();
    }
}

} // namespace

struct WaylandConnection::Listeners {
    static void added(void* data, wl_registry*, std::uint32_t name, const char* interface,
                      std::uint32_t version) {
        Q_EMIT static_cast<WaylandConnection*>(data)->globalAdded(
            {.name = name, .interface = interface, .version = version});
    }

    static void removed(void* data, wl_registry*, std::uint32_t name) {
        Q_EMIT static_cast<WaylandConnection*>(data)->globalRemoved(name);
    }

    static void answered(void* data, wl_callback* callback, std::uint32_t) {
        static_cast<WaylandConnection*>(data)->m_greeting = nullptr;
        wl_callback_destroy(callback);
    }

    static constexpr wl_registry_listener registry{.global = added, .global_remove = removed};
    static constexpr wl_callback_listener greeting{.done = answered};
};

QString WaylandConnection::sessionSocket() {
    QString display = qEnvironmentVariable("WAYLAND_DISPLAY", QStringLiteral("wayland-0"));
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (display.startsWith(u'/')) {
        return display;
    }
    return display.isEmpty() || folder.isEmpty() ? QString() : folder + u'/' + display;
}

WaylandConnection::WaylandConnection(QString socket)
    : m_socket(std::move(socket))
    , m_pause(firstPause) {
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &WaylandConnection::tryAgain);
    connect(&m_folder, &QFileSystemWatcher::directoryChanged, this, [this] {
        if (isBroken()) {
            m_pause = firstPause;
            m_retry.start(firstPause);
        }
    });
}

WaylandConnection::~WaylandConnection() {
    close();
}

void WaylandConnection::open(std::chrono::milliseconds patience) {
    if (!connectToSocket()) {
        tryLater();
        return;
    }
    const QDeadlineTimer deadline(patience);
    awaitGreeting(deadline); // brings the globals
    awaitGreeting(deadline); // brings what they tell to those who have bound them
}

bool WaylandConnection::connectToSocket() {
    const int socket = LocalSocket(m_socket).release();
    m_display = socket < 0 ? nullptr : wl_display_connect_to_fd(socket);
    if (!m_display) {
        return false;
    }
    m_connectedAt = Moment::clock::now();
    if (!m_folder.directories().isEmpty()) {
        m_folder.removePaths(m_folder.directories());
    }
    m_readable = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
    m_writable = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Write);
    m_writable->setEnabled(false);
    connect(m_readable.get(), &QSocketNotifier::activated, this, &WaylandConnection::read);
    connect(m_writable.get(), &QSocketNotifier::activated, this, &WaylandConnection::flush);
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &Listeners::registry, this);
    flush();
    return true;
}

void WaylandConnection::greet() {
    if (!isBroken() && !m_greeting) {
        m_greeting = wl_display_sync(m_display);
        wl_callback_add_listener(m_greeting, &Listeners::greeting, this);
        flush();
    }
}

/// Reads until all is answered that was asked before.
void WaylandConnection::awaitGreeting(const QDeadlineTimer& deadline) {
    greet();
    while (m_greeting && !deadline.hasExpired()) {
        flush();
        if (hasInput(wl_display_get_fd(m_display), std::chrono::milliseconds(deadline.remainingTime()))) {
            read();
        }
    }
}

void WaylandConnection::check() {
    read();
    greet();
}

void WaylandConnection::read() {
    if (isBroken() || m_isReading) {
        return;
    }
    const QScopedValueRollback reading(m_isReading, true);
    const int socket = wl_display_get_fd(m_display);
    bool isWhole = true;
    bool hasNews = false;
    for (int reads = 0; isWhole && reads < mostReads && hasInput(socket, 0ms); ++reads) {
        m_readAt = Moment::clock::now();
        isWhole = readOnce();
        hasNews = true;
    }
    if (!isWhole) {
        Q_EMIT broken(); // the objects of a connection can be destroyed only while it is there
        if (Moment::clock::now() - m_connectedAt >= lasting) {
            m_pause = firstPause;
        }
        close();
        tryLater();
        return;
    }
    if (hasNews) {
        Q_EMIT dispatched();
        flush();
    }
}

/// False when the compositor is gone.
bool WaylandConnection::readOnce() {
    while (wl_display_prepare_read(m_display) != 0) {
        if (wl_display_dispatch_pending(m_display) < 0) {
            return false;
        }
    }
    return wl_display_read_events(m_display) == 0 && wl_display_dispatch_pending(m_display) >= 0;
}

void WaylandConnection::flush() {
    if (isBroken()) {
        return;
    }
    // Any other failure is met again by the reading, which knows what to do.
    const bool isLeft = wl_display_flush(m_display) < 0 && errno == EAGAIN;
    m_writable->setEnabled(isLeft);
}

void WaylandConnection::close() {
    drop(m_readable);
    drop(m_writable);
    if (m_greeting) {
        wl_callback_destroy(std::exchange(m_greeting, nullptr));
    }
    if (m_registry) {
        wl_registry_destroy(std::exchange(m_registry, nullptr));
    }
    if (m_display) {
        wl_display_disconnect(std::exchange(m_display, nullptr));
    }
}

void WaylandConnection::tryAgain() {
    if (isBroken() && !connectToSocket()) {
        tryLater();
    }
}

void WaylandConnection::tryLater() {
    if (m_socket.isEmpty()) {
        return;
    }
    m_retry.start(m_pause);
    m_pause = std::min(m_pause * 2, std::chrono::milliseconds(longestPause));
    m_folder.addPath(QFileInfo(m_socket).path());
}

void* WaylandConnection::bindGlobal(std::uint32_t name, const wl_interface& interface,
                                    std::uint32_t version) {
    return wl_registry_bind(m_registry, name, &interface, version);
}

} // namespace kestu
