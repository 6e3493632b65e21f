// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/Bus.h"

#include <QDBusVariant>

#include <algorithm>

namespace kestu {

std::optional<QVariantList> callBus(const QDBusConnection& bus, const BusMethod& method,
                                    const QVariantList& arguments, const QDeadlineTimer& deadline) {
    if (!bus.isConnected() || deadline.hasExpired()) {
        return std::nullopt;
    }
    QDBusMessage message =
        QDBusMessage::createMethodCall(method.service, method.path, method.interface, method.method);
    message.setAutoStartService(false);
    message.setArguments(arguments);
    const auto milliseconds = static_cast<int>(std::max<qint64>(1, deadline.remainingTime()));
    const QDBusMessage reply = bus.call(message, QDBus::Block, milliseconds);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        return std::nullopt;
    }
    return reply.arguments();
}

std::optional<QVariant> busProperty(const QDBusConnection& bus, const QString& service, const QString& path,
                                    const QString& interface, const QString& property,
                                    const QDeadlineTimer& deadline) {
    const auto reply = callBus(bus,
                               {.service = service,
                                .path = path,
                                .interface = QStringLiteral("org.freedesktop.DBus.Properties"),
                                .method = QStringLiteral("Get")},
                               {interface, property}, deadline);
    if (!reply || reply->isEmpty()) {
        return std::nullopt;
    }
    return reply->first().value<QDBusVariant>().variant();
}

} // namespace kestu
