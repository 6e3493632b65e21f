// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/AccessibilityBus.h"

#include <QDBusVariant>
#include <QUuid>

#include <chrono>

namespace kestu {

namespace {

using namespace std::chrono_literals;

constexpr auto switchPatience = 300ms;

QDBusMessage launcherMessage(const QString& interface, const QString& method, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"),
                                                          QStringLiteral("/org/a11y/bus"), interface, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return message;
}

QDBusMessage addressQuestion() {
    QDBusMessage message = launcherMessage(QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress"), {});
    // Desktops start the accessibility bus on demand, and this is the demand.
    message.setAutoStartService(true);
    return message;
}

QDBusMessage switchMessage(const QString& method, const QVariantList& value = {}) {
    return launcherMessage(QStringLiteral("org.freedesktop.DBus.Properties"), method,
                           QVariantList{QStringLiteral("org.a11y.Status"), QStringLiteral("IsEnabled")} +
                               value);
}

} // namespace

AccessibilityBus::AccessibilityBus(const QDBusConnection& session)
    : m_session(session) {}

AccessibilityBus::~AccessibilityBus() {
    close();
}

bool AccessibilityBus::isEnabled() {
    try {
        const QDBusMessage reply =
            m_session.ask(switchMessage(QStringLiteral("Get")), QDeadlineTimer(switchPatience));
        return reply.type() == QDBusMessage::ReplyMessage && reply.signature() == u"v" &&
               reply.arguments().first().value<QDBusVariant>().variant().toBool();
    } catch (const NoAnswer&) {
        return false;
    }
}

bool AccessibilityBus::enable() {
    const QVariant on = QVariant::fromValue(QDBusVariant(true));
    try {
        return m_session.ask(switchMessage(QStringLiteral("Set"), {on}), QDeadlineTimer(switchPatience))
                   .type() == QDBusMessage::ReplyMessage;
    } catch (const NoAnswer&) {
        return false;
    }
}

std::optional<Accessible> AccessibilityBus::program(std::int64_t processId, const QDeadlineTimer& deadline) {
    // The bus itself knows whose a connection is, so a program that hangs costs the others nothing here.
    const QList<Accessible> roots = programs(deadline);
    QList<QDBusMessage> questions;
    for (const Accessible& root : roots) {
        questions << accessible::processIdQuestion(root.service);
    }
    const QList<QDBusMessage> replies = askAll(questions, deadline);
    for (qsizetype i = 0; i < roots.size(); ++i) {
        if (accessible::readProcessId(replies.at(i)) == processId) {
            return roots.at(i);
        }
    }
    return std::nullopt;
}

QList<Accessible> AccessibilityBus::programs(const QDeadlineTimer& deadline) {
    const QList<QDBusMessage> replies = askAll(
        {accessible::childrenQuestion(accessible::registryRoot()), accessible::registryOwnerQuestion()},
        deadline);
    // The registry starts with the first program and may start again; each one has to be told once.
    const QString registry = accessible::readOwner(replies.last());
    if (!registry.isEmpty() && registry != m_listeningRegistry &&
        ask(accessible::listenForActivation(), deadline).type() == QDBusMessage::ReplyMessage) {
        m_listeningRegistry = registry;
    }
    return accessible::readAccessibles(replies.first());
}

QList<QDBusMessage> AccessibilityBus::askAll(const QList<QDBusMessage>& questions,
                                             const QDeadlineTimer& deadline) {
    open(deadline);
    return m_bus->askAll(questions, deadline);
}

QDBusMessage AccessibilityBus::ask(const QDBusMessage& question, const QDeadlineTimer& deadline) {
    return askAll({question}, deadline).first();
}

void AccessibilityBus::open(const QDeadlineTimer& deadline) {
    if (m_bus && m_bus->isConnected()) {
        return;
    }
    close();
    const QDBusMessage reply = m_session.ask(addressQuestion(), deadline);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"s") {
        throw NoAnswer();
    }
    m_connectionName = QUuid::createUuid().toString();
    m_bus.emplace(QDBusConnection::connectToBus(reply.arguments().first().toString(), m_connectionName));
    if (!m_bus->isConnected()) {
        throw NoAnswer();
    }
}

void AccessibilityBus::close() {
    m_bus.reset();
    m_listeningRegistry.clear();
    if (!m_connectionName.isEmpty()) {
        QDBusConnection::disconnectFromBus(m_connectionName);
        m_connectionName.clear();
    }
}

} // namespace kestu
