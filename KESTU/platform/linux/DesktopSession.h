// SPDX-License-Identifier: GPL-3.0-or-later
//
// What depends on the kind of session that we run in: X11, Wayland, or none that can be seen. LinuxPlatform
// owns one.
#pragma once

#include "platform/Abilities.h"
#include "platform/UserInput.h"
#include "platform/Workspace.h"
#include "platform/linux/DisplayPower.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace kestu {

class DesktopSession : public QObject {
    Q_OBJECT

public:
    /// Whether something holds recording back (a lock, sleep). Nothing is in front then: lockers do not
    /// become the active window, so the old one would still be reported.
    using IsHeld = std::function<bool()>;

    [[nodiscard]] virtual Workspace& workspace() = 0;
    [[nodiscard]] virtual UserInput& userInput() = 0;
    [[nodiscard]] virtual DisplayPower& displayPower() = 0;

    /// Who tells of the windows, in a few words for the user; empty when nobody does.
    [[nodiscard]] virtual QString source() const = 0;

    /// What can be told of windows, of their titles, and of the user's absence. Answers within a few
    /// milliseconds.
    [[nodiscard]] virtual Ability windows() = 0;
    [[nodiscard]] virtual Ability titles() = 0;
    [[nodiscard]] virtual Ability idle() = 0;

    /// Whether the window of this application that is in front keeps the display on. Absent when the session
    /// does not tell that, or not by `deadline`.
    [[nodiscard]] virtual std::optional<bool> keepsDisplayOn(const FrontmostApplication& /*front*/,
                                                             const QDeadlineTimer& /*deadline*/) {
        return std::nullopt;
    }

    /// Does what a program may do itself so that windows can be seen. Takes 0.3 seconds at most; what comes
    /// of it shows in the abilities, at once or later.
    virtual void request() {}

Q_SIGNALS:
    void activated();    // another window came to the front, or none is there any more
    void titleChanged(); // of the window in front
    void abilitiesChanged();
};

} // namespace kestu
