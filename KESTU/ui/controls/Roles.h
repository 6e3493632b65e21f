// SPDX-License-Identifier: GPL-3.0-or-later
//
// The role in which a widget that Qt has no idea of reports itself to assistive technology.
//
// No QFrame but those that Qt itself makes: it would be reported as a frame, which is a window to a screen
// reader, and as this one has no name and is never active, all that lies in it would not be read.
#pragma once

#include <QAccessible>

class QAbstractItemView;
class QWidget;

namespace kestu {

/// To be called in the widget's constructor. A dialog is reported as a modal one.
void reportRole(QWidget* widget, QAccessible::Role role);

[[nodiscard]] bool hasReportedRole(const QWidget& widget);

/// To be called when the title of a window changed: Qt tells nobody, and readers go on with the old one.
void reportTitle(QWidget* window);

/// Has the current row said when the focus comes to the list: Qt says the list's own name and no more.
void reportCurrentRow(QAbstractItemView* list);

} // namespace kestu
