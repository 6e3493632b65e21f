// SPDX-License-Identifier: GPL-3.0-or-later
//
// The shape of the chart's bars, cut out of plain rectangles by painting the background over them: the chart
// library has neither gaps between stacked pieces nor round corners.
#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace kestu {

/// The gap at the lower end of a piece; down to whole pixels for one that stands on `base`.
void cutGap(QPainter& painter, const QRectF& piece, double base, const QColor& background);

/// Leaves the topmost piece of a bar with round upper corners.
void cutUpperCorners(QPainter& painter, const QRectF& piece, const QColor& background);

} // namespace kestu
