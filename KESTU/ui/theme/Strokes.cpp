// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/theme/Strokes.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace kestu {
namespace {

void drawRound(QPainter& painter, const QRectF& rect, qreal radius, const QBrush& brush, const QPen& pen) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(brush);
    painter.setPen(pen);
    painter.drawRoundedRect(rect, radius, radius);
    painter.restore();
}

void drawEdged(QPainter& painter, const QRectF& rect, qreal radius, const QBrush& fill, const QColor& edge,
               qreal width) {
    const qreal pen = crispWidth(painter, width);
    const qreal half = pen / 2;
    drawRound(painter, snapped(painter, rect).adjusted(half, half, -half, -half),
              std::max(0.0, radius - half), fill, QPen(edge, pen));
}

} // namespace

QRectF snapped(const QPainter& painter, const QRectF& rect) {
    const QTransform toDevice = painter.deviceTransform();
    const QRectF device = toDevice.mapRect(rect);
    const QPointF from(std::round(device.left()), std::round(device.top()));
    const QPointF to(std::round(device.right()), std::round(device.bottom()));
    return toDevice.inverted().mapRect(QRectF(from, to));
}

qreal crispWidth(const QPainter& painter, qreal width) {
    const qreal scale = painter.deviceTransform().m11();
    return scale <= 0 ? width : std::max(1.0, std::floor(width * scale)) / scale;
}

void drawRing(QPainter& painter, const QRectF& rect, qreal radius, const QColor& color, qreal width) {
    drawEdged(painter, rect, radius, Qt::NoBrush, color, width);
}

void drawPanel(QPainter& painter, const QRectF& rect, qreal radius, const QColor& fill, const QColor& edge) {
    if (edge.isValid()) {
        drawEdged(painter, rect, radius, fill, edge, 1);
    } else {
        drawRound(painter, snapped(painter, rect), radius, fill, Qt::NoPen);
    }
}

} // namespace kestu
