// SPDX-License-Identifier: GPL-3.0-or-later
//
// Above every screen while the titles of windows cannot be read.
#pragma once

#include <QFrame>

namespace kestu {

class AppModel;

class PermissionBanner final : public QFrame {
public:
    explicit PermissionBanner(AppModel& model);

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// "許可する" and "システム設定を開く", side by side.
[[nodiscard]] QWidget* makePermissionButtons(AppModel& model, int spacing);

} // namespace kestu
