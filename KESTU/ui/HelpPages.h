// SPDX-License-Identifier: GPL-3.0-or-later
//
// The help pages, which are installed with the program.
#pragma once

#include <QString>

namespace kestu {

enum class HelpPage { start, support, terms };

/// The page's file in the installed folder; before the program is installed, in the one beside it.
[[nodiscard]] QString fileOf(HelpPage page);

} // namespace kestu
