// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/Painted.h"

#include "ui/controls/ButtonAccess.h"

#include <QEvent>
#include <QFocusEvent>
#include <QFontMetrics>
#include <QPainter>
#include <QTextDocument>
#include <cmath>

namespace kestu {
namespace {

constexpr int haloGap = 1;
constexpr int haloWidth = 2;

bool isScrolled(const QWidget* widget) {
    const QWidget* const viewport = widget->parentWidget();
    return viewport && viewport->parentWidget() && viewport->parentWidget()->inherits("QAbstractScrollArea");
}

/// A scrolled content moves with its own, a sheet is stacked above its window; else it may be anywhere.
QWidget* haloHost(const QWidget* target) {
    QWidget* host = target->parentWidget();
    while (host && !host->isWindow() && !isScrolled(host) && !host->property(focusHostProperty).toBool()) {
        host = host->parentWidget();
    }
    return host;
}

} // namespace

void paintRounded(QPainter& painter, const QRectF& box, qreal radius, const QColor& fill, const Edge& edge) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    if (!edge.color.isValid() || edge.width <= 0) {
        painter.drawRoundedRect(box, radius, radius);
        return;
    }
    // The fill reaches below the whole edge, as a translucent edge is seen upon it.
    painter.drawRoundedRect(box, radius, radius);
    const qreal half = edge.width / 2;
    painter.setPen(QPen(edge.color, edge.width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box.adjusted(half, half, -half, -half), radius - half, radius - half);
}

void paintShadow(QPainter& painter, const QRectF& box, qreal radius, const QColor& color, int drop,
                 int blur) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF cast = box.translated(0, drop);
    const qreal sigma = blur / 2.0;
    const auto covered = [sigma](qreal outside) { return std::erfc(outside / sigma / std::sqrt(2.0)) / 2; };
    constexpr int step = 2;
    for (int grown = blur; grown > -blur; grown -= step) {
        QColor layer = color;
        layer.setAlphaF(static_cast<float>(color.alphaF() * (covered(grown - step) - covered(grown))));
        painter.setBrush(layer);
        const qreal corner = std::max<qreal>(radius + grown, 0);
        painter.drawRoundedRect(cast.adjusted(-grown, -grown, grown, grown), corner, corner);
    }
}

int widthOf(const QString& text, const QFont& font) {
    return static_cast<int>(std::ceil(QFontMetricsF(font).horizontalAdvance(text)));
}

QString elided(const QString& text, const QFont& font, Qt::TextElideMode mode, int width) {
    return widthOf(text, font) <= width ? text : QFontMetrics(font).elidedText(text, mode, width);
}

QString toolTipOf(const QString& plain) {
    return Qt::convertFromPlainText(plain, Qt::WhiteSpaceNormal);
}

void setHelp(QWidget& control, const QString& plain) {
    control.setToolTip(toolTipOf(plain));
    control.setAccessibleDescription(plain); // or the markup of the tooltip is read
}

FocusHalo::FocusHalo(QWidget* target)
    : QWidget(haloHost(target))
    , m_target(target) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    for (QWidget* moved = target; moved && moved != parentWidget(); moved = moved->parentWidget()) {
        moved->installEventFilter(this);
    }
    follow();
}

void FocusHalo::follow() {
    if (!m_target || !m_target->isVisible()) {
        hide();
        return;
    }
    constexpr int room = haloGap + haloWidth;
    const QPoint corner = m_target->mapTo(parentWidget(), QPoint(0, 0));
    setGeometry(QRect(corner, m_target->size()).adjusted(-room, -room, room, room));
    raise();
    show();
}

bool FocusHalo::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
        follow();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void FocusHalo::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintRounded(painter, rect(), height() / 2.0, Qt::transparent,
                 {.color = colorsOf(palette()).focus, .width = haloWidth});
}

PaintedButton::PaintedButton(Ring ring, QWidget* parent)
    : QAbstractButton(parent)
    , m_ring(ring) {
    installButtonAccess();
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
}

PaintedButton::~PaintedButton() {
    delete m_halo;
}

ControlState PaintedButton::state() const {
    return {.enabled = looksEnabled(this),
            .hovered = isEnabled() && underMouse(),
            .pressed = isDown(),
            .focused = hasFocus() && m_byKeyboard,
            .on = isChecked()};
}

void PaintedButton::showRing(bool shown) {
    if (m_ring == Ring::outside && shown && !m_halo && parentWidget()) {
        m_halo = new FocusHalo(this);
    } else if (!shown) {
        delete m_halo;
    }
    update();
    Q_EMIT stateChanged();
}

bool PaintedButton::byKeyboard(Qt::FocusReason reason) const {
    switch (reason) {
    case Qt::MouseFocusReason:
        return false;
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
        return m_byKeyboard; // coming back, the ring is as it was
    case Qt::OtherFocusReason:
        return window()->testAttribute(Qt::WA_KeyboardFocusChange);
    default:
        return true;
    }
}

void PaintedButton::focusInEvent(QFocusEvent* event) {
    m_byKeyboard = byKeyboard(event->reason());
    QAbstractButton::focusInEvent(event);
    showRing(m_byKeyboard);
}

void PaintedButton::focusOutEvent(QFocusEvent* event) {
    QAbstractButton::focusOutEvent(event);
    showRing(false);
}

bool PaintedButton::event(QEvent* event) {
    const bool handled = QAbstractButton::event(event);
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave) {
        update();
        Q_EMIT stateChanged();
    }
    return handled;
}

} // namespace kestu
