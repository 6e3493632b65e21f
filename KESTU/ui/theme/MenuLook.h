// SPDX-License-Identifier: GPL-3.0-or-later
//
// Menus (also those of pickers), tooltips and scroll bars as KestuStyle draws them.
#pragma once

#include <QRegion>
#include <QStyle>

class QPainter;
class QStyleOption;
class QStyleOptionMenuItem;
class QStyleOptionSlider;
class QWidget;

namespace kestu {

inline constexpr int menuMargin = 5;    // hairline and padding
inline constexpr int menuTextLeft = 33; // from the menu's edge, past the column of the check marks
inline constexpr int scrollBarExtent = 12;

void drawMenuPanel(QPainter& painter, const QStyleOption& option);
void drawMenuItem(QPainter& painter, const QStyleOptionMenuItem& option, const QWidget* widget);
void drawMenuScroller(QPainter& painter, const QStyleOption& option);
[[nodiscard]] QSize menuItemSize(const QStyleOptionMenuItem& option, QSize contents, const QWidget* widget);

void drawToolTip(QPainter& painter, const QStyleOption& option);

/// The pixels of a round rectangle, for windows that cannot be translucent.
[[nodiscard]] QRegion roundRegion(const QRect& rect, int radius);

void drawScrollBar(QPainter& painter, const QStyleOptionSlider& option);
[[nodiscard]] QRect scrollBarPart(const QStyleOptionSlider& option, QStyle::SubControl part);

} // namespace kestu
