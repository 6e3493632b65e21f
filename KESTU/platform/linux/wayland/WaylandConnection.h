// SPDX-License-Identifier: GPL-3.0-or-later
//
// Our own connection to the Wayland compositor. Not Qt's: it works with every Qt platform, and the
// compositor's end does not end us. A compositor that comes back is connected to again. Nothing here waits
// for it, but the first `open` for a short while.
#pragma once

#include "base/Moment.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QFileSystemWatcher>
#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>

struct wl_callback;
struct wl_display;
struct wl_interface;
struct wl_registry;

namespace kestu {

/// Something that the compositor offers.
struct WaylandGlobal {
    std::uint32_t name = 0;
    QByteArray interface;
    std::uint32_t version = 0;
};

class WaylandConnection final : public QObject {
    Q_OBJECT

public:
    /// Of the compositor that this session is of. Empty when there is none.
    [[nodiscard]] static QString sessionSocket();

    explicit WaylandConnection(QString socket = sessionSocket());
    ~WaylandConnection() override;

    /// Connects, and takes what the compositor tells at once; waits for that no longer than `patience`. What
    /// comes later is taken then, and so is a compositor that is not there yet. Whoever has objects of this
    /// connection listens to the signals before.
    void open(std::chrono::milliseconds patience = std::chrono::milliseconds(300));

    [[nodiscard]] bool isBroken() const { return m_display == nullptr; }

    /// Takes what has come by now, and tells it by the signals. Does not wait.
    void read();

    /// As `read`, and asks for a sign of life, which comes later. A compositor that could not send us
    /// something (a title beyond the length of a message) sends nothing more, and ends the connection only
    /// when it hears from us.
    void check();

    /// Sends what was asked. Does not wait: what the compositor does not take now is sent when it does.
    void flush();

    /// When that was read which is being told, or was told last.
    [[nodiscard]] Moment readAt() const { return m_readAt; }

    /// In the version that both know, `newest` at most.
    template<typename Object>
    [[nodiscard]] Object* bind(const WaylandGlobal& global, const wl_interface& interface,
                               std::uint32_t newest) {
        return static_cast<Object*>(bindGlobal(global.name, interface, std::min(global.version, newest)));
    }

Q_SIGNALS:
    void globalAdded(const kestu::WaylandGlobal& global);
    void globalRemoved(std::uint32_t name);

    /// All that was there to read has been told; only now it is known what is true.
    void dispatched();

    /// The compositor is gone, said once. Who has objects of this connection destroys them now.
    void broken();

private:
    struct Listeners;

    bool connectToSocket();
    void greet();
    void awaitGreeting(const QDeadlineTimer& deadline);
    [[nodiscard]] bool readOnce();
    void tryAgain();
    void tryLater();
    void close();
    [[nodiscard]] void* bindGlobal(std::uint32_t name, const wl_interface& interface, std::uint32_t version);

    QString m_socket;
    wl_display* m_display = nullptr;
    wl_registry* m_registry = nullptr;
    wl_callback* m_greeting = nullptr; // answered when all before it is
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<QSocketNotifier> m_writable; // enabled while something is left to send
    Moment m_readAt;
    Moment m_connectedAt;
    bool m_isReading = false;
    QFileSystemWatcher m_folder; // while there is no compositor
    QTimer m_retry;
    std::chrono::milliseconds m_pause;
};

} // namespace kestu
