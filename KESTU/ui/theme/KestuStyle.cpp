// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/theme/KestuStyle.h"

#include "ui/theme/ButtonPainting.h"
#include "ui/theme/Icons.h"

#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QStyleFactory>
#include <QStyleOptionButton>
#include <QStyleOptionMenuItem>
#include <QStyleOptionSlider>
#include <QToolTip>

namespace kestu {
namespace {

constexpr int menuPadding = 4;
constexpr int menuRowHeight = 28;
constexpr int menuSeparatorHeight = 9;
constexpr int menuCheckColumn = 14;
constexpr int scrollThumb = 6;
constexpr int scrollInset = 3;
constexpr int shortestThumb = 28;

void paintMenuItem(QPainter& painter, const QStyleOptionMenuItem& item) {
    const Colors& colors = colorsOf(item.palette);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        painter.fillRect(item.rect.left() + 6, item.rect.center().y(), item.rect.width() - 12, 1,
                         colors.divider);
        painter.restore();
        return;
    }
    const bool isEnabled = item.state & QStyle::State_Enabled;
    const bool isSelected = isEnabled && item.state & QStyle::State_Selected;
    if (isSelected) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(colors.accentFill);
        painter.drawRoundedRect(item.rect, 5, 5);
    }
    const QColor text =
        isSelected ? QColor(Qt::white) : (isEnabled ? colors.textPrimary : colors.textDisabled);
    QRect inner = item.rect.adjusted(8, 0, -10, 0);
    if (item.menuHasCheckableItems) {
        if (item.checked) {
            const QRect tick(inner.left(), inner.center().y() - menuCheckColumn / 2 + 1, menuCheckColumn,
                             menuCheckColumn);
            paintIcon(painter, tick, u"checkmark", text);
        }
        inner.setLeft(inner.left() + menuCheckColumn + 6);
    }
    painter.setFont(fontOf(TextStyle::callout));
    painter.setPen(text);
    const QStringList parts = item.text.split(u'\t'); // the text and its shortcut
    painter.drawText(inner, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextHideMnemonic, parts.value(0));
    painter.setPen(isSelected ? QColor(Qt::white) : colors.textTertiary);
    painter.drawText(inner, Qt::AlignRight | Qt::AlignVCenter, parts.value(1));
    painter.restore();
}

QSize menuItemSize(const QStyleOptionMenuItem& item) {
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        return {1, menuSeparatorHeight};
    }
    const QFontMetrics fontMetrics(fontOf(TextStyle::callout));
    QString text = item.text;
    int width = 8 + 10 + (item.menuHasCheckableItems ? menuCheckColumn + 6 : 0);
    width += fontMetrics.size(Qt::TextShowMnemonic, text.section(u'\t', 0, 0)).width();
    const QString shortcut = text.section(u'\t', 1);
    width += shortcut.isEmpty() ? 0 : fontMetrics.horizontalAdvance(shortcut) + 24;
    return {width, menuRowHeight};
}

/// The thumb of a scroll bar alone: no track, no arrows.
void paintScrollBar(QPainter& painter, const QStyleOptionSlider& bar, const QRect& slider) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colorsOf(bar.palette).chipEdge);
    const QRectF thumb =
        bar.orientation == Qt::Vertical
            ? QRectF(slider.right() + 1 - scrollInset - scrollThumb, slider.top() + scrollInset, scrollThumb,
                     slider.height() - 2 * scrollInset)
            : QRectF(slider.left() + scrollInset, slider.bottom() + 1 - scrollInset - scrollThumb,
                     slider.width() - 2 * scrollInset, scrollThumb);
    painter.drawRoundedRect(thumb, scrollThumb / 2.0, scrollThumb / 2.0);
    painter.restore();
}

void paintFloating(QPainter& painter, const QRect& rect, const QColor& fill, const QColor& edge) {
    painter.save();
    painter.setPen(edge);
    painter.setBrush(fill);
    painter.drawRect(rect.adjusted(0, 0, -1, -1));
    painter.restore();
}

} // namespace

KestuStyle::KestuStyle()
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void KestuStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (qobject_cast<QPushButton*>(widget)) {
        widget->setAttribute(Qt::WA_Hover);
    }
}

void KestuStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_PushButton && button) {
        paintButton(*painter, *button, widget);
    } else if (element == CE_MenuItem && item) {
        paintMenuItem(*painter, *item);
    } else {
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void KestuStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
    const Colors& colors = colorsOf(option->palette);
    switch (element) {
    case PE_PanelMenu:
    case PE_FrameMenu:
        paintFloating(*painter, option->rect, element == PE_PanelMenu ? colors.menu : QColor(Qt::transparent),
                      colors.sheetBorder);
        return;
    case PE_PanelTipLabel:
        paintFloating(*painter, option->rect, colors.tooltip, colors.tooltip);
        return;
    case PE_FrameFocusRect:
        return; // each control draws its own
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void KestuStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const {
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ScrollBar && bar) {
        if (bar->maximum > bar->minimum) {
            paintScrollBar(*painter, *bar, subControlRect(control, option, SC_ScrollBarSlider, widget));
        }
        return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

int KestuStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_MenuPanelWidth:
        return 0;
    case PM_MenuHMargin:
    case PM_MenuVMargin:
        return menuPadding;
    case PM_ScrollBarExtent:
        return scrollThumb + 2 * scrollInset;
    case PM_ScrollBarSliderMin:
        return shortestThumb;
    case PM_ButtonIconSize:
        return metrics::icon;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
        return 0;
    case PM_ToolTipLabelFrameWidth:
        return 6;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

QSize KestuStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                   const QWidget* widget) const {
    if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        type == CT_PushButton && button) {
        return buttonSize(*button, widget);
    }
    if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        type == CT_MenuItem && item) {
        return menuItemSize(*item);
    }
    return QProxyStyle::sizeFromContents(type, option, size, widget);
}

int KestuStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* data) const {
    switch (hint) {
    case SH_ToolTip_WakeUpDelay:
        return 500;
    case SH_ScrollBar_LeftClickAbsolutePosition:
        return 1;
    default:
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
}

QRect KestuStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                 const QWidget* widget) const {
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || !bar) {
        return QProxyStyle::subControlRect(control, option, part, widget);
    }
    const bool isVertical = bar->orientation == Qt::Vertical;
    const int length = isVertical ? bar->rect.height() : bar->rect.width();
    const auto range = static_cast<double>(bar->maximum) - bar->minimum;
    const int thumb = range > 0
                          ? std::clamp(static_cast<int>(length * bar->pageStep / (range + bar->pageStep)),
                                       std::min(shortestThumb, length), length)
                          : length;
    const int at = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - thumb,
                                           bar->upsideDown);
    const auto along = [&](int from, int size) {
        return isVertical ? QRect(0, from, bar->rect.width(), size)
                          : QRect(from, 0, size, bar->rect.height());
    };
    switch (part) {
    case SC_ScrollBarSlider:
        return along(at, thumb);
    case SC_ScrollBarGroove:
        return along(0, length);
    case SC_ScrollBarSubPage:
        return along(0, at);
    case SC_ScrollBarAddPage:
        return along(at + thumb, length - at - thumb);
    default:
        return {}; // no arrows
    }
}

void installStyle(QApplication& application) {
    application.setStyle(new KestuStyle);
    QApplication::setFont(fontOf(TextStyle::callout));
    QToolTip::setFont(fontOf(TextStyle::caption));
}

void applyTheme(QApplication& application, const Colors& colors) {
    application.setPalette(paletteOf(colors));
    QToolTip::setPalette(paletteOf(colors));
}

} // namespace kestu
