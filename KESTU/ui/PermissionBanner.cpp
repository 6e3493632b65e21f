// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/PermissionBanner.h"

#include "app/AppModel.h"
#include "ui/controls/TextLabel.h"
#include "ui/theme/Theme.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace kestu {

PermissionBanner::PermissionBanner(AppModel& model)
    : Banner(QStringLiteral("ウィンドウ名を記録するには「アクセシビリティ」の許可が必要です"),
             new TextLabel(QStringLiteral("許可がないあいだは、アプリ名だけを記録します。"),
                           TextStyle::caption, ink::secondary, Overflow::elideRight),
             makePermissionButtons(model, 12)) {}

QWidget* makePermissionButtons(AppModel& model, int spacing) {
    auto* buttons = new QWidget;
    auto* layout = new QHBoxLayout(buttons);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    auto* allow = new QPushButton(QStringLiteral("許可する"));
    auto* settings = new QPushButton(QStringLiteral("システム設定を開く"));
    layout->addWidget(allow);
    layout->addWidget(settings);
    QObject::connect(allow, &QPushButton::clicked, &model, &AppModel::requestAccessibility);
    QObject::connect(settings, &QPushButton::clicked, &model, &AppModel::openAccessibilitySettings);
    return buttons;
}

} // namespace kestu
