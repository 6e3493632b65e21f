// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/settings/AppPicker.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace kestu {
namespace {

constexpr std::array openingKeys{Qt::Key_Space, Qt::Key_Up, Qt::Key_Down, Qt::Key_F4};

} // namespace

AppPicker::AppPicker(QWidget* parent)
    : Picker(parent) {
    addItem(QStringLiteral("選んでください"));
    connect(this, &QComboBox::activated, this, &AppPicker::pick);
}

void AppPicker::setApps(const QMap<QString, QString>& apps) {
    m_apps = apps;
    if (!view()->isVisible()) {
        fill();
    }
}

void AppPicker::showPopup() {
    fill();
    QComboBox::showPopup();
}

/// By name, below the item that stands for none.
void AppPicker::fill() {
    if (m_listed == m_apps) {
        return;
    }
    m_listed = m_apps;
    std::vector<std::pair<QString, QString>> byName;
    for (auto app = m_apps.begin(); app != m_apps.end(); ++app) {
        byName.emplace_back(app.value(), app.key());
    }
    std::sort(byName.begin(), byName.end());
    while (count() > 1) {
        removeItem(count() - 1);
    }
    for (const auto& [name, bundleId] : byName) {
        addItem(name, bundleId);
    }
}

void AppPicker::pick(int index) {
    const QString bundleId = itemData(index).toString();
    const QString name = itemText(index);
    setCurrentIndex(0);
    if (!bundleId.isEmpty()) {
        Q_EMIT picked(bundleId, name);
    }
}

void AppPicker::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void AppPicker::keyPressEvent(QKeyEvent* event) {
    if (std::find(openingKeys.begin(), openingKeys.end(), event->key()) != openingKeys.end()) {
        showPopup();
    } else {
        event->ignore();
    }
}

} // namespace kestu
