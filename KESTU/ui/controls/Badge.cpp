// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/Badge.h"

#include "ui/controls/Painted.h"

#include <QPainter>

namespace kestu {
namespace {

struct Look {
    TextStyle style;
    QPalette::ColorRole color;
    QMargins padding;
    int narrowest;
};

Look lookOf(Badge::Kind kind) {
    switch (kind) {
    case Badge::Kind::author:
        return {TextStyle::caption2, ink::accent, {6, 2, 6, 2}, 0};
    case Badge::Kind::count:
        return {TextStyle::caption, ink::accent, {7, 2, 7, 2}, 22};
    case Badge::Kind::sidebar:
        return {TextStyle::caption2, ink::secondary, {6, 1, 6, 1}, 20};
    case Badge::Kind::fresh:
        return {TextStyle::caption2, ink::orange, {5, 0, 5, 0}, 0};
    case Badge::Kind::pill:
        break;
    }
    return {TextStyle::callout, ink::primary, {6, 2, 6, 2}, 0};
}

QColor fillOf(Badge::Kind kind, const Colors& colors) {
    QColor tint = colors.accent;
    switch (kind) {
    case Badge::Kind::author:
        tint.setAlphaF(0.15F);
        return tint;
    case Badge::Kind::count:
        tint.setAlphaF(0.20F);
        return tint;
    case Badge::Kind::fresh:
        return colors.newFill;
    case Badge::Kind::sidebar:
    case Badge::Kind::pill:
        break;
    }
    return colors.pill;
}

} // namespace

Badge::Badge(Kind kind, const QString& text, QWidget* parent)
    : TextLabel(text, lookOf(kind).style, lookOf(kind).color,
                kind == Kind::pill ? Overflow::elideMiddle : Overflow::whole, parent)
    , m_kind(kind) {
    setContentsMargins(lookOf(kind).padding);
    setAlignment(Qt::AlignCenter);
    setSizePolicy(kind == Kind::pill ? QSizePolicy::Maximum : QSizePolicy::Fixed, QSizePolicy::Fixed);
    if (kind != Kind::pill) {
        setFont(semibold(font()));
    }
}

QSize Badge::sizeHint() const {
    return TextLabel::sizeHint().expandedTo({lookOf(m_kind).narrowest, 0});
}

QSize Badge::minimumSizeHint() const {
    return m_kind == Kind::pill ? TextLabel::minimumSizeHint() : sizeHint();
}

void Badge::paintEvent(QPaintEvent* event) {
    const bool round = m_kind == Kind::count || m_kind == Kind::sidebar;
    QPainter painter(this);
    paintRounded(painter, rect(), round ? height() / 2.0 : metrics::radiusPill,
                 fillOf(m_kind, colorsOf(palette())), {.color = {}, .width = 0});
    painter.end();
    TextLabel::paintEvent(event);
}

CountBadge::CountBadge(int count, QWidget* parent)
    : Badge(Kind::count, QString::number(count), parent) {}

void CountBadge::setCount(int count) {
    setText(QString::number(count));
}

} // namespace kestu
