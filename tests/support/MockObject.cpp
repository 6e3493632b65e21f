// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/MockObject.h"

#include "support/PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include <gtest/gtest.h>

#include <csignal>

namespace kestu::test {

namespace {

const QString mockInterface = QStringLiteral("org.freedesktop.DBus.Mock");

} // namespace

QVariantList MockObject::call(const QString& interface, const QString& method,
                              const QVariantList& arguments) const {
    QDBusMessage message = QDBusMessage::createMethodCall(m_service, m_path, interface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = m_bus.call(message);
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    return reply.arguments();
}

void MockObject::answer(const QString& interface, const QString& method, const QString& outSignature,
                        const QString& code, const QString& inSignature) const {
    call(mockInterface, QStringLiteral("AddMethod"), {interface, method, inSignature, outSignature, code});
}

void MockObject::announce(const QString& interface, const QString& signal, bool value) const {
    call(mockInterface, QStringLiteral("EmitSignal"),
         {interface, signal, QStringLiteral("b"), QVariant(QVariantList{value})});
}

void MockObject::sendSignal(int signal) const {
    const uint process = m_bus.interface()->servicePid(m_service);
    ASSERT_GT(process, 1U) << m_service.toStdString() << " is not there";
    ASSERT_EQ(::kill(static_cast<pid_t>(process), signal), 0);
    if (signal == SIGKILL) {
        const auto isGone = [this] { return !m_bus.interface()->isServiceRegistered(m_service).value(); };
        ASSERT_TRUE(waitUntil(isGone)) << "the bus still knows it";
    }
}

} // namespace kestu::test
