// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Screen.h"

#include "support/PrivateBus.h"
#include "support/Program.h"

#include <QApplication>
#include <QWidget>

namespace kestu::test {
namespace {

using namespace Qt::StringLiterals;

QAccessibleInterface* findBelow(QAccessibleInterface* parent, const QString& name, QAccessible::Role role) {
    const QAccessible::State state = parent->state();
    if (state.invisible || !parent->isValid()) {
        return nullptr;
    }
    if (parent->text(QAccessible::Name) == name && (role == QAccessible::NoRole || parent->role() == role)) {
        return parent;
    }
    for (int i = 0; i < parent->childCount(); ++i) {
        QAccessibleInterface* child = parent->child(i);
        if (QAccessibleInterface* found = child ? findBelow(child, name, role) : nullptr) {
            return found;
        }
    }
    return nullptr;
}

} // namespace

QAccessibleInterface* findControl(const QString& name, QAccessible::Role role) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible()) {
            continue;
        }
        if (auto* found = findBelow(QAccessible::queryAccessibleInterface(window), name, role)) {
            return found;
        }
    }
    return nullptr;
}

bool click(const QString& name, QAccessible::Role role) {
    QAccessibleInterface* control = nullptr;
    const bool answers = waitUntil(
        [&] {
            control = findControl(name, role);
            return control && !control->state().disabled && !control->rect().isEmpty();
        },
        5000);
    if (answers) {
        clickAt(control->rect().center());
    }
    return answers;
}

void clickAt(const QPoint& point) {
    outputOf(u"xdotool"_s, {u"mousemove"_s, QString::number(point.x()), QString::number(point.y())});
    waitUntil([] { return false; }, 60);
    outputOf(u"xdotool"_s, {u"click"_s, u"1"_s});
    waitUntil([] { return false; }, 60);
}

void pressKey(const QString& keys) {
    outputOf(u"xdotool"_s, {u"key"_s, keys});
    waitUntil([] { return false; }, 60);
}

} // namespace kestu::test
