// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether the screens are light or dark. The numbers are those of the settings.
#pragma once

namespace kestu {

enum class ThemeChoice { system = 0, light = 1, dark = 2 };

} // namespace kestu
