// SPDX-License-Identifier: GPL-3.0-or-later
//
// Who keeps the display awake, from the lists that name their clients: the login manager's inhibitors by
// process; the session manager's, KDE's and the common power service's by what clients call themselves; and
// from the session itself where it knows its windows' inhibitors. Some services take inhibitions and do not
// tell whose, so nothing can be said from them. The Linux platform owns one.
#pragma once

#include "platform/DisplayAssertions.h"
#include "platform/linux/ApplicationResolver.h"

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QString>

#include <functional>
#include <optional>

namespace kestu {

class LinuxDisplayAssertions final : public DisplayAssertions {
public:
    /// What the session itself says of the window in front; absent when it does not.
    using OfSession = std::function<std::optional<bool>(const FrontmostApplication&, const QDeadlineTimer&)>;

    LinuxDisplayAssertions(const QDBusConnection& systemBus, const QDBusConnection& sessionBus,
                           OfSession ofSession = {}, QString procRoot = QStringLiteral("/proc"),
                           ApplicationIds::EntrySource entries = installedDesktopEntries);

    [[nodiscard]] std::optional<QStringList> heldBy(const FrontmostApplication& application) override;

private:
    QDBusConnection m_systemBus;
    QDBusConnection m_sessionBus;
    OfSession m_ofSession;
    QString m_procRoot;
    ApplicationIds::EntrySource m_entries;
};

} // namespace kestu
