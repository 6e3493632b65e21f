// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the self-painted controls share: the state that a paint function is given, rounded shapes with a
// hairline, the focus ring around round things, and the button that all clickable ones derive from. A button
// belongs to its parent widget; it reports itself to assistive technology as QAbstractButton does.
#pragma once

#include "ui/theme/Theme.h"

#include <QAbstractButton>
#include <QPointer>

class QPainter;

namespace kestu {

struct ControlState {
    bool enabled = true;
    bool hovered = false;
    bool pressed = false;
    bool focused = false; // reached by the keyboard
    bool on = false;
};

struct Edge {
    QColor color;
    qreal width = 1;
};

/// A rounded rectangle whose edge lies inside `box`.
void paintRounded(QPainter& painter, const QRectF& box, qreal radius, const QColor& fill, const Edge& edge);

/// The soft shadow that falls from `box`: moved down by `drop` and spread over `blur`.
void paintShadow(QPainter& painter, const QRectF& box, qreal radius, const QColor& color, int drop, int blur);

/// The width that `text` needs, and it when it has less: a metric's own rounding would elide what just fits.
[[nodiscard]] int widthOf(const QString& text, const QFont& font);
[[nodiscard]] QString elided(const QString& text, const QFont& font, Qt::TextElideMode mode, int width);

/// A tooltip that shows `plain` as it stands, wrapped, even where it looks like markup.
[[nodiscard]] QString toolTipOf(const QString& plain);

/// What a control does, as its tooltip and for those who have the screen read to them.
void setHelp(QWidget& control, const QString& plain);

/// The focus ring one pixel outside of a round widget. It lives in an ancestor, for it needs more room than
/// the widget has, and goes with the widget.
class FocusHalo final : public QWidget {
    Q_OBJECT

public:
    explicit FocusHalo(QWidget* target);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow();

    QPointer<QWidget> m_target;
};

/// Marks the ancestor that the focus rings of its descendants may not leave.
inline constexpr const char* focusHostProperty = "kestuFocusHost";

class PaintedButton : public QAbstractButton {
    Q_OBJECT

public:
    enum class Ring { inside, outside };

    explicit PaintedButton(Ring ring, QWidget* parent = nullptr);
    ~PaintedButton() override;

    [[nodiscard]] ControlState state() const;

Q_SIGNALS:
    void stateChanged();

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] bool byKeyboard(Qt::FocusReason reason) const;
    void showRing(bool shown);

    Ring m_ring;
    bool m_byKeyboard = false;
    QPointer<FocusHalo> m_halo;
};

} // namespace kestu
