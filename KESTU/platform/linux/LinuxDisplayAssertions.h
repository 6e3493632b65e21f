// SPDX-License-Identifier: GPL-3.0-or-later
//
// Who keeps the display awake, from the two lists that name their clients: the login manager's inhibitors by
// process and the session manager's by application. The power service and the screen savers take
// inhibitions too, but do not tell whose, so nothing can be said from them. The Linux platform owns one.
#pragma once

#include "platform/DisplayAssertions.h"

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QString>

namespace kestu {

class LinuxDisplayAssertions final : public DisplayAssertions {
public:
    LinuxDisplayAssertions(const QDBusConnection& systemBus, const QDBusConnection& sessionBus,
                           QString procRoot = QStringLiteral("/proc"));

    [[nodiscard]] std::optional<QStringList> heldBy(const FrontmostApplication& application) override;

private:
    using HeldTypes = std::optional<QStringList>; // absent when the list could not be asked for

    [[nodiscard]] HeldTypes heldAtLogin(const FrontmostApplication& application,
                                        const QDeadlineTimer& deadline) const;
    [[nodiscard]] HeldTypes heldInSession(const FrontmostApplication& application,
                                          const QDeadlineTimer& deadline) const;
    [[nodiscard]] bool names(const QString& inhibitorId, const FrontmostApplication& application) const;

    QDBusConnection m_systemBus;
    QDBusConnection m_sessionBus;
    QString m_procRoot;
};

} // namespace kestu
