// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/BusOwner.h"

#include "platform/linux/Bus.h"

#include <QDeadlineTimer>

#include <chrono>
#include <utility>

namespace kestu {

using namespace std::chrono_literals;

BusOwner::BusOwner(const QDBusConnection& bus, const QString& service)
    : m_watcher(service, bus, QDBusServiceWatcher::WatchForOwnerChange)
    , m_number(busOwnerOf(bus, service)) {
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& number) {
                if (std::exchange(m_number, number) != number) {
                    Q_EMIT changed();
                }
            });
}

QString busOwnerOf(const QDBusConnection& bus, const QString& service) {
    const auto owner = callBus(bus,
                               {.service = QStringLiteral("org.freedesktop.DBus"),
                                .path = QStringLiteral("/org/freedesktop/DBus"),
                                .interface = QStringLiteral("org.freedesktop.DBus"),
                                .method = QStringLiteral("GetNameOwner")},
                               {service}, QDeadlineTimer(100ms));
    return owner ? owner->value(0).toString() : QString();
}

} // namespace kestu
