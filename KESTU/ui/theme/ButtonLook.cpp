// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/theme/ButtonLook.h"

#include "ui/theme/KestuStyle.h"
#include "ui/theme/Strokes.h"

#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <optional>

namespace kestu {
namespace {

/// What both kinds of button options tell.
struct Face {
    QString text;
    QIcon icon;
    QSize iconSize;
    ButtonRole role = ButtonRole::standard;
    bool small = false;
    bool framed = true;
    bool filled = false;
};

struct Paint {
    QColor fill;
    QColor edge;
    QColor text;
};

/// The fill of a button at rest, under the pointer and held down.
struct Steps {
    QColor rest;
    QColor hover;
    QColor pressed;
};

bool fills(ButtonRole role, bool isDefault) {
    return role == ButtonRole::primary || role == ButtonRole::destructiveFilled ||
           (role == ButtonRole::standard && isDefault);
}

std::optional<Face> faceOf(const QStyleOption& option, const QWidget* widget) {
    Face face;
    if (widget) {
        face.role = static_cast<ButtonRole>(widget->property(buttonRoleProperty).toInt());
        face.small = widget->property(buttonSmallProperty).toBool();
    }
    if (const auto* push = qstyleoption_cast<const QStyleOptionButton*>(&option)) {
        face.text = push->text;
        face.icon = push->icon;
        face.iconSize = push->iconSize;
        face.framed = !push->features.testFlag(QStyleOptionButton::Flat);
        face.filled =
            face.framed && fills(face.role, push->features.testFlag(QStyleOptionButton::DefaultButton));
        return face;
    }
    if (const auto* tool = qstyleoption_cast<const QStyleOptionToolButton*>(&option)) {
        face.text =
            tool->toolButtonStyle == Qt::ToolButtonIconOnly && !tool->icon.isNull() ? QString() : tool->text;
        face.icon = tool->toolButtonStyle == Qt::ToolButtonTextOnly ? QIcon() : tool->icon;
        face.iconSize = tool->iconSize;
        face.framed = false;
        return face;
    }
    return std::nullopt;
}

bool reddens(const Face& face) {
    return face.role == ButtonRole::destructive;
}

Steps stepsOf(const Face& face, const Colors& colors) {
    if (face.filled && face.role == ButtonRole::destructiveFilled) {
        return {colors.redFill, colors.redFill.darker(107), colors.redFill.darker(116)};
    }
    if (face.filled) {
        return {colors.accentFill, colors.accentFillHover, colors.accentFillPressed};
    }
    const QColor rest = face.framed ? colors.control : QColor(Qt::transparent);
    if (reddens(face)) {
        return {rest, colors.redSoft, colors.controlPressed};
    }
    return {rest, face.framed ? colors.controlHover : colors.rowHover, colors.controlPressed};
}

QColor textOf(const Face& face, const Colors& colors) {
    if (face.filled) {
        return Qt::white;
    }
    if (reddens(face)) {
        return colors.redText;
    }
    return face.framed ? colors.textPrimary : colors.accentText;
}

Paint disabledPaint(const Face& face, const Colors& colors) {
    if (!face.framed) {
        return {Qt::transparent, {}, colors.textDisabled};
    }
    return face.filled ? Paint{colors.controlPressed, colors.controlPressed, colors.textDisabled}
                       : Paint{colors.controlDisabled, colors.controlBorderDisabled, colors.textDisabled};
}

Paint paintOf(const Face& face, QStyle::State state, const Colors& colors) {
    const Steps steps = stepsOf(face, colors);
    const bool pressed = state & (QStyle::State_Sunken | QStyle::State_On);
    const bool hovered = (state & QStyle::State_MouseOver) && (state & QStyle::State_Enabled);
    const QColor fill = pressed ? steps.pressed : (hovered ? steps.hover : steps.rest);
    const QColor edge = face.filled ? fill : (face.framed ? colors.controlBorder : QColor());
    return {fill, edge, textOf(face, colors)};
}

QFont fontFor(const Face& face, const QWidget* widget) {
    const QFont font = widget ? widget->font() : fontOf(TextStyle::callout);
    return face.filled ? semibold(font) : font;
}

int gapOf(const Face& face) {
    return face.icon.isNull() || face.text.isEmpty() ? 0 : (face.small || !face.framed ? 4 : 5);
}

/// From the outer edge to the content: the padding and the hairline.
int paddingOf(const Face& face, bool beforeIcon) {
    if (!face.framed) {
        return 6;
    }
    const int padding = face.small ? 10 : 12;
    return 1 + (beforeIcon ? padding - (face.small ? 2 : 3) : padding);
}

QSize contentOf(const Face& face, const QFontMetrics& metrics) {
    const QSize text = face.text.isEmpty() ? QSize(0, 0) : metrics.size(Qt::TextShowMnemonic, face.text);
    const int icon = face.icon.isNull() ? 0 : face.iconSize.width();
    return {icon + gapOf(face) + text.width(), text.height()};
}

void drawContent(QPainter& painter, const QRect& rect, const Face& face, const Paint& paint, bool enabled) {
    const QSize content = contentOf(face, painter.fontMetrics());
    const bool led = !face.icon.isNull();
    const int left = face.text.isEmpty() ? 0 : paddingOf(face, led);
    const int right = face.text.isEmpty() ? 0 : paddingOf(face, false);
    QRectF room = QRectF(rect).adjusted(left, 0, -right, 0);
    room.setLeft(room.left() + (room.width() - content.width()) / 2);
    if (led) {
        const QIcon::Mode mode = !enabled ? QIcon::Disabled : (face.filled ? QIcon::Selected : QIcon::Normal);
        const QSizeF size = face.iconSize;
        const QRectF place(QPointF(room.left(), room.center().y() - size.height() / 2), size);
        const QPixmap pixmap = face.icon.pixmap(face.iconSize, painter.device()->devicePixelRatio(), mode);
        painter.drawPixmap(snapped(painter, place).topLeft(), pixmap);
        room.setLeft(place.right() + gapOf(face));
    }
    painter.setPen(paint.text);
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic | Qt::TextDontClip,
                     face.text);
}

void drawFocus(QPainter& painter, const QRect& rect, const Face& face, const Colors& colors) {
    if (face.filled) {
        drawRing(painter, QRectF(rect).adjusted(1, 1, -1, -1), metrics::radiusControl - 1, Qt::white, 1.5);
    } else {
        drawRing(painter, rect, metrics::radiusControl, colors.focus, 2);
    }
}

} // namespace

