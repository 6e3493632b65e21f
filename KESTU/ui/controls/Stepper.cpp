// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/Stepper.h"

#include "ui/controls/Announcing.h"
#include "ui/controls/Roles.h"
#include "ui/theme/Icons.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace kestu {
namespace {

constexpr int stepperWidth = 56;
constexpr int halfWidth = stepperWidth / 2;

QColor halfFill(const ControlState& state, const Colors& colors) {
    if (!state.enabled) {
        return colors.controlDisabled;
    }
    return state.pressed ? colors.controlPressed : state.hovered ? colors.controlHover : colors.control;
}

} // namespace

StepperHalf::StepperHalf(const QString& icon, const QString& name, QWidget* parent)
    : PaintedButton(Ring::inside, parent)
    , m_icon(icon) {
    setAccessibleName(name);
    setAutoRepeat(true);
}

void StepperHalf::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsOf(palette());
    QPainter painter(this);
    QPainterPath outline; // of the whole stepper, so that only its own corners are round
    const QRectF whole(-x(), -y(), stepperWidth, metrics::controlHeight);
    outline.addRoundedRect(whole, metrics::radiusControl, metrics::radiusControl);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(outline);
    painter.fillRect(rect(), halfFill(state(), colors));
    const QPointF corner((width() - metrics::iconSmall) / 2.0, (height() - metrics::iconSmall) / 2.0);
    paintIcon(painter, QRectF(corner, QSizeF(metrics::iconSmall, metrics::iconSmall)), m_icon,
              state().enabled ? colors.textPrimary : colors.textDisabled);
    const bool focused = state().focused;
    const bool whollyOff = !looksEnabled(parentWidget());
    const QColor edge = focused     ? colors.focus
                        : whollyOff ? colors.controlBorderDisabled
                                    : colors.controlBorder;
    paintRounded(painter, whole, metrics::radiusControl, Qt::transparent,
                 {.color = edge, .width = focused ? 2.0 : 1.0});
    if (x() > 0) {
        painter.fillRect(QRect(0, 1, 1, height() - 2),
                         whollyOff ? colors.controlBorderDisabled : colors.controlBorder);
    }
}

Stepper::Stepper(const QString& name, const QString& unit, int minimum, int maximum, QWidget* parent)
    : QWidget(parent)
    , m_unit(unit)
    , m_minus(new StepperHalf(QStringLiteral("minus"), name + QStringLiteral("を減らす"), this))
    , m_plus(new StepperHalf(QStringLiteral("plus"), name + QStringLiteral("を増やす"), this))
    , m_minimum(minimum)
    , m_maximum(maximum)
    , m_value(minimum) {
    reportRole(this, QAccessible::Grouping);
    setAccessibleName(name);
    setFixedSize(stepperWidth, metrics::controlHeight);
    m_minus->setGeometry(0, 0, halfWidth, metrics::controlHeight);
    m_plus->setGeometry(halfWidth, 0, halfWidth, metrics::controlHeight);
    connect(m_minus, &QAbstractButton::clicked, this, [this] { step(-1); });
    connect(m_plus, &QAbstractButton::clicked, this, [this] { step(1); });
    setValue(minimum);
}

void Stepper::setValue(int value) {
    m_value = std::clamp(value, m_minimum, m_maximum);
    // The focus goes over before the half that has it can take none any more.
    if (m_value == m_minimum && m_minus->hasFocus()) {
        m_plus->setEnabled(true);
        m_plus->setFocus(Qt::TabFocusReason);
    } else if (m_value == m_maximum && m_plus->hasFocus()) {
        m_minus->setEnabled(true);
        m_minus->setFocus(Qt::TabFocusReason);
    }
    m_minus->setEnabled(m_value > m_minimum);
    m_plus->setEnabled(m_value < m_maximum);
    const QString spoken = QString::number(m_value) + m_unit;
    m_minus->setAccessibleDescription(spoken);
    m_plus->setAccessibleDescription(spoken);
}

void Stepper::step(int by) {
    const int before = m_value;
    setValue(m_value + by);
    if (m_value != before) {
        announce(*this, QString::number(m_value) + m_unit);
        Q_EMIT stepped(m_value);
    }
}

} // namespace kestu
