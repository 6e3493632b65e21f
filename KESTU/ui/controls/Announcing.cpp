// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/Announcing.h"

#include "ui/controls/Roles.h"

#include <QWidget>

namespace kestu {
namespace {

/// A notification that takes no room: readers read one when it says that it is shown.
QWidget* announcementOf(QWidget* window) {
    const QString name = QStringLiteral("announcement");
    if (auto* const made = window->findChild<QWidget*>(name, Qt::FindDirectChildrenOnly)) {
        return made;
    }
    auto* const made = new QWidget(window);
    made->setObjectName(name);
    reportRole(made, QAccessible::Notification);
    made->setAttribute(Qt::WA_TransparentForMouseEvents);
    made->setGeometry(0, 0, 0, 0);
    return made;
}

} // namespace

void announce(QWidget& source, const QString& text) {
    QWidget* const window = source.window();
    if (!QAccessible::isActive() || !window->isActiveWindow()) {
        return;
    }
    QWidget* const announcement = announcementOf(window);
    announcement->hide();
    announcement->setAccessibleName(text);
    announcement->show();
}

} // namespace kestu
