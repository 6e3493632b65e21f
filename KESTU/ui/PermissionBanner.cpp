// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/PermissionBanner.h"

#include "app/AppModel.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace kestu {

PermissionBanner::PermissionBanner(AppModel& model)
    : PermissionBanner(model, makePermissionButtons(model, 12)) {}

PermissionBanner::PermissionBanner(AppModel& model, QWidget* buttons)
    : Banner(buttons)
    , m_model(model)
    , m_buttons(buttons) {
    for (const auto signal :
         {&AppModel::whyUnseenChanged, &AppModel::abilitiesChanged, &AppModel::accessibilityGrantedChanged}) {
        connect(&m_model, signal, this, &PermissionBanner::refresh);
    }
    refresh();
}

void PermissionBanner::refresh() {
    const QString& why = m_model.whyUnseen();
    const SystemWords& words = m_model.words();
    say(words.warning, why.isEmpty() ? words.warningText : why);
    // Where no window can be seen, a permission may not help either.
    m_buttons->setVisible(why.isEmpty() || m_model.abilities().windows.mayBeRequested);
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
