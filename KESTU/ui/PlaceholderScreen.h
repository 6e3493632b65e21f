// SPDX-License-Identifier: GPL-3.0-or-later
//
// Stands in the place of a screen that is not there yet: its name, and that there is nothing to see.
#pragma once

#include "app/SidebarItem.h"

#include <QWidget>

namespace kestu {

class PlaceholderScreen final : public QWidget {
public:
    explicit PlaceholderScreen(const SidebarEntry& entry);
};

} // namespace kestu
