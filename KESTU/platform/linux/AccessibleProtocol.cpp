// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/AccessibleProtocol.h"

#include "platform/linux/Bus.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QStringList>

namespace kestu {

namespace {

// Numbers of the protocol.
constexpr unsigned stateActive = 1;
constexpr unsigned stateShowing = 25;
constexpr unsigned roleWebDocument = 95;
constexpr qint32 matchAll = 1;
constexpr qint32 matchAny = 2;
constexpr quint32 documentOrder = 1;

/// States and roles travel as bits in words of 32.
QList<qint32> bitSet(unsigned bit, unsigned words) {
    QList<qint32> set(words, 0);
    set[bit / 32] = static_cast<qint32>(1U << (bit % 32));
    return set;
}

} // namespace

/// What Collection.GetMatches looks for: (aiia{ss}iaiiasib).
struct ShownWebDocument {};

QDBusArgument& operator<<(QDBusArgument& argument, const ShownWebDocument&) {
    argument.beginStructure();
    argument << bitSet(stateShowing, 2) << matchAll;
    argument << QMap<QString, QString>() << matchAll;
    argument << bitSet(roleWebDocument, 4) << matchAny;
    argument << QStringList() << matchAll;
    argument << false; // do not invert
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, ShownWebDocument&) {
    return argument; // never received; Qt wants both directions
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Accessible& object) {
    QDBusObjectPath path;
    argument.beginStructure();
    argument >> object.service >> path;
    argument.endStructure();
    object.path = path.path();
    return argument;
}

namespace accessible {

namespace {

QDBusMessage question(const BusMethod& method, const QVariantList& arguments = {}) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(method.service, method.path, method.interface, method.method);
    message.setAutoStartService(false);
    message.setArguments(arguments);
    return message;
}

QDBusMessage objectQuestion(const Accessible& object, const QString& method) {
    return question({.service = object.service,
                     .path = object.path,
                     .interface = QStringLiteral("org.a11y.atspi.Accessible"),
                     .method = method});
}

/// For the bus itself.
QDBusMessage busQuestion(const QString& method, const QString& service) {
    return question({.service = QStringLiteral("org.freedesktop.DBus"),
                     .path = QStringLiteral("/org/freedesktop/DBus"),
                     .interface = QStringLiteral("org.freedesktop.DBus"),
                     .method = method},
                    {service});
}

bool isReply(const QDBusMessage& message, QStringView signature) {
    return message.type() == QDBusMessage::ReplyMessage && message.signature() == signature;
}

} // namespace

Accessible registryRoot() {
    return {.service = QStringLiteral("org.a11y.atspi.Registry"),
            .path = QStringLiteral("/org/a11y/atspi/accessible/root")};
}

QDBusMessage listenFor(const QString& event) {
    return question({.service = registryRoot().service,
                     .path = QStringLiteral("/org/a11y/atspi/registry"),
                     .interface = QStringLiteral("org.a11y.atspi.Registry"),
                     .method = QStringLiteral("RegisterEvent")},
                    {event, QStringList(), QString()});
}

QDBusMessage registryOwnerQuestion() {
    return busQuestion(QStringLiteral("GetNameOwner"), registryRoot().service);
}

QDBusMessage processIdQuestion(const QString& service) {
    return busQuestion(QStringLiteral("GetConnectionUnixProcessID"), service);
}

QDBusMessage childrenQuestion(const Accessible& object) {
    return objectQuestion(object, QStringLiteral("GetChildren"));
}

QDBusMessage nameQuestion(const Accessible& object) {
    return question({.service = object.service,
                     .path = object.path,
                     .interface = QStringLiteral("org.freedesktop.DBus.Properties"),
                     .method = QStringLiteral("Get")},
                    {QStringLiteral("org.a11y.atspi.Accessible"), QStringLiteral("Name")});
}

QDBusMessage statesQuestion(const Accessible& object) {
    return objectQuestion(object, QStringLiteral("GetState"));
}

QDBusMessage shownPageQuestion(const Accessible& window) {
    qDBusRegisterMetaType<ShownWebDocument>();
    constexpr qint32 onlyTheFirst = 1;
    constexpr bool belowChildren = true; // without it browsers find nothing
    return question({.service = window.service,
                     .path = window.path,
                     .interface = QStringLiteral("org.a11y.atspi.Collection"),
                     .method = QStringLiteral("GetMatches")},
                    {QVariant::fromValue(ShownWebDocument()), documentOrder, onlyTheFirst, belowChildren});
}

QDBusMessage documentAttributesQuestion(const Accessible& document) {
    return question({.service = document.service,
                     .path = document.path,
                     .interface = QStringLiteral("org.a11y.atspi.Document"),
                     .method = QStringLiteral("GetAttributes")});
}

QString readOwner(const QDBusMessage& reply) {
    return isReply(reply, u"s") ? reply.arguments().first().toString() : QString();
}

std::optional<std::int64_t> readProcessId(const QDBusMessage& reply) {
    if (!isReply(reply, u"u")) {
        return std::nullopt;
    }
    return reply.arguments().first().toUInt();
}

QList<Accessible> readAccessibles(const QDBusMessage& reply) {
    if (!isReply(reply, u"a(so)")) {
        return {};
    }
    return qdbus_cast<QList<Accessible>>(reply.arguments().first());
}

QString readName(const QDBusMessage& reply) {
    if (!isReply(reply, u"v")) {
        return {};
    }
    return reply.arguments().first().value<QDBusVariant>().variant().toString();
}

bool readIsActive(const QDBusMessage& reply) {
    if (!isReply(reply, u"au")) {
        return false;
    }
    const auto words = qdbus_cast<QList<quint32>>(reply.arguments().first());
    return !words.isEmpty() && (words.first() >> stateActive & 1U) == 1U;
}

QMap<QString, QString> readAttributes(const QDBusMessage& reply) {
    if (!isReply(reply, u"a{ss}")) {
        return {};
    }
    return qdbus_cast<QMap<QString, QString>>(reply.arguments().first());
}

} // namespace accessible

} // namespace kestu

Q_DECLARE_METATYPE(kestu::ShownWebDocument)
