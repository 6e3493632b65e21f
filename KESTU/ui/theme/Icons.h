// SPDX-License-Identifier: GPL-3.0-or-later
//
// Our own icons by name, in any colour and size, sharp at every scale.
#pragma once

#include "ui/theme/Theme.h"

#include <QIcon>
#include <QPixmap>
#include <QStringView>

class QPainter;
class QRectF;

namespace kestu {

/// Follows the application's palette, also while it is shown: `ink` names the role that colours it.
[[nodiscard]] QIcon iconOf(QStringView name, QPalette::ColorRole ink = ink::primary);

/// One image of it; `size` in logical pixels. The application's own icon, "kestu", keeps its colours.
[[nodiscard]] QPixmap iconPixmap(QStringView name, const QSize& size, const QColor& color,
                                 double devicePixelRatio);

/// Paints it into `rect`, at the scale of the painter's device.
void paintIcon(QPainter& painter, const QRectF& rect, QStringView name, const QColor& color);

} // namespace kestu
