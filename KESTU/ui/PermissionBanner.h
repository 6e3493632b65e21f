// SPDX-License-Identifier: GPL-3.0-or-later
//
// Above every screen while the titles of windows cannot be read.
#pragma once

#include "ui/Banner.h"

namespace kestu {

class PermissionBanner final : public Banner {
public:
    explicit PermissionBanner(AppModel& model);
};

/// "許可する" and "システム設定を開く", side by side.
[[nodiscard]] QWidget* makePermissionButtons(AppModel& model, int spacing);

} // namespace kestu
