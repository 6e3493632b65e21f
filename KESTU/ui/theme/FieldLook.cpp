// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/theme/FieldLook.h"

#include "ui/theme/Icons.h"
#include "ui/theme/MenuLook.h"
#include "ui/theme/Strokes.h"
#include "ui/theme/Theme.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>

namespace kestu {
namespace {

constexpr int chevron = metrics::iconChip;
constexpr int pickerLeft = 11; // hairline and padding
constexpr int pickerRight = 8;
constexpr int pickerGap = 6;
constexpr int fieldMargin = 8; // and the two pixels that a line edit keeps free
constexpr int stepsWidth = 22;

bool enabledLook(const QStyleOption& option, const QWidget* widget) {
    return (option.state & QStyle::State_Enabled) || (widget && looksEnabled(widget));
}

bool under(const QStyleOption& option) {
    return (option.state & QStyle::State_MouseOver) && (option.state & QStyle::State_Enabled);
}

bool isPlain(const QWidget* widget) {
    return widget && widget->property(plainFieldProperty).toBool();
}

void drawPlainField(QPainter& painter, const QStyleOption& option, const Colors& colors) {
    if (option.state & QStyle::State_HasFocus) {
        drawPanel(painter, option.rect, metrics::radiusControl, colors.field);
    } else if (under(option)) {
        drawPanel(painter, option.rect, metrics::radiusControl, colors.rowHover);
    }
}

QColor pickerFill(const QStyleOption& option, const Colors& colors) {
    if (option.state & (QStyle::State_Sunken | QStyle::State_On)) {
        return colors.controlPressed;
    }
    return under(option) ? colors.controlHover : colors.control;
}

int trailingOf(const QWidget* widget) {
    return widget ? widget->property(trailingProperty).toInt() : 0;
}

/// As wide as its longest row. Qt lays the current row over the picker: text over text, frame outside.
QRect pickerMenu(const QStyleOptionComboBox& option, const QWidget* widget) {
    constexpr int widest = 480;
    QRect rect = option.rect.adjusted(pickerLeft - menuTextLeft, -menuMargin, 0, 0);
    if (const auto* picker = qobject_cast<const QComboBox*>(widget)) {
        const int rows = picker->view()->sizeHintForColumn(picker->modelColumn()) + 2 * menuMargin;
        rect.setWidth(std::max(rect.width(), std::min(rows, widest)));
    }
    return rect;
}

void drawStep(QPainter& painter, const QStyleOptionSpinBox& option, QStyle::SubControl part, bool enabled,
              const QWidget* widget) {
    const Colors& colors = colorsOf(option.palette);
    const QRect rect = spinBoxPart(option, part, widget);
    const bool up = part == QStyle::SC_SpinBoxUp;
    const bool possible =
        option.stepEnabled.testFlag(up ? QAbstractSpinBox::StepUpEnabled : QAbstractSpinBox::StepDownEnabled);
    if (enabled && option.activeSubControls == part && under(option)) {
        const bool pressed = option.state & QStyle::State_Sunken;
        painter.fillRect(rect, pressed ? colors.controlPressed : colors.rowHover);
    }
    QRectF place({}, QSizeF(11, 11));
    place.moveCenter(QRectF(rect).center() + QPointF(0, up ? 1 : -1));
    paintIcon(painter, place, up ? u"chevron.up" : u"chevron.down",
              enabled && possible ? colors.textSecondary : colors.textDisabled);
}

} // namespace

QRect fieldContents(const QStyleOption& option, const QWidget* widget) {
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(&option);
    if (frame && frame->lineWidth <= 0) {
        return option.rect;
    }
    const int margin = isPlain(widget) ? 3 : fieldMargin;
    return option.rect.adjusted(margin, 0, -margin, 0);
}

void drawField(QPainter& painter, const QStyleOption& option, const QWidget* widget) {
    const Colors& colors = colorsOf(option.palette);
    const bool enabled = enabledLook(option, widget);
    const int radius = metrics::radiusControl;
    if (isPlain(widget)) {
        drawPlainField(painter, option, colors);
    } else if (!enabled) {
        drawPanel(painter, option.rect, radius, colors.controlDisabled, colors.controlBorderDisabled);
    } else {
        drawPanel(painter, option.rect, radius, colors.field,
                  under(option) ? colors.textTertiary : colors.fieldBorder);
    }
    const bool isWrong = widget && widget->property(wrongProperty).toBool();
    if (enabled && (option.state & QStyle::State_HasFocus)) {
        drawRing(painter, option.rect, radius, isWrong ? colors.redText : colors.focus, 2);
    } else if (enabled && isWrong) {
        drawRing(painter, option.rect, radius, colors.redText, 1);
    }
}

void inkField(QWidget& field) {
    if (field.isEnabled()) {
        return;
    }
    QPalette palette = field.palette();
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::PlaceholderText}) {
        palette.setColor(QPalette::Disabled, role,
                         looksEnabled(&field) ? palette.color(QPalette::Active, role)
                                              : colorsOf(palette).textDisabled);
    }
    field.setPalette(palette); // nothing happens when it has it already
}

