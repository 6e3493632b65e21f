// SPDX-License-Identifier: GPL-3.0-or-later
//
// The strings of one object of a mocked service: what it answers, what it announces, and whether its process
// runs, stands still or is gone.
#pragma once

#include <QDBusConnection>
#include <QString>
#include <QVariantList>

#include <utility>

namespace kestu::test {

class MockObject final {
public:
    MockObject(QDBusConnection bus, QString service, QString path)
        : m_bus(std::move(bus))
        , m_service(std::move(service))
        , m_path(std::move(path)) {}

    /// Calls a method of the object or of the mock's own interface; a failing call fails the test.
    QVariantList call(const QString& interface, const QString& method,
                      const QVariantList& arguments = {}) const;

    /// From now on `method` runs `code` (Python that sets `ret`).
    void answer(const QString& interface, const QString& method, const QString& outSignature,
                const QString& code, const QString& inSignature = {}) const;

    void announce(const QString& interface, const QString& signal, bool value) const;

    /// To the whole process: SIGSTOP leaves a service that has its name and never answers. After SIGKILL the
    /// name is free again.
    void sendSignal(int signal) const;

private:
    QDBusConnection m_bus;
    QString m_service;
    QString m_path;
};

} // namespace kestu::test
