// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ScreenSavers.h"

#include "platform/linux/Bus.h"

#include <QDeadlineTimer>

#include <array>
#include <chrono>

namespace kestu {

using namespace std::chrono_literals;

namespace {

constexpr auto answerBound = 150ms;

constexpr std::array<QStringView, 5> saverServices{
    u"org.freedesktop.ScreenSaver", u"org.gnome.ScreenSaver", u"org.cinnamon.ScreenSaver",
    u"org.mate.ScreenSaver",        u"org.xfce.ScreenSaver",
};

/// Each of them has one object with one interface, and all three names are the same.
QString pathOf(const QString& service) {
    QString path = service;
    return path.replace(u'.', u'/').prepend(u'/');
}

BusMethod getActive(const QString& service) {
    return {.service = service,
            .path = pathOf(service),
            .interface = service,
            .method = QStringLiteral("GetActive")};
}

bool saysActive(const QVariantList& reply) {
    return !reply.isEmpty() && reply.first().toBool();
}

} // namespace

ScreenSavers::ScreenSavers(const QDBusConnection& sessionBus)
    : m_bus(sessionBus) {
    m_watcher.setConnection(m_bus);
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& service, const QString&, const QString& newOwner) {
                onOwnerChanged(service, newOwner);
            });
    for (const QStringView name : saverServices) {
        const QString service = name.toString();
        m_watcher.addWatchedService(service);
        m_bus.connect(service, pathOf(service), service, QStringLiteral("ActiveChanged"), this,
                      SLOT(onActiveChanged(bool, QDBusMessage)));
    }
    ask();
}

void ScreenSavers::ask() {
    const QDeadlineTimer deadline(answerBound);
    for (const QStringView name : saverServices) {
        const QString service = name.toString();
        const auto reply = callBus(m_bus, getActive(service), {}, deadline);
        setActive(service, reply && saysActive(*reply));
        if (reply) {
            m_there.insert(service);
        } else {
            askLater(service); // the desktop may still be starting, or another saver took all the time
        }
    }
}

void ScreenSavers::askLater(const QString& service) {
    callBusLater(m_bus, getActive(service), {}, this, [this, service](const QVariantList& reply) {
        m_there.insert(service);
        setActive(service, saysActive(reply));
    });
}

/// The windows are seen again when a locker crashes, whatever its last word was; one that takes its place
/// may cover them already.
void ScreenSavers::onOwnerChanged(const QString& service, const QString& newOwner) {
    m_there.remove(service);
    setActive(service, false);
    if (!newOwner.isEmpty()) {
        askLater(service);
    }
}

void ScreenSavers::onActiveChanged(bool active, const QDBusMessage& message) {
    setActive(message.interface(), active); // the message's own service is only the sender's number
}

void ScreenSavers::setActive(const QString& service, bool active) {
    const bool wasActive = isActive();
    if (active) {
        m_active.insert(service);
    } else {
        m_active.remove(service);
    }
    if (isActive() != wasActive) {
        Q_EMIT activeChanged(isActive());
    }
}

} // namespace kestu
