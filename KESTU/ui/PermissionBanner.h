// SPDX-License-Identifier: GPL-3.0-or-later
//
// Above every screen while windows or their titles cannot be seen: why, what would help, and the way there.
#pragma once

#include "ui/Banner.h"

namespace kestu {

class AppModel;

class PermissionBanner final : public Banner {
public:
    explicit PermissionBanner(AppModel& model);

private:
    PermissionBanner(AppModel& model, QWidget* buttons);
    void refresh();

    AppModel& m_model;
    QWidget* m_buttons;
};

/// "許可する" and "システム設定を開く", side by side.
[[nodiscard]] QWidget* makePermissionButtons(AppModel& model, int spacing);

} // namespace kestu
