// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/IconButton.h"

#include "ui/theme/Icons.h"

#include <QPainter>

namespace kestu {
namespace {

struct Look {
    QColor fill;
    Edge edge;
    QColor ink;
};

Look framedLook(const ControlState& state, const Colors& colors) {
    if (!state.enabled) {
        return {.fill = colors.controlDisabled,
                .edge = {.color = colors.controlBorderDisabled, .width = 1},
                .ink = colors.textDisabled};
    }
    return {.fill = state.pressed   ? colors.controlPressed
                    : state.hovered ? colors.controlHover
                                    : colors.control,
            .edge = {.color = colors.controlBorder, .width = 1},
            .ink = colors.textPrimary};
}

Look borderlessLook(const ControlState& state, const Colors& colors) {
    const QColor none = Qt::transparent;
    if (!state.enabled) {
        return {.fill = none, .edge = {.color = {}, .width = 0}, .ink = colors.textDisabled};
    }
    return {.fill = state.pressed   ? colors.controlPressed
                    : state.hovered ? colors.rowHover
                                    : none,
            .edge = {.color = {}, .width = 0},
            .ink = colors.textSecondary};
}

} // namespace

IconButton::IconButton(const QString& icon, const QString& name, Kind kind, QWidget* parent)
    : PaintedButton(Ring::inside, parent)
    , m_icon(icon)
    , m_kind(kind) {
    setAccessibleName(name);
    setToolTip(name);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize IconButton::sizeHint() const {
    const int side = m_kind == Kind::framed ? metrics::controlHeight : metrics::smallControlHeight;
    return {side, side};
}

void IconButton::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsOf(palette());
    const ControlState now = state();
    Look look = m_kind == Kind::framed ? framedLook(now, colors) : borderlessLook(now, colors);
    if (now.focused) {
        look.edge = {.color = colors.focus, .width = 2};
    }
    QPainter painter(this);
    paintRounded(painter, rect(), metrics::radiusControl, look.fill, look.edge);
    const QPointF corner((width() - metrics::icon) / 2.0, (height() - metrics::icon) / 2.0);
    paintIcon(painter, QRectF(corner, QSizeF(metrics::icon, metrics::icon)), m_icon, look.ink);
}

} // namespace kestu
