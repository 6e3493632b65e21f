// SPDX-License-Identifier: GPL-3.0-or-later
//
// Somebody who can say which window of a Wayland session is in front: the compositor's own list, a script or
// an extension within the desktop, the accessibility bus. WaylandDesktop asks the first that can tell.
#pragma once

#include "base/Moment.h"
#include "platform/Abilities.h"
#include "platform/linux/ApplicationResolver.h"

#include <QObject>
#include <QString>

#include <optional>

namespace kestu {

struct SeenWindow {
    WindowFacts facts; // an app_id is its wmClass
    QString title{};
    Moment since{};                      // when it came to the front
    std::optional<Moment> titledSince{}; // when its title came; absent when unknown
    bool isFullscreen = false;           // as far as anybody tells
};

class WindowSource : public QObject {
    Q_OBJECT

public:
    /// In a few words, for the user and for bug reports: "KWin", "wlr-foreign-toplevel".
    [[nodiscard]] virtual QString name() const = 0;

    /// Whether it can tell now, of all windows or of some, and else what would help. Answers at once: what
    /// has to be asked of others is asked before.
    [[nodiscard]] virtual Ability ability() const = 0;

    /// Whether titles come with the windows.
    [[nodiscard]] virtual Ability titles() const { return ability(); }

    /// Absent when nothing is in front or that cannot be known. True at this moment, as far as it was told.
    [[nodiscard]] virtual std::optional<SeenWindow> front() = 0;

    /// Whether no better source can tell. Until then a source that costs something stays silent.
    virtual void setNeeded(bool /*needed*/) {}

    /// Does what a program may do itself so that it can tell; the user has asked for it. Takes 0.3 seconds at
    /// most.
    virtual void request() {}

Q_SIGNALS:
    void frontChanged();   // another window, or none
    void titleChanged();   // of the window in front
    void abilityChanged(); // also when it can tell no longer
};

} // namespace kestu
