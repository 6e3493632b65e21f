// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/AccessibilityBus.h"

#include <QDBusVariant>
#include <QUuid>

#include <algorithm>
#include <chrono>
#include <utility>

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

AccessibilityBus::AccessibilityBus(const QDBusConnection& session, QStringList events)
    : m_session(session)
    , m_events(std::move(events)) {}

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

bool AccessibilityBus::isOffered() {
    const QString launcher = QStringLiteral("org.a11y.Bus");
    const auto namesQuestion = [](const QString& method) {
        return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                              QStringLiteral("/org/freedesktop/DBus"),
                                              QStringLiteral("org.freedesktop.DBus"), method);
    };
    try {
        const QList<QDBusMessage> replies =
            m_session.askAll({namesQuestion(QStringLiteral("ListNames")),
                              namesQuestion(QStringLiteral("ListActivatableNames"))},
                             QDeadlineTimer(switchPatience));
        return std::any_of(replies.begin(), replies.end(), [&launcher](const QDBusMessage& reply) {
            return reply.signature() == u"as" && reply.arguments().first().toStringList().contains(launcher);
        });
    } catch (const NoAnswer&) {
        return false;
    }
}

std::optional<Accessible> AccessibilityBus::program(std::int64_t processId, const QDeadlineTimer& deadline) {
    const QList<AccessibleProgram> all = programs(deadline);
    const auto found = std::find_if(all.begin(), all.end(), [processId](const AccessibleProgram& program) {
        return program.processId == processId;
    });
    return found == all.end() ? std::nullopt : std::optional(found->root);
}

QList<AccessibleProgram> AccessibilityBus::programs(const QDeadlineTimer& deadline) {
    const QList<QDBusMessage> replies = askAll(
        {accessible::childrenQuestion(accessible::registryRoot()), accessible::registryOwnerQuestion()},
        deadline);
    // The registry starts with the first program and may start again; each one has to be told once.
    const QString registry = accessible::readOwner(replies.last());
    if (!registry.isEmpty() && registry != m_listeningRegistry && listen(deadline)) {
        m_listeningRegistry = registry;
    }
    const QList<Accessible> roots = accessible::readAccessibles(replies.first());
    // The bus itself knows whose a connection is, so a program that hangs costs the others nothing here.
    QList<QDBusMessage> questions;
    for (const Accessible& root : roots) {
        questions << accessible::processIdQuestion(root.service);
    }
    const QList<QDBusMessage> processIds = askAll(questions, deadline);
    QList<AccessibleProgram> programs;
    for (qsizetype i = 0; i < roots.size(); ++i) {
        programs << AccessibleProgram{.root = roots.at(i),
                                      .processId = accessible::readProcessId(processIds.at(i)).value_or(0)};
    }
    return programs;
}

bool AccessibilityBus::listen(const QDeadlineTimer& deadline) {
    QList<QDBusMessage> requests;
    for (const QString& event : m_events) {
        requests << accessible::listenFor(event);
    }
    const QList<QDBusMessage> replies = askAll(requests, deadline);
    return std::all_of(replies.begin(), replies.end(),
                       [](const QDBusMessage& reply) { return reply.type() == QDBusMessage::ReplyMessage; });
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

std::optional<QDBusConnection> AccessibilityBus::connection() const {
    return m_bus && m_bus->isConnected() ? std::optional(QDBusConnection(m_connectionName)) : std::nullopt;
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
