// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/StatusNotifierTray.h"

#include "platform/linux/Bus.h"

#include <chrono>

namespace kestu {

bool isStatusNotifierTrayThere(const QDBusConnection& sessionBus) {
    const QString watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
    return busProperty(sessionBus, watcher, QStringLiteral("/StatusNotifierWatcher"), watcher,
                       QStringLiteral("IsStatusNotifierHostRegistered"),
                       QDeadlineTimer(std::chrono::milliseconds(300)))
        .value_or(false)
        .toBool();
}

} // namespace kestu
