// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/report/BarShape.h"

#include "ui/theme/Theme.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace kestu {
namespace {

constexpr double widestGap = 1;

/// `box` with the pixels at its sides that it covers only in part.
QRectF widened(const QRectF& box) {
    const double left = std::floor(box.left());
    return {left, box.top(), std::ceil(box.right()) - left, box.height()};
}

} // namespace

void cutGap(QPainter& painter, const QRectF& piece, double base, const QColor& background) {
    const double gap = std::min(widestGap, piece.height() / 2); // a minute still shows
    const bool isLowest = std::abs(piece.bottom() - base) < 0.1;
    const double top = (isLowest ? std::floor(base) : piece.bottom()) - gap;
    painter.fillRect(widened({piece.left(), top, piece.width(), piece.bottom() - top}), background);
}

void cutUpperCorners(QPainter& painter, const QRectF& piece, const QColor& background) {
    const double radius = std::min<double>(metrics::radiusSlice, piece.width() / 2);
    QPainterPath square; // a little higher than the bar, whose uppermost pixels are smoothed
    square.addRect(widened({piece.left(), piece.top() - 1, piece.width(), radius + 1}));
    QPainterPath round;
    round.addRoundedRect(piece.left(), piece.top(), piece.width(), 4 * radius, radius, radius);
    painter.fillPath(square.subtracted(round), background);
}

} // namespace kestu
