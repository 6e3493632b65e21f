// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/Announcing.h"

#include "ui/controls/Roles.h"

#include <QWidget>

namespace kestu {
namespace {

/// A notification that takes no room: readers read one when it says that it is shown.
class Announcement final : public QWidget {
    Q_OBJECT

public:
    explicit Announcement(QWidget* window)
        : QWidget(window) {
        reportRole(this, QAccessible::Notification);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setGeometry(0, 0, 0, 0);
    }
};

} // namespace

void announce(QWidget& source, const QString& text) {
    QWidget* const window = source.window();
    if (!QAccessible::isActive() || !window->isActiveWindow()) {
        return;
    }
    auto* announcement = window->findChild<Announcement*>(QString(), Qt::FindDirectChildrenOnly);
    if (!announcement) {
        announcement = new Announcement(window);
    }
    announcement->hide();
    announcement->setAccessibleName(text);
    announcement->show();
}

} // namespace kestu

#include "Announcing.moc"
