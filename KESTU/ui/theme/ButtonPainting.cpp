// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/theme/ButtonPainting.h"

#include <QPainter>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QWidget>

namespace kestu {
namespace {

constexpr const char* roleProperty = "kestuRole";
constexpr const char* smallProperty = "kestuSmall";
constexpr int iconGap = 5;

struct Look {
    QColor fill;
    QColor border;
    QColor text;
};

bool isFilled(const QStyleOptionButton& option, const QWidget* widget) {
    return roleOf(widget) == ButtonRole::destructiveFilled ||
           (roleOf(widget) == ButtonRole::normal && option.features & QStyleOptionButton::DefaultButton);
}

Look lookOf(const QStyleOptionButton& option, const QWidget* widget) {
    const Colors& colors = colorsOf(option.palette);
    const bool isPressed = option.state & QStyle::State_Sunken;
    const bool isHovered = option.state & QStyle::State_MouseOver;
    if (!(option.state & QStyle::State_Enabled) && !looksEnabled(widget)) {
        return isFilled(option, widget)
                   ? Look{colors.controlPressed, colors.controlPressed, colors.textDisabled}
                   : Look{colors.controlDisabled, colors.controlBorderDisabled, colors.textDisabled};
    }
    if (roleOf(widget) == ButtonRole::destructiveFilled) {
        const QColor fill = isPressed ? colors.redFill.darker(116)
                                      : (isHovered ? colors.redFill.darker(108) : colors.redFill);
        return {fill, fill, Qt::white};
    }
    if (isFilled(option, widget)) {
        const QColor fill =
            isPressed ? colors.accentFillPressed : (isHovered ? colors.accentFillHover : colors.accentFill);
        return {fill, fill, Qt::white};
    }
    if (roleOf(widget) == ButtonRole::destructive) {
        const QColor fill = isPressed ? colors.controlPressed : (isHovered ? colors.redSoft : colors.control);
        return {fill, colors.controlBorder, colors.redText};
    }
    const QColor fill =
        isPressed ? colors.controlPressed : (isHovered ? colors.controlHover : colors.control);
    return {fill, colors.controlBorder, colors.textPrimary};
}

QFont fontFor(const QStyleOptionButton& option, const QWidget* widget) {
    const QFont font = fontOf(isSmall(widget) ? TextStyle::caption : TextStyle::callout);
    return isFilled(option, widget) ? semibold(font) : font;
}

void paintFrame(QPainter& painter, const QStyleOptionButton& option, const QWidget* widget,
                const Look& look) {
    const bool isFocused =
        option.state & QStyle::State_HasFocus && option.state & QStyle::State_KeyboardFocusChange;
    const auto rounded = [&](double inset, double penWidth, const QColor& edge, const QBrush& fill) {
        const double half = inset + penWidth / 2;
        painter.setPen(QPen(edge, penWidth));
        painter.setBrush(fill);
        painter.drawRoundedRect(QRectF(option.rect).adjusted(half, half, -half, -half),
                                metrics::radiusControl - half, metrics::radiusControl - half);
    };
    if (isFocused && !isFilled(option, widget)) {
        rounded(0, 2, colorsOf(option.palette).focus, look.fill);
        return;
    }
    rounded(0, 1, look.border, look.fill);
    if (isFocused) {
        rounded(1, 1.5, Qt::white, Qt::NoBrush);
    }
}

} // namespace

ButtonRole roleOf(const QWidget* widget) {
    return widget ? static_cast<ButtonRole>(widget->property(roleProperty).toInt()) : ButtonRole::normal;
}

bool isSmall(const QWidget* widget) {
    return widget && widget->property(smallProperty).toBool();
}

void setRole(QPushButton* button, ButtonRole role) {
    button->setProperty(roleProperty, static_cast<int>(role));
}

void setSmall(QPushButton* button) {
    button->setProperty(smallProperty, true);
}

QSize buttonSize(const QStyleOptionButton& option, const QWidget* widget) {
    const int height = isSmall(widget) ? metrics::smallControlHeight : metrics::controlHeight;
    const bool hasIcon = !option.icon.isNull();
    if (option.text.isEmpty()) {
        return {height, height};
    }
    const int padding = isSmall(widget) ? 11 : 13; // with the edge
    const int text = QFontMetrics(fontFor(option, widget)).horizontalAdvance(option.text);
    const int icon = hasIcon ? option.iconSize.width() + iconGap - 3 : 0; // an icon stands closer to the edge
    return {padding + icon + text + padding, height};
}

void paintButton(QPainter& painter, const QStyleOptionButton& option, const QWidget* widget) {
    const Look look = lookOf(option, widget);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    paintFrame(painter, option, widget, look);

    const QFont font = fontFor(option, widget);
    const QFontMetrics fontMetrics(font);
    const int textWidth = fontMetrics.horizontalAdvance(option.text);
    const bool hasIcon = !option.icon.isNull();
    const int iconWidth = hasIcon ? option.iconSize.width() + (option.text.isEmpty() ? 0 : iconGap) : 0;
    QRect inner(0, option.rect.top(), std::min(textWidth + iconWidth, option.rect.width() - 8),
                option.rect.height());
    inner.moveLeft(option.rect.left() + (option.rect.width() - inner.width()) / 2);
    if (hasIcon) {
        const QRect icon(QPoint(inner.left(), inner.center().y() - option.iconSize.height() / 2 + 1),
                         option.iconSize);
        option.icon.paint(&painter, icon, Qt::AlignCenter,
                          look.text == colorsOf(option.palette).textDisabled ? QIcon::Disabled
                                                                             : QIcon::Normal);
        inner.setLeft(inner.left() + iconWidth);
    }
    painter.setFont(font);
    painter.setPen(look.text);
    painter.drawText(inner, Qt::AlignCenter | Qt::TextShowMnemonic,
                     fontMetrics.elidedText(option.text, Qt::ElideRight, inner.width() + 1));
    painter.restore();
}

} // namespace kestu
