// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/MutterIdle.h"

#include "platform/linux/wayland/BusOwner.h"

#include <QDBusMessage>
#include <QDeadlineTimer>

#include <chrono>

namespace kestu {

using namespace std::chrono_literals;

namespace {

const QString service = QStringLiteral("org.gnome.Mutter.IdleMonitor"); // and the interface

} // namespace

std::unique_ptr<MutterIdle> MutterIdle::open(const QDBusConnection& sessionBus) {
    return busOwnerOf(sessionBus, service).isEmpty()
               ? nullptr
               : std::unique_ptr<MutterIdle>(new MutterIdle(sessionBus));
}

MutterIdle::MutterIdle(const QDBusConnection& sessionBus)
    : m_bus(sessionBus) {}

Seconds MutterIdle::secondsSinceLastInput() {
    QDBusMessage question =
        QDBusMessage::createMethodCall(service, QStringLiteral("/org/gnome/Mutter/IdleMonitor/Core"), service,
                                       QStringLiteral("GetIdletime"));
    question.setAutoStartService(false);
    try {
        const QDBusMessage answer = m_bus.ask(question, QDeadlineTimer(100ms));
        const bool isKnown =
            answer.type() == QDBusMessage::ReplyMessage && answer.signature() == u"t"; // milliseconds
        return isKnown ? Seconds{static_cast<double>(answer.arguments().constFirst().toULongLong()) / 1000}
                       : Seconds{0};
    } catch (const NoAnswer&) {
        return Seconds{0}; // unknown
    }
}

} // namespace kestu
