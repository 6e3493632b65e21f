// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/StatusItem.h"

#include "app/AppModel.h"
#include "base/WindowRole.h"
#include "ui/Commands.h"
#include "ui/parts/Texts.h"
#include "ui/theme/Icons.h"

namespace kestu {

StatusItem::StatusItem(AppModel& model, Commands& commands)
    : m_model(model) {
    commands.fillStatusMenu(m_menu);
    m_menu.setWindowRole(statusItemRole);
    connect(&m_model, &AppModel::isTrackingChanged, this, &StatusItem::refreshIcon);
    connect(&m_model, &AppModel::whyUnseenChanged, this, &StatusItem::refreshIcon);
    connect(&m_model, &AppModel::abilitiesChanged, this, &StatusItem::refreshIcon);
}

void StatusItem::appear() {
    if (m_icon) {
        return;
    }
    m_icon.emplace();
    m_icon->setContextMenu(&m_menu);
    connect(&*m_icon, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) {
            Q_EMIT clicked();
        }
    });
    refreshIcon();
    m_icon->show();
}

QString StatusItem::iconName() const {
    const bool isRecording = m_model.isTracking() && m_model.whyUnseen().isEmpty();
    return isRecording ? QStringLiteral("clock.fill") : QStringLiteral("clock.badge.xmark");
}

void StatusItem::setInk(const std::optional<QColor>& ink) {
    m_ink = ink;
    refreshIcon();
}

void StatusItem::setToolTipShown(bool shown) {
    m_isToolTipShown = shown;
    refreshToolTip();
}

void StatusItem::refreshIcon() {
    if (m_icon) {
        m_icon->setIcon(trayIconOf(iconName(), m_ink));
        refreshToolTip();
    }
}

void StatusItem::refreshToolTip() {
    if (m_icon) {
        m_icon->setToolTip(m_isToolTipShown ? QStringLiteral("KESTU：") + trackingStateText(m_model)
                                            : QString());
    }
}

} // namespace kestu
