// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Linux desktop behind the seams: puts the back-ends of this folder together. Created once by main.
#pragma once

#include "platform/Platform.h"

#include <QString>

#include <memory>

namespace kestu {

struct LinuxPlatformStart {
    std::unique_ptr<Platform> platform;
    QString warning; // what cannot be seen in this session, for the user; empty when all can
};

/// The platform of this session. Always one that works: in a session whose windows cannot be seen (Wayland,
/// or no X server) nothing is ever in front, and the warning says why.
[[nodiscard]] LinuxPlatformStart startLinuxPlatform();

/// Whether there is a screen to show anything on.
[[nodiscard]] bool isDisplayReachable();

} // namespace kestu
