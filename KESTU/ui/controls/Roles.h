// SPDX-License-Identifier: GPL-3.0-or-later
//
// The role in which a widget that Qt has no idea of reports itself to assistive technology.
#pragma once

#include <QAccessible>

class QWidget;

namespace kestu {

/// To be called in the widget's constructor. A dialog is reported as a modal one.
void reportRole(QWidget* widget, QAccessible::Role role);

} // namespace kestu
