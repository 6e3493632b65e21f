// SPDX-License-Identifier: GPL-3.0-or-later
//
// A project or a tag, which the screen of categories treats alike. Plain values, taken from the model.
#pragma once

#include "storage/Records.h"

#include <vector>

namespace kestu {

class AppModel;

struct Category {
    CategoryKind kind = CategoryKind::project;
    RowId id{};
    QString name;
    QString colorHex;

    bool operator==(const Category&) const = default;
};

/// All of a kind, in the model's order.
[[nodiscard]] std::vector<Category> categoriesOf(const AppModel& model, CategoryKind kind);

/// The colours that are offered for them.
[[nodiscard]] QStringList offeredColors();

} // namespace kestu
