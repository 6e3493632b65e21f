// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/PermissionBanner.h"

#include "app/AppModel.h"
#include "ui/controls/Surfaces.h"
#include "ui/controls/TextLabel.h"
#include "ui/theme/Theme.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>

namespace kestu {

PermissionBanner::PermissionBanner(AppModel& model) {
    auto* title =
        new TextLabel(QStringLiteral("ウィンドウ名を記録するには「アクセシビリティ」の許可が必要です"),
                      TextStyle::callout, ink::primary, Overflow::elideRight);
    title->setFont(semibold(title->font()));
    auto* text = new TextLabel(QStringLiteral("許可がないあいだは、アプリ名だけを記録します。"),
                               TextStyle::caption, ink::secondary, Overflow::elideRight);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(title);
    texts->addWidget(text);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->setSpacing(12);
    layout->addWidget(
        new IconView(QStringLiteral("exclamationmark.triangle.fill"), metrics::iconBanner, &Colors::orange));
    layout->addLayout(texts, 1);
    layout->addWidget(makePermissionButtons(model, 12));
}

void PermissionBanner::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), colorsOf(palette()).bannerFill);
}

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
