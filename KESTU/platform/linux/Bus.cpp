// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/Bus.h"

#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include <algorithm>
#include <utility>

namespace kestu {

namespace {

QDBusMessage callMessage(const BusMethod& method, const QVariantList& arguments) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(method.service, method.path, method.interface, method.method);
    message.setAutoStartService(false);
    message.setArguments(arguments);
    return message;
}

int millisecondsUntil(const QDeadlineTimer& deadline) {
    return static_cast<int>(std::max<qint64>(1, deadline.remainingTime()));
}

std::optional<QVariantList> argumentsOf(const QDBusMessage& reply) {
    return reply.type() == QDBusMessage::ReplyMessage ? std::optional(reply.arguments()) : std::nullopt;
}

} // namespace

std::optional<QVariantList> callBus(const QDBusConnection& bus, const BusMethod& method,
                                    const QVariantList& arguments, const QDeadlineTimer& deadline) {
    if (!bus.isConnected() || deadline.hasExpired()) {
        return std::nullopt;
    }
    return argumentsOf(bus.call(callMessage(method, arguments), QDBus::Block, millisecondsUntil(deadline)));
}

QDBusPendingCall askBus(const QDBusConnection& bus, const BusMethod& method, const QVariantList& arguments,
                        const QDeadlineTimer& deadline) {
    return bus.asyncCall(callMessage(method, arguments), millisecondsUntil(deadline));
}

std::optional<QVariantList> answerOf(QDBusPendingCall call) {
    call.waitForFinished();
    return argumentsOf(call.reply());
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

void callBusLater(const QDBusConnection& bus, const BusMethod& method, const QVariantList& arguments,
                  QObject* context, std::function<void(const QVariantList&)> answered) {
    tryBusLater(bus, method, arguments, context,
                [answered = std::move(answered)](const std::optional<QVariantList>& answer) {
                    if (answer) {
                        answered(*answer);
                    }
                });
}

void tryBusLater(const QDBusConnection& bus, const BusMethod& method, const QVariantList& arguments,
                 QObject* context, std::function<void(const std::optional<QVariantList>&)> answered) {
    if (!bus.isConnected()) {
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(callMessage(method, arguments)), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, answered = std::move(answered)] {
                         watcher->deleteLater();
                         answered(argumentsOf(watcher->reply()));
                     });
}

} // namespace kestu
