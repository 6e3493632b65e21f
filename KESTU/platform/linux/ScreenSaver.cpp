// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ScreenSaver.h"

#include <utility>

namespace kestu {
namespace {

bool saysActive(const QVariantList& reply) {
    return !reply.isEmpty() && reply.first().toBool();
}

} // namespace

ScreenSaver::ScreenSaver(const QDBusConnection& sessionBus, QString service, QStringList paths,
                         QString interface)
    : m_bus(sessionBus)
    , m_service(std::move(service))
    , m_paths(std::move(paths))
    , m_interface(std::move(interface))
    , m_watcher(m_service, m_bus, QDBusServiceWatcher::WatchForOwnerChange) {
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& newOwner) {
                // The windows are seen again when a locker crashes, whatever its last word was; one that
                // takes its place may cover them already.
                m_isThere = false;
                setActive(false);
                if (!newOwner.isEmpty()) {
                    askLater();
                }
            });
    for (const QString& path : std::as_const(m_paths)) {
        m_bus.connect(m_service, path, m_interface, QStringLiteral("ActiveChanged"), this,
                      SLOT(setActive(bool)));
    }
}

void ScreenSaver::ask(const QDeadlineTimer& deadline) {
    const auto reply = callBus(m_bus, getActive(), {}, deadline);
    m_isThere = reply.has_value();
    setActive(reply && saysActive(*reply));
    if (!reply) {
        askLater(); // the desktop may still be starting, or another saver took all the time
    }
}

void ScreenSaver::askLater() {
    callBusLater(m_bus, getActive(), {}, this, [this](const QVariantList& reply) {
        m_isThere = true;
        setActive(saysActive(reply));
    });
}

BusMethod ScreenSaver::getActive() const {
    return {.service = m_service,
            .path = m_paths.constFirst(),
            .interface = m_interface,
            .method = QStringLiteral("GetActive")};
}

void ScreenSaver::setActive(bool isActive) {
    if (std::exchange(m_isActive, isActive) != isActive) {
        Q_EMIT changed();
    }
}

} // namespace kestu
