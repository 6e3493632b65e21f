// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a terminal is told of how well KESTU can work here, for bug reports: nothing of what is on the screen.
#pragma once

#include "app/ReportCommand.h"
#include "platform/Abilities.h"

#include <QString>

namespace kestu {

struct SelfCheck {
    QString session; // "x11", "wayland"; empty when unknown
    QString desktop; // as it calls itself; empty when unknown
    QString qtPlatform;
    bool hasTray = false;
    QString whyUnseen; // empty while windows can be seen
    Abilities abilities;
};

/// Exit code 0 when windows can be recorded, else 1.
[[nodiscard]] CommandResult reportOf(const SelfCheck& check);

} // namespace kestu
