// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether this system lets KESTU read the titles of other programs' windows, and how the user allows it.
// Delivered on the main thread.
#pragma once

#include "platform/Abilities.h"

#include <QObject>

namespace kestu {

class Accessibility : public QObject {
    Q_OBJECT

public:
    /// Whether window titles can be read, without asking the user for anything.
    [[nodiscard]] virtual bool isGranted() = 0;

    /// The same, and first asks the system for all that a program may ask for.
    [[nodiscard]] virtual bool request() = 0;

    /// What this session can tell, now. Answers within 0.6 seconds, where nothing hangs within some
    /// milliseconds.
    [[nodiscard]] virtual Abilities abilities() = 0;

    /// @throws PlatformError when no settings program could be started.
    virtual void openSettings() = 0;

Q_SIGNALS:
    void abilitiesChanged(); // perhaps
};

} // namespace kestu
