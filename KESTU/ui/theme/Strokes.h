// SPDX-License-Identifier: GPL-3.0-or-later
//
// Round rectangles that stay crisp at every scale: their edges lie on whole pixels of the device, also when a
// widget begins between two of them. Used by the style and by every control that paints itself.
#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace kestu {

/// The rectangle moved to the device's pixels. For painters that only move and scale.
[[nodiscard]] QRectF snapped(const QPainter& painter, const QRectF& rect);

/// A line width as a whole number of the device's pixels, at least one.
[[nodiscard]] qreal crispWidth(const QPainter& painter, qreal width);

/// A line of `width` along the inside of a round rectangle's edge; `radius` is that of the outer edge.
void drawRing(QPainter& painter, const QRectF& rect, qreal radius, const QColor& color, qreal width);

/// A filled round rectangle, with a hairline inside its edge unless `edge` is invalid.
void drawPanel(QPainter& painter, const QRectF& rect, qreal radius, const QColor& fill,
               const QColor& edge = {});

} // namespace kestu
