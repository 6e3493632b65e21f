// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QIcon>
#include <QPainter>
#include <QPalette>
namespace kestu {
inline void paintIcon(QPainter& painter, const QRectF& box, QStringView, const QColor& color) {
    painter.setPen(color);
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(box.adjusted(2, 2, -2, -2));
}
} // namespace kestu
