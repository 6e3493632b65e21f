// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/TagChip.h"

#include "ui/controls/Roles.h"
#include "ui/theme/Icons.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace kestu {
namespace {

constexpr int chipHeight = 23;
constexpr int side = 9; // the padding of 8 within the edge of 1
constexpr int gap = 4;
constexpr int narrowestName = 24;

struct ChipColors {
    QColor fill;
    QColor edge;
    QColor name;
    QColor note;
};

ChipColors chipColors(const ControlState& state, QColor color, const Colors& colors) {
    if (!state.on) {
        const QColor ink = state.enabled ? colors.textSecondary : colors.textDisabled;
        return {.fill = state.hovered || state.pressed ? colors.pill : colors.hourTrack,
                .edge = colors.chipEdge,
                .name = ink,
                .note = ink};
    }
    const QColor edge = color;
    color.setAlphaF(state.pressed ? 0.40F : state.hovered ? 0.32F : 0.25F);
    return {.fill = color,
            .edge = edge,
            .name = state.enabled ? colors.textPrimary : colors.textDisabled,
            .note = state.enabled ? colors.textSecondaryOnTint : colors.textDisabled};
}

} // namespace

ChipParts chipParts(QSizeF chip, int noteWidth) {
    const qreal afterIcon = side + metrics::iconChip + gap;
    const qreal noteX = chip.width() - side - noteWidth;
    const qreal nameEnd = noteWidth > 0 ? noteX - gap : noteX;
    return {.icon =
                QRectF(side, (chip.height() - metrics::iconChip) / 2, metrics::iconChip, metrics::iconChip),
            .name = QRectF(afterIcon, 0, std::max(nameEnd - afterIcon, 0.0), chip.height()),
            .note = QRectF(noteX, 0, noteWidth, chip.height())};
}

TagChip::TagChip(const Look& look, Kind kind, QWidget* parent)
    : PaintedButton(Ring::outside, parent)
    , m_kind(kind) {
    setFont(fontOf(TextStyle::caption));
    setCheckable(kind == Kind::clickable);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    if (kind == Kind::label) {
        reportRole(this, QAccessible::StaticText);
        setFocusPolicy(Qt::NoFocus);
        setAttribute(Qt::WA_Hover, false);
    }
    setLook(look);
}

void TagChip::setLook(const Look& look) {
    setChecked(look.on); // a click has changed it
    if (look == m_look) {
        return;
    }
    m_look = look;
    setAccessibleName(look.note.isEmpty() ? look.name : look.name + u' ' + look.note);
    updateGeometry();
    update();
}

int TagChip::noteWidth() const {
    return m_look.note.isEmpty() ? 0 : widthOf(m_look.note, font());
}

QSize TagChip::sizeHint() const {
    const int note = m_look.note.isEmpty() ? 0 : gap + noteWidth();
    const int name = widthOf(m_look.name, font());
    return {2 * side + metrics::iconChip + gap + name + note, chipHeight};
}

QSize TagChip::minimumSizeHint() const {
    const int name = widthOf(m_look.name, font());
    return sizeHint() - QSize(std::max(name - narrowestName, 0), 0);
}

QString TagChip::shownName() const {
    const qreal room = chipParts(size(), noteWidth()).name.width();
    return elided(m_look.name, font(), Qt::ElideRight, static_cast<int>(room));
}

bool TagChip::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty() || shownName() == m_look.name) {
        return PaintedButton::event(event);
    }
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), toolTipOf(m_look.name), this);
    return true;
}

bool TagChip::hitButton(const QPoint& point) const {
    return m_kind == Kind::clickable && PaintedButton::hitButton(point);
}

void TagChip::paintEvent(QPaintEvent*) {
    ControlState now = state();
    if (m_kind == Kind::label) {
        now.hovered = false;
        now.on = m_look.on;
    }
    const ChipColors look = chipColors(now, m_look.color, colorsOf(palette()));
    const ChipParts parts = chipParts(size(), noteWidth());
    QPainter painter(this);
    paintRounded(painter, rect(), height() / 2.0, look.fill, {.color = look.edge, .width = 1});
    paintIcon(painter, parts.icon, now.on ? u"tag.fill" : u"tag", look.name);
    painter.setPen(look.name);
    painter.drawText(parts.name, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, shownName());
    painter.setPen(look.note);
    painter.drawText(parts.note, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, m_look.note);
}

} // namespace kestu
