// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/PrivateBus.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QThread>
#include <QUuid>

#include <gtest/gtest.h>

namespace kestu::test {

PrivateBus::PrivateBus() {
    m_daemon.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_daemon.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                   QStringLiteral("--print-address")});
    if (m_daemon.waitForReadyRead(20000)) {
        m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
    }
    if (m_address.isEmpty()) {
        ADD_FAILURE() << "no message bus: " << m_daemon.errorString().toStdString();
    }
}

PrivateBus::~PrivateBus() {
    for (const QString& name : std::as_const(m_connectionNames)) {
        QDBusConnection::disconnectFromBus(name);
    }
    for (const auto& mock : m_mocks) {
        mock->kill();
        mock->waitForFinished();
    }
    m_daemon.kill();
    m_daemon.waitForFinished();
}

QDBusConnection PrivateBus::connect() {
    m_connectionNames << QUuid::createUuid().toString();
    return QDBusConnection::connectToBus(m_address, m_connectionNames.last());
}

void PrivateBus::startMock(const QStringList& arguments, const QString& service) {
    auto mock = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_address);
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), m_address);
    mock->setProcessEnvironment(environment);
    mock->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    mock->setStandardOutputFile(QProcess::nullDevice());
    // The system's own Python: the mocks come from a Debian package.
    mock->start(QStringLiteral("/usr/bin/python3"),
                QStringList{QStringLiteral("-m"), QStringLiteral("dbusmock")} + arguments);
    m_mocks.push_back(std::move(mock));
    waitForService(service);
}

void PrivateBus::waitForService(const QString& service) {
    const QDBusConnection bus = connect();
    EXPECT_TRUE(waitUntil([&] { return bus.interface()->isServiceRegistered(service).value(); }))
        << service.toStdString() << " did not appear";
}

bool waitUntil(const std::function<bool()>& condition, int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > milliseconds) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(2);
    }
    return true;
}

} // namespace kestu::test
