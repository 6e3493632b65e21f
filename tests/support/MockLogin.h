// SPDX-License-Identifier: GPL-3.0-or-later
//
// A made-up login manager, whose session "auto" is the one that the user sees.
#pragma once

#include "support/MockObject.h"
#include "support/PrivateBus.h"

namespace kestu::test {

class MockLogin final {
public:
    explicit MockLogin(PrivateBus& bus)
        : m_bus(bus)
        , m_connection(bus.connect()) {}

    void start() {
        m_bus.startMock({QStringLiteral("--template"), QStringLiteral("logind")}, m_service);
        addSession(QStringLiteral("auto"));
    }

    void addSession(const QString& id) const {
        constexpr uint user = 1000;
        manager().call(QStringLiteral("org.freedesktop.DBus.Mock"), QStringLiteral("AddSession"),
                       {id, QStringLiteral("seat0"), user, QStringLiteral("someone"), true});
    }

    [[nodiscard]] MockObject manager() const {
        return {m_connection, m_service, QStringLiteral("/org/freedesktop/login1")};
    }

    [[nodiscard]] MockObject session(const QString& id) const {
        return {m_connection, m_service, QStringLiteral("/org/freedesktop/login1/session/") + id};
    }

    void setLocked(const QString& id, bool isLocked) const {
        session(id).call(m_service + QStringLiteral(".Session"), QStringLiteral("SetLockedHint"), {isLocked});
    }

    void announceSleep(bool isStarting) const {
        manager().announce(m_service + QStringLiteral(".Manager"), QStringLiteral("PrepareForSleep"),
                           isStarting);
    }

private:
    PrivateBus& m_bus;
    QDBusConnection m_connection;
    QString m_service = QStringLiteral("org.freedesktop.login1");
};

} // namespace kestu::test
