// SPDX-License-Identifier: GPL-3.0-or-later
//
// Push buttons and tool buttons as KestuStyle draws them.
#pragma once

#include <QSize>

class QPainter;
class QStyleOption;
class QWidget;

namespace kestu {

/// A double click on a button with it is one click.
inline constexpr const char* onceProperty = "kestuOnce";

inline constexpr const char* buttonRoleProperty = "kestuRole";
inline constexpr const char* buttonSmallProperty = "kestuSmall";

/// False when the option is none of a button.
[[nodiscard]] bool drawButton(QPainter& painter, const QStyleOption& option, const QWidget* widget);
/// Empty when the option is none of a button.
[[nodiscard]] QSize buttonSize(const QStyleOption& option, const QWidget* widget);

} // namespace kestu
