// SPDX-License-Identifier: GPL-3.0-or-later
//
// The Linux desktop behind the seams: puts the back-ends of this folder together. Created once by main.
#pragma once

#include "platform/Platform.h"

#include <memory>

namespace kestu {

/// The platform of this session. Always one that works: in a session whose windows cannot be seen nothing is
/// ever in front, and the workspace says why.
[[nodiscard]] std::unique_ptr<Platform> startLinuxPlatform();

} // namespace kestu
