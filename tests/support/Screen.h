// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a person sees of this process's windows and does with them: finds a control by its accessible name,
// clicks it with the mouse of the display, types.
#pragma once

#include <QAccessible>
#include <QString>

namespace kestu::test {

/// The shown control of this name; null when there is none. Without a role any will do.
[[nodiscard]] QAccessibleInterface* findControl(const QString& name,
                                                QAccessible::Role role = QAccessible::NoRole);

[[nodiscard]] inline bool isShown(const QString& name, QAccessible::Role role = QAccessible::NoRole) {
    return findControl(name, role) != nullptr;
}

/// Clicks in the middle of that control; false when there is none that answers.
[[nodiscard]] bool click(const QString& name, QAccessible::Role role = QAccessible::Button);

void clickAt(const QPoint& point);

/// Presses keys, as "Return" or "ctrl+q".
void pressKey(const QString& keys);

} // namespace kestu::test
