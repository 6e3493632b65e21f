// SPDX-License-Identifier: GPL-3.0-or-later
//
// One question on a D-Bus, with a deadline. QDBusInterface introspects and may block for 25 seconds, and a
// call to a service that is not running would start it: neither may happen inside a tick.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDeadlineTimer>
#include <QString>
#include <QVariantList>

#include <functional>
#include <optional>

namespace kestu {

struct BusMethod {
    QString service;
    QString path;
    QString interface;
    QString method;
};

/// The arguments of the reply; absent on any error, and when the answer is not there by `deadline`.
[[nodiscard]] std::optional<QVariantList> callBus(const QDBusConnection& bus, const BusMethod& method,
                                                  const QVariantList& arguments,
                                                  const QDeadlineTimer& deadline);

/// Sends a question and goes on: several travel together and wait together, each until `deadline`.
[[nodiscard]] QDBusPendingCall askBus(const QDBusConnection& bus, const BusMethod& method,
                                      const QVariantList& arguments, const QDeadlineTimer& deadline);

/// Waits for the arguments of the reply; absent as for callBus.
[[nodiscard]] std::optional<QVariantList> answerOf(QDBusPendingCall call);

/// A property's value through org.freedesktop.DBus.Properties; absent as for callBus.
[[nodiscard]] std::optional<QVariant> busProperty(const QDBusConnection& bus, const QString& service,
                                                  const QString& path, const QString& interface,
                                                  const QString& property, const QDeadlineTimer& deadline);

/// Asks without waiting. `answered` gets the arguments of the reply later, on this thread; it is never called
/// for an error, nor once `context` is gone.
void callBusLater(const QDBusConnection& bus, const BusMethod& method, const QVariantList& arguments,
                  QObject* context, std::function<void(const QVariantList&)> answered);

/// The same, and `answered` is called for an error too: without the arguments then.
void tryBusLater(const QDBusConnection& bus, const BusMethod& method, const QVariantList& arguments,
                 QObject* context, std::function<void(const std::optional<QVariantList>&)> answered);

} // namespace kestu
