// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which application is in front, and what its window is called.
#pragma once

#include "base/Time.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace kestu {

struct FrontmostApplication {
    std::optional<QString> bundleId; // stable across starts; absent when the system has none for it
    std::optional<QString> localizedName;
    std::int64_t processId = 0; // 0 when unknown
    // How long ago this window came to the front, and how long ago its title came: seconds by a clock that
    // nobody sets. Absent when unknown.
    std::optional<Seconds> inFrontFor{};
    std::optional<Seconds> titledFor{};
    bool isFullscreen = false; // covers its screen; false also where that is unknown
    bool isOwnPanel = false;   // the panel of this program's status item
};

class Workspace {
public:
    virtual ~Workspace() = default;

    /// Why no window can be seen in this session and what would help, for the user; empty while they can be
    /// seen. Answers within a few milliseconds.
    [[nodiscard]] virtual QString whyUnseen() = 0;

    /// Absent when nothing is in front, when what was there has just vanished, or when that cannot be known.
    /// Tells what is true now, however short it may last. Answers within a few milliseconds.
    [[nodiscard]] virtual std::optional<FrontmostApplication> frontmostApplication() = 0;

    /// The title of the focused window of the application in front when that is the process with this id;
    /// empty when unknown, and on any failure. Answers within 0.3 seconds.
    [[nodiscard]] virtual QString focusedWindowTitle(std::int64_t processId) = 0;
};

} // namespace kestu
