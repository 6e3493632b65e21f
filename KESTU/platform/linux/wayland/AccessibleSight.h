// SPDX-License-Identifier: GPL-3.0-or-later
//
// One look at all programs of the accessibility bus: whose window says that it is the active one.
#pragma once

#include "platform/linux/AccessibilityBus.h"

#include <QDeadlineTimer>
#include <QList>
#include <QString>

#include <cstdint>

namespace kestu {

struct AccessibleFront {
    Accessible object;
    std::int64_t processId = 0;
    QString name; // its title; read when it is the only one
};

struct Sight {
    QList<AccessibleFront> active; // one, if all is well
    bool isFormerBusy = false;     // the program of the window that was in front did not answer
};

/// 0 where there is no GNOME Shell. Takes 0.05 seconds at most.
[[nodiscard]] std::int64_t gnomeShellProcess(const QDBusConnection& sessionBus);

/// Asks all programs but ourselves and the desktop's own shell, which is `shell` (0: none). `former` is the
/// window that was in front. A program that hangs costs 0.1 seconds and hides no other; throws NoAnswer when
/// the bus itself does not answer by `deadline`.
[[nodiscard]] Sight sightOf(AccessibilityBus& bus, std::int64_t shell, const Accessible& former,
                            const QDeadlineTimer& deadline);

} // namespace kestu
