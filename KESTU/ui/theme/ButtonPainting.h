// SPDX-License-Identifier: GPL-3.0-or-later
//
// The push button, for the style.
#pragma once

#include "ui/theme/KestuStyle.h"

class QPainter;
class QStyleOptionButton;

namespace kestu {

[[nodiscard]] ButtonRole roleOf(const QWidget* widget);
[[nodiscard]] bool isSmall(const QWidget* widget);

/// The size of a button that holds this text and icon.
[[nodiscard]] QSize buttonSize(const QStyleOptionButton& option, const QWidget* widget);

void paintButton(QPainter& painter, const QStyleOptionButton& option, const QWidget* widget);

} // namespace kestu
