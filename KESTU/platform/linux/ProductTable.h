// SPDX-License-Identifier: GPL-3.0-or-later
//
// One id for one product. The same browser or meeting program has another id in each package format; what
// is recorded, and what capture's tables name, must not depend on how it was installed.
#pragma once

#include <QString>

#include <optional>

namespace kestu {

/// What the user reads for a part of the desktop that no entry of the menus names, by its id; absent for
/// everything else.
[[nodiscard]] std::optional<QString> shellPartName(const QString& id);

/// The product's id for a desktop entry id, a Flatpak or Snap id or a window class, compared without case;
/// absent for everything that the table does not name.
[[nodiscard]] std::optional<QString> productId(const QString& spelling);

} // namespace kestu
