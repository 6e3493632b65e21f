// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether the displays are switched off.
#pragma once

#include <QObject>

namespace kestu {

class DisplayPower : public QObject {
    Q_OBJECT

public:
    enum class State { unknown, on, asleep };

    /// Unknown where the system cannot say. Answers within a few milliseconds.
    [[nodiscard]] virtual State state() = 0;

    /// Whether changes are told by `changed`. The X server has no event for them: there it is polled.
    [[nodiscard]] virtual bool tellsChanges() const { return false; }

Q_SIGNALS:
    void changed();
};

} // namespace kestu
