// SPDX-License-Identifier: GPL-3.0-or-later
//
// Who owns a name on the bus, now and whenever that changes. Owned by whoever talks to that name.
#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>

namespace kestu {

class BusOwner final : public QObject {
    Q_OBJECT

public:
    /// Asks the bus itself, which answers at once; 0.1 seconds at most.
    BusOwner(const QDBusConnection& bus, const QString& service);

    /// The owner's number on the bus (":1.42"); empty when there is none.
    [[nodiscard]] const QString& number() const { return m_number; }

Q_SIGNALS:
    void changed();

private:
    QDBusServiceWatcher m_watcher;
    QString m_number;
};

/// The same, once: the number of the owner of `service`, or empty. Takes 0.1 seconds at most.
[[nodiscard]] QString busOwnerOf(const QDBusConnection& bus, const QString& service);

} // namespace kestu
