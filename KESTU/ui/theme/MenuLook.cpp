// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/theme/MenuLook.h"

#include "ui/theme/Icons.h"
#include "ui/theme/Strokes.h"
#include "ui/theme/Theme.h"

#include <QComboBox>
#include <QMenu>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <cmath>

namespace kestu {
namespace {

constexpr int rowHeight = 28;
constexpr int rowLeft = 8;
constexpr int rowRight = 10;
constexpr int rowGap = 6;
constexpr int rowRadius = 5;
constexpr int checkColumn = 14;
constexpr int thumbWidth = 6;
constexpr int thumbMargin = 3;
constexpr int thumbEnd = 4;
constexpr int shortestThumb = 28;

/// A menu keeps room for icons in all rows when one has any; a picker's rows stand each for themselves.
bool hasIconColumn(const QStyleOptionMenuItem& option, const QWidget* widget) {
    return qobject_cast<const QMenu*>(widget) ? option.maxIconWidth > 0 : !option.icon.isNull();
}

int textLeft(const QStyleOptionMenuItem& option, const QWidget* widget) {
    return rowLeft + (option.menuHasCheckableItems ? checkColumn + rowGap : 0) +
           (hasIconColumn(option, widget) ? metrics::icon + rowGap : 0);
}

QRectF centred(const QRect& row, qreal left, qreal size) {
    return {row.x() + left, row.y() + (row.height() - size) / 2, size, size};
}

struct RowInk {
    QColor text;
    QColor note;
    QIcon::Mode icon;
};

RowInk inkOf(const QStyleOptionMenuItem& option, bool selected, const Colors& colors) {
    if (!(option.state & QStyle::State_Enabled)) {
        return {colors.textDisabled, colors.textDisabled, QIcon::Disabled};
    }
    return selected ? RowInk{Qt::white, Qt::white, QIcon::Selected}
                    : RowInk{colors.textPrimary, colors.textSecondary, QIcon::Normal};
}

void drawRowIcons(QPainter& painter, const QStyleOptionMenuItem& option, const RowInk& ink,
                  const QWidget* widget) {
    if (option.menuHasCheckableItems && option.checkType != QStyleOptionMenuItem::NotCheckable &&
        option.checked) {
        paintIcon(painter, centred(option.rect, rowLeft, checkColumn), u"checkmark", ink.text);
    }
    if (!option.icon.isNull()) {
        const int size = metrics::icon;
        const int left = textLeft(option, widget) - rowGap - size;
        painter.drawPixmap(snapped(painter, centred(option.rect, left, size)).topLeft(),
                           option.icon.pixmap({size, size}, painter.device()->devicePixelRatio(), ink.icon));
    }
    if (option.menuItemType == QStyleOptionMenuItem::SubMenu) {
        const int size = metrics::iconChip;
        paintIcon(painter, centred(option.rect, option.rect.width() - rowRight - size, size),
                  u"chevron.right", ink.note);
    }
}

void drawRowText(QPainter& painter, const QStyleOptionMenuItem& option, const RowInk& ink,
                 const QWidget* widget) {
    const QRect room = option.rect.adjusted(textLeft(option, widget), 0, -rowRight, 0);
    const qsizetype tab = option.text.indexOf(u'\t');
    const int flags = Qt::AlignVCenter | Qt::TextSingleLine;
    painter.setFont(option.font);
    if (tab >= 0) {
        painter.setPen(ink.note);
        painter.drawText(room, flags | Qt::AlignRight, option.text.sliced(tab + 1));
    }
    const int mnemonic = Qt::TextShowMnemonic;
    const QString text =
        painter.fontMetrics().elidedText(option.text.left(tab), Qt::ElideRight, room.width(), mnemonic);
    painter.setPen(ink.text);
    painter.drawText(room, flags | Qt::AlignLeft | mnemonic, text);
}

} // namespace

void drawMenuPanel(QPainter& painter, const QStyleOption& option) {
    const Colors& colors = colorsOf(option.palette);
    drawPanel(painter, option.rect, metrics::radiusInner, colors.menu, colors.sheetBorder);
}

void drawMenuItem(QPainter& painter, const QStyleOptionMenuItem& option, const QWidget* widget) {
    const Colors& colors = colorsOf(option.palette);
    if (!qobject_cast<const QMenu*>(widget)) {
        painter.fillRect(option.rect, colors.menu); // a picker's list puts the window's colour beneath
    }
    if (option.menuItemType == QStyleOptionMenuItem::Separator) {
        QRectF line = QRectF(option.rect).adjusted(6, 0, -6, 0);
        line.setTop(line.top() + std::floor(line.height() / 2));
        line.setHeight(crispWidth(painter, 1));
        painter.fillRect(snapped(painter, line), colors.divider);
        return;
    }
    const bool selected = (option.state & QStyle::State_Selected) && (option.state & QStyle::State_Enabled);
    painter.save();
    if (selected) {
        drawPanel(painter, option.rect, rowRadius, colors.accentFill);
    }
    const RowInk ink = inkOf(option, selected, colors);
    drawRowIcons(painter, option, ink, widget);
    drawRowText(painter, option, ink, widget);
    painter.restore();
}

void drawMenuScroller(QPainter& painter, const QStyleOption& option) {
    const Colors& colors = colorsOf(option.palette);
    painter.fillRect(option.rect, colors.menu);
    const int size = metrics::iconChip;
    const bool down = option.state & QStyle::State_DownArrow;
    paintIcon(painter, centred(option.rect, (option.rect.width() - size) / 2.0, size),
              down ? u"chevron.down" : u"chevron.up", colors.textSecondary);
}

QSize menuItemSize(const QStyleOptionMenuItem& option, QSize contents, const QWidget* widget) {
    if (option.menuItemType == QStyleOptionMenuItem::Separator) {
        return {contents.width(), 9};
    }
    const QString text = option.text.section(u'\t', 0, 0);
    const int words = QFontMetrics(option.font).size(Qt::TextShowMnemonic, text).width();
    const int arrow = option.menuItemType == QStyleOptionMenuItem::SubMenu ? rowGap + metrics::iconChip : 0;
    const int shortcut = option.text.contains(u'\t') ? 2 * rowRight : 0; // its text is added by the menu
    return {textLeft(option, widget) + words + arrow + shortcut + rowRight,
            std::max(rowHeight, QFontMetrics(option.font).height() + 2)};
}

void drawToolTip(QPainter& painter, const QStyleOption& option) {
    drawPanel(painter, option.rect, metrics::radiusControl, colorsOf(option.palette).tooltip);
}

QRegion roundRegion(const QRect& rect, int radius) {
    QRegion region = rect.adjusted(0, radius, 0, -radius);
    for (int row = 0; row < radius; ++row) {
        const double rise = radius - row - 0.5;
        const int inset = static_cast<int>(std::lround(radius - std::sqrt(radius * radius - rise * rise)));
        const QRect line(rect.x() + inset, rect.y() + row, rect.width() - 2 * inset, 1);
        region += line;
        region += line.translated(0, rect.height() - 1 - 2 * row);
    }
    return region;
}

void drawScrollBar(QPainter& painter, const QStyleOptionSlider& option) {
    const QRect slider = scrollBarPart(option, QStyle::SC_ScrollBarSlider);
    if (slider.isEmpty()) {
        return;
    }
    const bool upright = option.orientation == Qt::Vertical;
    const int inner = scrollBarExtent - thumbWidth - thumbMargin;
    const QRect thumb =
        upright ? slider.adjusted(inner, 0, -thumbMargin, 0) : slider.adjusted(0, inner, 0, -thumbMargin);
    drawPanel(painter, thumb, thumbWidth / 2.0, colorsOf(option.palette).chipEdge);
}

QRect scrollBarPart(const QStyleOptionSlider& option, QStyle::SubControl part) {
    const bool upright = option.orientation == Qt::Vertical;
    const QRect groove = upright ? option.rect.adjusted(0, thumbEnd, 0, -thumbEnd)
                                 : option.rect.adjusted(thumbEnd, 0, -thumbEnd, 0);
    const int length = upright ? groove.height() : groove.width();
    const qint64 range = qint64{option.maximum} - option.minimum;
    const qint64 page = std::max(1, option.pageStep);
    const int wanted = static_cast<int>(length * page / (range + page));
    const int thumb = range <= 0 ? 0 : std::clamp(wanted, std::min(shortestThumb, length), length);
    const int at = QStyle::sliderPositionFromValue(option.minimum, option.maximum, option.sliderPosition,
                                                   length - thumb, option.upsideDown);
    const auto stretch = [&](int from, int size) {
        return upright ? QRect(groove.x(), groove.y() + from, groove.width(), size)
                       : QRect(groove.x() + from, groove.y(), size, groove.height());
    };
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return groove;
    case QStyle::SC_ScrollBarSlider:
        return stretch(at, thumb);
    case QStyle::SC_ScrollBarSubPage:
        return stretch(0, at);
    case QStyle::SC_ScrollBarAddPage:
        return stretch(at + thumb, length - at - thumb);
    default:
        return {}; // no arrows
    }
}

} // namespace kestu
