// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Screen.h"

#include "support/PrivateBus.h"
#include "support/Program.h"

#include <QApplication>
#include <QWidget>

#include <functional>

namespace kestu::test {
namespace {

using namespace Qt::StringLiterals;

using Condition = std::function<bool(QAccessibleInterface&)>;

QAccessibleInterface* findBelow(QAccessibleInterface* parent, const Condition& isWanted) {
    if (!parent || !parent->isValid() || parent->state().invisible) {
        return nullptr;
    }
    if (isWanted(*parent)) {
        return parent;
    }
    for (int i = 0; i < parent->childCount(); ++i) {
        if (QAccessibleInterface* found = findBelow(parent->child(i), isWanted)) {
            return found;
        }
    }
    return nullptr;
}

QAccessibleInterface* findShown(const Condition& isWanted) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        QAccessibleInterface* found = window->isVisible()
                                          ? findBelow(QAccessible::queryAccessibleInterface(window), isWanted)
                                          : nullptr;
        if (found) {
            return found;
        }
    }
    return nullptr;
}

bool isNamed(const QAccessibleInterface& control, const QString& name, QAccessible::Role role) {
    return control.text(QAccessible::Name) == name && (role == QAccessible::NoRole || control.role() == role);
}

} // namespace

QAccessibleInterface* findControl(const QString& name, QAccessible::Role role) {
    return findShown([&](const QAccessibleInterface& control) { return isNamed(control, name, role); });
}

bool click(const QString& name, QAccessible::Role role) {
    QAccessibleInterface* control = nullptr;
    const auto answers = [&](const QAccessibleInterface& candidate) {
        return isNamed(candidate, name, role) && !candidate.state().disabled && !candidate.rect().isEmpty();
    };
    waitUntil(
        [&] {
            control = findShown(answers);
            return control != nullptr;
        },
        3000);
    if (control) {
        clickAt(control->rect().center());
    }
    return control != nullptr;
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
