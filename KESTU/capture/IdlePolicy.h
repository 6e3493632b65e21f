// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether recording goes on although nobody touches anything (a film, a call, a talk), and which
// applications are never recorded. The tracker asks only once the idle threshold is reached.
#pragma once

#include "storage/Records.h"

#include <QSet>
#include <QString>

#include <optional>

namespace kestu {

class DisplayAssertions;
class Workspace;

struct IdlePolicy {
    bool keepAliveEnabled = true;
    QSet<QString> excludedBundleIds; // never recorded

    /// True when the user counts as present: the application in front keeps the display awake, or is one
    /// for meetings or videos, or shows a page of a video or meeting service.
    [[nodiscard]] bool keepsAlive(const std::optional<Sample>& sample, bool displaySleepHeld) const;

    bool operator==(const IdlePolicy&) const = default;
};

/// Whether the application in front holds an assertion that keeps the display awake; false when that
/// cannot be known.
[[nodiscard]] bool frontmostPreventsDisplaySleep(Workspace& workspace, DisplayAssertions& assertions);

} // namespace kestu
