// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/SwitchButton.h"

#include <QLabel>
#include <QMouseEvent>
#include <QPainter>

namespace kestu {
namespace {

constexpr QSize trackSize(36, 20);
constexpr int knobDiameter = 16;
constexpr int slideMilliseconds = 120;

struct Look {
    QColor track;
    QColor edge;
    QColor knob;
};

Look disabledLook(bool on, const Colors& colors) {
    QColor tint = colors.accent;
    tint.setAlphaF(0.20F);
    return {.track = on ? tint : colors.controlPressed,
            .edge = on ? QColor(Qt::transparent) : colors.controlBorderDisabled,
            .knob = colors.controlDisabled};
}

Look lookOf(const ControlState& state, const Colors& colors) {
    if (!state.enabled) {
        return disabledLook(state.on, colors);
    }
    if (state.on) {
        const QColor fill = state.pressed   ? colors.accentFillPressed
                            : state.hovered ? colors.accentFillHover
                                            : colors.accentFill;
        return {.track = fill, .edge = fill, .knob = Qt::white};
    }
    return {.track = state.hovered || state.pressed ? colors.switchOffBorder : colors.switchOff,
            .edge = colors.switchOffBorder,
            .knob = colors.knob};
}

} // namespace

QRectF knobBox(qreal on) {
    constexpr int margin = (trackSize.height() - knobDiameter) / 2;
    constexpr int way = trackSize.width() - knobDiameter - 2 * margin;
    return {margin + on * way, margin, knobDiameter, knobDiameter};
}

SwitchButton::SwitchButton(const QString& name, QWidget* parent)
    : PaintedButton(Ring::outside, parent) {
    setAccessibleName(name);
    setCheckable(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_slide.setDuration(slideMilliseconds);
    m_slide.setStartValue(0.0);
    m_slide.setEndValue(1.0);
    connect(&m_slide, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
    connect(this, &QAbstractButton::toggled, this, &SwitchButton::slide);
}

void SwitchButton::slide(bool on) {
    m_slide.setDirection(on ? QAbstractAnimation::Forward : QAbstractAnimation::Backward);
    if (isVisible()) {
        m_slide.start();
    }
}

void SwitchButton::setLabel(QLabel* label) {
    setAccessibleName(label->text());
    label->installEventFilter(this);
}

bool SwitchButton::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick) {
        return true; // so that its release comes here
    }
    if (event->type() == QEvent::MouseButtonRelease && watched->isWidgetType()) {
        const auto* const mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::LeftButton &&
            static_cast<QWidget*>(watched)->rect().contains(mouse->pos())) {
            click();
        }
        return true;
    }
    return PaintedButton::eventFilter(watched, event);
}

QSize SwitchButton::sizeHint() const {
    return trackSize;
}

void SwitchButton::paintEvent(QPaintEvent*) {
    const Look look = lookOf(state(), colorsOf(palette()));
    const bool sliding = m_slide.state() == QAbstractAnimation::Running;
    const qreal on = sliding ? m_slide.currentValue().toReal() : isChecked() ? 1 : 0;
    QPainter painter(this);
    const QRectF track(QPointF(0, 0), trackSize);
    paintRounded(painter, track, track.height() / 2, look.track, {.color = look.edge, .width = 1});
    painter.setPen(Qt::NoPen);
    painter.setBrush(look.knob);
    painter.drawEllipse(knobBox(on));
}

} // namespace kestu
