// SPDX-License-Identifier: GPL-3.0-or-later
//
// How the standard controls look: Fusion's behaviour, drawn with the colours and sizes of Theme.h. The
// application owns the one style; what a single control asks for beyond its class is said with the helpers
// below, before it is shown.
#pragma once

#include "ui/theme/Theme.h"

#include <QProxyStyle>

class QAbstractButton;
class QAbstractSpinBox;
class QApplication;
class QLineEdit;

namespace kestu {

enum class ButtonRole {
    standard,          // filled with the accent while it is its dialog's default button
    plain,             // never filled, also when it is the default because it has the focus
    primary,           // always filled with the accent
    destructive,       // red text
    destructiveFilled, // white on red
};

void setRole(QAbstractButton* button, ButtonRole role);
/// 24 high with a 12 pixel text and a 14 pixel icon.
void setSmall(QAbstractButton* button);
/// No frame, 24 high, filled on hover; a text is drawn in the accent's colour or, if destructive, in red.
void setBorderless(QAbstractButton* button);
/// A double click is one click: the button goes with what it does, and the next one takes its place.
void setOnce(QAbstractButton* button);
/// A name that shows its frame on hover and focus alone.
void setPlain(QLineEdit* field);
/// Keeps the last `width` pixels within the frame free for a button of the owner's.
void reserveTrailing(QAbstractSpinBox* field, int width);
/// A red edge: what the field holds cannot be taken.
void setWrong(QWidget* field, bool wrong);

class KestuStyle final : public QProxyStyle {
    Q_OBJECT

public:
    KestuStyle();

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                       SubControl part, const QWidget* widget) const override;
    [[nodiscard]] QRect subElementRect(SubElement element, const QStyleOption* option,
                                       const QWidget* widget) const override;
    [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                         const QWidget* widget) const override;
    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                  const QWidget* widget) const override;
    [[nodiscard]] int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                QStyleHintReturn* result) const override;

    /// Only disabled icons change: a project's dot keeps its colour on a selected row.
    [[nodiscard]] QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                              const QStyleOption* option) const override;

    using QProxyStyle::polish;
    void polish(QWidget* widget) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
};

/// Once, before the first window. From then on Qt's own words are Japanese, too.
void installStyle(QApplication& application);
/// The whole of a live switch.
void applyTheme(QApplication& application, const Colors& colors);

} // namespace kestu
