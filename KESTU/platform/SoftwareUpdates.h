// SPDX-License-Identifier: GPL-3.0-or-later
//
// Asking the system whether a newer KESTU can be installed. Nothing is ever downloaded or installed.
#pragma once

#include <QString>

#include <functional>

namespace kestu {

struct UpdateAnswer {
    enum class Kind {
        available,  // a newer version waits in the system's package manager
        upToDate,   // there is none
        unavailable // this system has nobody to ask, or it gave no answer
    };

    Kind kind = Kind::unavailable;
    QString version; // of the newer one; empty unless available

    bool operator==(const UpdateAnswer&) const = default;
};

class SoftwareUpdates {
public:
    virtual ~SoftwareUpdates() = default;

    /// Asks without waiting; `answered` is called once, later, on this thread, within 30 seconds, and never
    /// after this object is gone.
    virtual void check(std::function<void(const UpdateAnswer&)> answered) = 0;
};

} // namespace kestu
