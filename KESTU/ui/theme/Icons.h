// SPDX-License-Identifier: GPL-3.0-or-later
//
// The drawn icons by their names. They hold no colour of their own: an icon takes the one of its role in the
// application's palette whenever it is painted, so that it follows a live switch. "kestu", the application's
// own icon, keeps its colours.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPalette>
#include <QPixmap>
#include <QString>

#include <optional>

class QPainter;

namespace kestu {

/// Disabled it is drawn in the disabled text colour, selected (on a filled control) in white.
[[nodiscard]] QIcon iconOf(QStringView name, QPalette::ColorRole role = QPalette::WindowText);

/// For the desktop's tray, whose colours are not ours: in `ink`, or where that is unknown as the
/// icon of this name and ".outlined", light on dark, which is seen on every ground.
[[nodiscard]] QIcon trayIconOf(QStringView name, const std::optional<QColor>& ink);

/// Sharp at the painter's device pixel ratio: it lands on whole pixels of the device.
void paintIcon(QPainter& painter, const QRectF& rect, QStringView name, const QColor& color);

/// `size` is in device-independent pixels. Null when there is no icon of that name.
[[nodiscard]] QPixmap iconPixmap(QStringView name, QSize size, const QColor& color, qreal devicePixelRatio);

} // namespace kestu
