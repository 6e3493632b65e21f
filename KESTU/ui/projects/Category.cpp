// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/projects/Category.h"

#include "app/AppModel.h"

namespace kestu {
namespace {

template<typename Record>
std::vector<Category> listed(CategoryKind kind, const std::vector<Record>& records) {
    std::vector<Category> categories;
    categories.reserve(records.size());
    for (const Record& record : records) {
        categories.push_back(
            {.kind = kind, .id = record.id, .name = record.name, .colorHex = record.colorHex});
    }
    return categories;
}

} // namespace

std::vector<Category> categoriesOf(const AppModel& model, CategoryKind kind) {
    return kind == CategoryKind::project ? listed(kind, model.projects()) : listed(kind, model.tags());
}

QStringList offeredColors() {
    QStringList colors;
    for (const QStringView hex : categoryPalette) {
        colors << hex.toString();
    }
    return colors;
}

} // namespace kestu
