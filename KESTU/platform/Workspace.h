// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which application is in front, and what its window is called.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace kestu {

struct FrontmostApplication {
    std::optional<QString> bundleId; // stable across starts; absent when the system has none for it
    std::optional<QString> localizedName;
    std::int64_t processId = 0; // 0 when unknown
};

class Workspace {
public:
    virtual ~Workspace() = default;

    /// Absent when nothing is in front, or when that cannot be known. Answers within a few milliseconds.
    [[nodiscard]] virtual std::optional<FrontmostApplication> frontmostApplication() = 0;

    /// The title of the focused window of the application in front when that is the process with this id;
    /// empty when unknown, and on any failure. Answers within 0.3 seconds.
    [[nodiscard]] virtual QString focusedWindowTitle(std::int64_t processId) = 0;
};

} // namespace kestu
