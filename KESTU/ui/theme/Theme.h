// SPDX-License-Identifier: GPL-3.0-or-later
//
// Every colour, size and text style of the screens, under its name. There are two sets of colours; which of
// them holds is told by the palette, so that a live switch is one QApplication::setPalette and every widget
// follows: what paints itself asks colorsOf(palette()), and a label's colour is a role of that palette.
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

class QWidget;

namespace kestu {

struct Colors {
    QColor window;
    QColor sidebar;
    QColor card;
    QColor cardBorder;
    QColor sheet;
    QColor sheetCard;
    QColor sheetBorder;
    QColor menu;
    QColor tooltip;
    QColor tooltipText;
    QColor divider;
    QColor chartGrid;
    QColor scrim;
    QColor shadow;     // of sheets and the panel
    QColor menuShadow; // of menus and tooltips

    QColor textPrimary;
    QColor textSecondary;
    QColor textTertiary;
    QColor textDisabled;
    QColor textSecondaryOnTint; // beside a name on a coloured chip

    QColor accent; // bars, rings and tints; never under white text
    QColor accentFill;
    QColor accentFillHover;
    QColor accentFillPressed;
    QColor accentText;
    QColor green;
    QColor greenFill;
    QColor orange;
    QColor orangeText;
    QColor orangeFill;
    QColor redText;
    QColor redFill;
    QColor redSoft;

    QColor control;
    QColor controlHover;
    QColor controlPressed;
    QColor controlBorder;
    QColor controlDisabled;
    QColor controlBorderDisabled;
    QColor field;
    QColor fieldBorder;
    QColor segmentTrack;
    QColor segmentSelected;
    QColor switchOff;
    QColor switchOffBorder;
    QColor knob;
    QColor rowHover;
    QColor textSelection;
    QColor focus;
    QColor sliceOutline;

    QColor bannerFill; // orange at 12 %
    QColor newFill;    // orange at 18 %
    QColor hourTrack;  // secondary at 8 %
    QColor pill;       // secondary at 12 %
    QColor chipEdge;   // secondary at 30 %
    QColor unassigned; // secondary at 35 %: time without a project

    [[nodiscard]] bool operator==(const Colors&) const = default;
};

[[nodiscard]] const Colors& lightColors();
[[nodiscard]] const Colors& darkColors();

/// The set that a palette of paletteOf was made from.
[[nodiscard]] const Colors& colorsOf(const QPalette& palette);
[[nodiscard]] QPalette paletteOf(const Colors& colors);

/// The colour of a text, as the palette role that holds it: `label->setForegroundRole(ink::secondary)`.
/// Disabled text keeps it, for what lies beneath a sheet is disabled without looking so.
namespace ink {
inline constexpr QPalette::ColorRole primary = QPalette::WindowText;
inline constexpr QPalette::ColorRole secondary = QPalette::Dark;
inline constexpr QPalette::ColorRole tertiary = QPalette::Mid;
inline constexpr QPalette::ColorRole accent = QPalette::Link;
inline constexpr QPalette::ColorRole orange = QPalette::LinkVisited;
inline constexpr QPalette::ColorRole red = QPalette::BrightText;
} // namespace ink

/// Pixel size and weight of a text, as 24/35 bold means 24 pixels in lines of 35.
enum class TextStyle {
    title1,   // 24/35 bold
    title2,   // 20/29 bold
    title3,   // 16/24 semibold
    headline, // 14/20 semibold
    body,     // 14/20
    callout,  // 13/19, the default
    caption,  // 12/17
    caption2, // 11/16
};

[[nodiscard]] QFont fontOf(TextStyle style);
[[nodiscard]] QFont semibold(QFont font);
/// Letters of one width, as paths have.
[[nodiscard]] QFont monospaced(QFont font);

namespace metrics {
inline constexpr int radiusSlice = 3;
inline constexpr int radiusPill = 4;
inline constexpr int radiusControl = 6;
inline constexpr int radiusInner = 8;
inline constexpr int radiusCard = 10;
inline constexpr int radiusSheet = 12;
inline constexpr int controlHeight = 28;
inline constexpr int smallControlHeight = 24;
inline constexpr int iconChip = 12;
inline constexpr int iconSmall = 14;
inline constexpr int icon = 16;
inline constexpr int iconSidebar = 18;
inline constexpr int iconBanner = 20;
inline constexpr int iconEmpty = 48;
} // namespace metrics

/// Whether a widget is drawn as enabled: it is, or only a sheet over its window keeps it from answering.
/// The part of a window that a sheet covers is marked by `coveredProperty` set to true.
[[nodiscard]] bool looksEnabled(const QWidget* widget);
inline constexpr const char* coveredProperty = "kestuCovered";

/// A colour text, "#4F7CF7" with or without its "#": the leading hexadecimal digits as red, green and blue;
/// black when there are none.
[[nodiscard]] QColor colorFromText(const QString& text);

} // namespace kestu
