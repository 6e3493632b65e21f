// SPDX-License-Identifier: GPL-3.0-or-later
//
// A message bus of the test's own, and programs on it. Everything ends with its owner.
#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

namespace kestu::test {

class PrivateBus final {
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    [[nodiscard]] const QString& address() const { return m_address; }

    /// A new connection of our own to this bus.
    [[nodiscard]] QDBusConnection connect();

    /// Starts a python3-dbusmock template on this bus and waits until `service` is there.
    void startMock(const QStringList& arguments, const QString& service);

private:
    void waitForService(const QString& service);

    QProcess m_daemon;
    QString m_address;
    std::vector<std::unique_ptr<QProcess>> m_mocks;
    QStringList m_connectionNames;
};

/// Runs the event loop until `condition` holds; false after `milliseconds`.
bool waitUntil(const std::function<bool()>& condition, int milliseconds = 20000);

} // namespace kestu::test