bool drawButton(QPainter& painter, const QStyleOption& option, const QWidget* widget) {
    const std::optional<Face> face = faceOf(option, widget);
    if (!face) {
        return false;
    }
    const Colors& colors = colorsOf(option.palette);
    const bool enabled = (option.state & QStyle::State_Enabled) || (widget && looksEnabled(widget));
    const Paint paint = enabled ? paintOf(*face, option.state, colors) : disabledPaint(*face, colors);
    painter.save();
    painter.setFont(fontFor(*face, widget));
    drawPanel(painter, option.rect, metrics::radiusControl, paint.fill, paint.edge);
    if ((option.state & QStyle::State_HasFocus) && (option.state & QStyle::State_KeyboardFocusChange)) {
        drawFocus(painter, option.rect, *face, colors);
    }
    drawContent(painter, option.rect, *face, paint, enabled);
    painter.restore();
    return true;
}

QSize buttonSize(const QStyleOption& option, const QWidget* widget) {
    const std::optional<Face> face = faceOf(option, widget);
    if (!face) {
        return {};
    }
    const int least = face->small || !face->framed ? metrics::smallControlHeight : metrics::controlHeight;
    const QSize content = contentOf(*face, QFontMetrics(fontFor(*face, widget)));
    const int height = std::max(least, content.height() + 2); // for who reads with a larger font
    if (face->text.isEmpty()) {
        return {std::max(height, face->iconSize.width()), height};
    }
    const int padding = paddingOf(*face, !face->icon.isNull()) + paddingOf(*face, false);
    return {std::max(height, content.width() + padding), height};
}

} // namespace kestu
