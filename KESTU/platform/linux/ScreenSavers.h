// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether a screen saver or locker of the desktop covers the windows (session bus). Nobody sees a window
// behind a saver, so one that does not lock counts as well. LinuxSystemEvents owns one.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QSet>
#include <QString>

namespace kestu {

class ScreenSavers final : public QObject {
    Q_OBJECT

public:
    /// Asks the savers that run, which takes 0.15 seconds at most; later answers are still heard.
    explicit ScreenSavers(const QDBusConnection& sessionBus);

    /// Asks them again, as at the start. One that does not answer in time counts as not active until it does.
    void ask();

    /// Whether any runs that would tell.
    [[nodiscard]] bool isAnyThere() const { return !m_there.isEmpty(); }
    [[nodiscard]] bool isActive() const { return !m_active.isEmpty(); }

Q_SIGNALS:
    void activeChanged(bool active);

private Q_SLOTS:
    void onActiveChanged(bool active, const QDBusMessage& message);

private:
    void askLater(const QString& service);
    void onOwnerChanged(const QString& service, const QString& newOwner);
    void setActive(const QString& service, bool active);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QSet<QString> m_active; // service names
    QSet<QString> m_there;  // that have answered
};

} // namespace kestu