void drawPicker(QPainter& painter, const QStyleOptionComboBox& option, const QWidget* widget) {
    const Colors& colors = colorsOf(option.palette);
    const bool enabled = enabledLook(option, widget);
    const int radius = metrics::radiusControl;
    drawPanel(painter, option.rect, radius, enabled ? pickerFill(option, colors) : colors.controlDisabled,
              enabled ? colors.controlBorder : colors.controlBorderDisabled);
    if ((option.state & QStyle::State_HasFocus) && (option.state & QStyle::State_KeyboardFocusChange)) {
        drawRing(painter, option.rect, radius, colors.focus, 2);
    }
    QRectF place({}, QSizeF(chevron, chevron));
    place.moveCenter(QRectF(option.rect).center());
    place.moveRight(option.rect.x() + option.rect.width() - pickerRight);
    paintIcon(painter, place, u"chevron.up.chevron.down",
              enabled ? colors.textSecondary : colors.textDisabled);
}

void drawPickerLabel(QPainter& painter, const QStyleOptionComboBox& option, const QWidget* widget) {
    const Colors& colors = colorsOf(option.palette);
    const bool enabled = enabledLook(option, widget);
    QRectF room = pickerPart(option, QStyle::SC_ComboBoxEditField, widget);
    if (!option.currentIcon.isNull()) {
        QRectF place(room.topLeft(), QSizeF(option.iconSize));
        place.moveTop(room.center().y() - place.height() / 2);
        painter.drawPixmap(snapped(painter, place).topLeft(),
                           option.currentIcon.pixmap(option.iconSize, painter.device()->devicePixelRatio(),
                                                     enabled ? QIcon::Normal : QIcon::Disabled));
        room.setLeft(place.right() + pickerGap);
    }
    painter.setPen(enabled ? colors.textPrimary : colors.textDisabled);
    const QString text =
        option.fontMetrics.elidedText(option.currentText, Qt::ElideRight, static_cast<int>(room.width()));
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
}

QSize pickerSize(const QStyleOptionComboBox& option, QSize contents) {
    const int iconGap = option.currentIcon.isNull() ? 0 : pickerGap - 4; // four are in the contents
    return {contents.width() + iconGap + pickerLeft + pickerGap + chevron + pickerRight,
            std::max<int>(metrics::controlHeight, option.fontMetrics.height() + 2)};
}

QRect pickerPart(const QStyleOptionComboBox& option, QStyle::SubControl part, const QWidget* widget) {
    const int right = pickerGap + chevron + pickerRight;
    switch (part) {
    case QStyle::SC_ComboBoxEditField:
        return option.rect.adjusted(pickerLeft, 0, -right, 0);
    case QStyle::SC_ComboBoxArrow:
        return option.rect.adjusted(option.rect.width() - right, 0, 0, 0);
    case QStyle::SC_ComboBoxListBoxPopup:
        return pickerMenu(option, widget);
    default:
        return option.rect;
    }
}

void drawSpinBox(QPainter& painter, const QStyleOptionSpinBox& option, const QWidget* widget) {
    const Colors& colors = colorsOf(option.palette);
    const bool enabled = enabledLook(option, widget);
    drawField(painter, option, widget);
    const QRect steps = spinBoxPart(option, QStyle::SC_SpinBoxUp, widget)
                            .united(spinBoxPart(option, QStyle::SC_SpinBoxDown, widget));
    QRectF line(QPointF(steps.left(), steps.top()), QSizeF(1, steps.height()));
    line.setWidth(crispWidth(painter, 1));
    if (option.buttonSymbols != QAbstractSpinBox::NoButtons) {
        painter.fillRect(snapped(painter, line), colors.divider);
        drawStep(painter, option, QStyle::SC_SpinBoxUp, enabled, widget);
        drawStep(painter, option, QStyle::SC_SpinBoxDown, enabled, widget);
    }
    if (trailingOf(widget) > 0) {
        line.moveLeft(steps.x() + steps.width());
        painter.fillRect(snapped(painter, line), colors.divider);
    }
}

QSize spinBoxSize(QSize contents, const QWidget* widget) {
    return {contents.width() + fieldMargin + stepsWidth + trailingOf(widget) + 2,
            std::max<int>(metrics::controlHeight, contents.height())};
}

QRect spinBoxPart(const QStyleOptionSpinBox& option, QStyle::SubControl part, const QWidget* widget) {
    const QRect inside = option.rect.adjusted(2, 2, -2, -2); // clear of the focus ring
    const int right = inside.x() + inside.width() - trailingOf(widget);
    const bool stepped = option.buttonSymbols != QAbstractSpinBox::NoButtons;
    const int half = inside.height() / 2;
    switch (part) {
    case QStyle::SC_SpinBoxUp:
        return {right - stepsWidth, inside.y(), stepsWidth, half};
    case QStyle::SC_SpinBoxDown:
        return {right - stepsWidth, inside.y() + half, stepsWidth, inside.height() - half};
    case QStyle::SC_SpinBoxEditField: {
        const int left = option.rect.x() + fieldMargin;
        return {left, inside.y(), right - (stepped ? stepsWidth : 0) - left, inside.height()};
    }
    default:
        return option.rect;
    }
}

} // namespace kestu
