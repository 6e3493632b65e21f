// SPDX-License-Identifier: GPL-3.0-or-later
//
// One screen saver or locker on the session bus. ScreenSavers owns one for each that it knows.
#pragma once

#include "platform/linux/Bus.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>

namespace kestu {

class ScreenSaver final : public QObject {
    Q_OBJECT

public:
    /// It is asked at the first of the paths, and may tell at any of them, or at all.
    ScreenSaver(const QDBusConnection& sessionBus, QString service, QStringList paths, QString interface);

    /// One that does not answer in time counts as not active until it does.
    void ask(const QDeadlineTimer& deadline);

    /// Whether it has answered and still runs.
    [[nodiscard]] bool isThere() const { return m_isThere; }
    [[nodiscard]] bool isActive() const { return m_isActive; }

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void setActive(bool isActive);

private:
    void askLater();
    [[nodiscard]] BusMethod getActive() const;

    QDBusConnection m_bus;
    QString m_service;
    QStringList m_paths;
    QString m_interface;
    QDBusServiceWatcher m_watcher;
    bool m_isThere = false;
    bool m_isActive = false;
};

} // namespace kestu
