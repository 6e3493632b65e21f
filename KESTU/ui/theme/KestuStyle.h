// SPDX-License-Identifier: GPL-3.0-or-later
//
// How the standard controls look: Fusion with our own drawing of what it draws otherwise, from the colours of
// the palette. One object for the application, which owns it.
#pragma once

#include "ui/theme/Theme.h"

#include <QProxyStyle>

class QApplication;
class QPushButton;

namespace kestu {

enum class ButtonRole {
    normal,
    destructive,      // red text
    destructiveFilled // red under white text: the button that does it
};

// Said before a button is first shown or measured.

void setRole(QPushButton* button, ButtonRole role);

/// 24 pixels high instead of 28.
void setSmall(QPushButton* button);

class KestuStyle final : public QProxyStyle {
    Q_OBJECT

public:
    KestuStyle();

    void polish(QWidget* widget) override;
    using QProxyStyle::polish;

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                  const QWidget* widget) const override;
    [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                         const QWidget* widget) const override;
    [[nodiscard]] int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                QStyleHintReturn* data) const override;
    [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                       SubControl part, const QWidget* widget) const override;
};

/// Once, at the start.
void installStyle(QApplication& application);

/// Gives the application these colours, now and in every open window.
void applyTheme(QApplication& application, const Colors& colors);

} // namespace kestu
