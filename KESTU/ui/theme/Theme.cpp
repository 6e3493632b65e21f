// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/theme/Theme.h"

#include <QWidget>

namespace kestu {
namespace {

QColor translucent(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

/// Those that follow from the others.
Colors withTints(Colors colors) {
    const QColor amber(0xF2, 0x99, 0x4A);
    colors.bannerFill = translucent(amber, 0.12);
    colors.newFill = translucent(amber, 0.18);
    colors.hourTrack = translucent(colors.textSecondary, 0.08);
    colors.pill = translucent(colors.textSecondary, 0.12);
    colors.chipEdge = translucent(colors.textSecondary, 0.30);
    colors.unassigned = translucent(colors.textSecondary, 0.35);
    return colors;
}

QColor hex(QRgb rgb) {
    return QColor(rgb);
}

Colors makeLight() {
    return withTints({.window = hex(0xFFFFFF),
                      .sidebar = hex(0xF4F5F8),
                      .card = hex(0xF8F9FB),
                      .cardBorder = hex(0xE6E8ED),
                      .sheet = hex(0xFFFFFF),
                      .sheetCard = hex(0xF8F9FB),
                      .sheetBorder = hex(0xDADDE4),
                      .menu = hex(0xFFFFFF),
                      .tooltip = hex(0x2A2D34),
                      .tooltipText = hex(0xFFFFFF),
                      .divider = hex(0xE6E8ED),
                      .chartGrid = hex(0xEDEFF3),
                      .scrim = translucent(hex(0x161A22), 0.28),
                      .shadow = translucent(hex(0x161A22), 0.14),
                      .menuShadow = translucent(hex(0x161A22), 0.12),
                      .textPrimary = hex(0x1D2026),
                      .textSecondary = hex(0x545B67),
                      .textTertiary = hex(0x69707D),
                      .textDisabled = hex(0xA3A9B4),
                      .textSecondaryOnTint = hex(0x545B67),
                      .accent = hex(0x4F7CF7),
                      .accentFill = hex(0x3D6AE6),
                      .accentFillHover = hex(0x3562DE),
                      .accentFillPressed = hex(0x2C57CD),
                      .accentText = hex(0x2A55CC),
                      .green = hex(0x27AE60),
                      .greenFill = hex(0x1E9E55),
                      .orange = hex(0xD2691A),
                      .orangeText = hex(0xA34C05),
                      .orangeFill = hex(0xBD5705),
                      .redText = hex(0xC42F2F),
                      .redFill = hex(0xCF3A3A),
                      .redSoft = translucent(hex(0xEB5757), 0.10),
                      .control = hex(0xFFFFFF),
                      .controlHover = hex(0xF3F4F7),
                      .controlPressed = hex(0xE7E9EE),
                      .controlBorder = hex(0xD0D4DC),
                      .controlDisabled = hex(0xF8F9FB),
                      .controlBorderDisabled = hex(0xE4E6EB),
                      .field = hex(0xFFFFFF),
                      .fieldBorder = hex(0xCDD2DA),
                      .segmentTrack = hex(0xEEF0F4),
                      .segmentSelected = hex(0xFFFFFF),
                      .switchOff = hex(0xA9AFBB),
                      .switchOffBorder = hex(0x868D9A),
                      .knob = hex(0xFFFFFF),
                      .rowHover = translucent(hex(0x545B67), 0.08),
                      .textSelection = translucent(hex(0x4F7CF7), 0.22),
                      .focus = hex(0x4F7CF7),
                      .sliceOutline = hex(0x1D2026),
                      .bannerFill = {},
                      .newFill = {},
                      .hourTrack = {},
                      .pill = {},
                      .chipEdge = {},
                      .unassigned = {}});
}

Colors makeDark() {
    return withTints({.window = hex(0x1B1C20),
                      .sidebar = hex(0x222429),
                      .card = hex(0x24262B),
                      .cardBorder = hex(0x33363D),
                      .sheet = hex(0x26282D),
                      .sheetCard = hex(0x2C2F35),
                      .sheetBorder = hex(0x3C4048),
                      .menu = hex(0x2A2C32),
                      .tooltip = hex(0x3A3D45),
                      .tooltipText = hex(0xF3F4F7),
                      .divider = hex(0x31343B),
                      .chartGrid = hex(0x2A2D33),
                      .scrim = translucent(hex(0x000000), 0.50),
                      .shadow = translucent(hex(0x000000), 0.40),
                      .menuShadow = translucent(hex(0x000000), 0.36),
                      .textPrimary = hex(0xECEEF2),
                      .textSecondary = hex(0xAAB0BC),
                      .textTertiary = hex(0x8F96A3),
                      .textDisabled = hex(0x646A76),
                      .textSecondaryOnTint = hex(0xCCD0D9),
                      .accent = hex(0x4F7CF7),
                      .accentFill = hex(0x3F6CE8),
                      .accentFillHover = hex(0x3A66E2),
                      .accentFillPressed = hex(0x315BD0),
                      .accentText = hex(0x8FB0FF),
                      .green = hex(0x34C77B),
                      .greenFill = hex(0x1E9E55),
                      .orange = hex(0xF2994A),
                      .orangeText = hex(0xF5AD6B),
                      .orangeFill = hex(0xBD5705),
                      .redText = hex(0xFF8080),
                      .redFill = hex(0xCF3A3A),
                      .redSoft = translucent(hex(0xFF7070), 0.12),
                      .control = hex(0x2E3137),
                      .controlHover = hex(0x373A42),
                      .controlPressed = hex(0x282A30),
                      .controlBorder = hex(0x464A53),
                      .controlDisabled = hex(0x26282D),
                      .controlBorderDisabled = hex(0x363940),
                      .field = hex(0x1E2024),
                      .fieldBorder = hex(0x464A53),
                      .segmentTrack = hex(0x17181B),
                      .segmentSelected = hex(0x3A3E46),
                      .switchOff = hex(0x4C515B),
                      .switchOffBorder = hex(0x787F8C),
                      .knob = hex(0xF3F4F7),
                      .rowHover = translucent(hex(0xAAB0BC), 0.09),
                      .textSelection = translucent(hex(0x4F7CF7), 0.38),
                      .focus = hex(0x6E94FF),
                      .sliceOutline = hex(0xFFFFFF),
                      .bannerFill = {},
                      .newFill = {},
                      .hourTrack = {},
                      .pill = {},
                      .chipEdge = {},
                      .unassigned = {}});
}

} // namespace

const Colors& lightColors() {
    static const Colors colors = makeLight();
    return colors;
}

const Colors& darkColors() {
    static const Colors colors = makeDark();
    return colors;
}

const Colors& colorsOf(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::WindowText).lightness() > 127 ? darkColors()
                                                                                   : lightColors();
}

QPalette paletteOf(const Colors& colors) {
    QPalette palette;
    const auto set = [&](QPalette::ColorRole role, const QColor& color) {
        palette.setColor(QPalette::All, role, color);
    };
    set(QPalette::Window, colors.window);
    set(QPalette::WindowText, colors.textPrimary);
    set(QPalette::Base, colors.field);
    set(QPalette::AlternateBase, colors.card);
    set(QPalette::Text, colors.textPrimary);
    set(QPalette::PlaceholderText, colors.textTertiary);
    set(QPalette::Button, colors.control);
    set(QPalette::ButtonText, colors.textPrimary);
    set(QPalette::ToolTipBase, colors.tooltip);
    set(QPalette::ToolTipText, colors.tooltipText);
    set(QPalette::Highlight, colors.textSelection);
    set(QPalette::HighlightedText, colors.textPrimary);
    set(QPalette::Light, colors.controlHover);
    set(QPalette::Midlight, colors.controlPressed);
    set(QPalette::Shadow, colors.controlBorder);
    set(ink::secondary, colors.textSecondary);
    set(ink::tertiary, colors.textTertiary);
    set(ink::accent, colors.accentText);
    set(ink::orange, colors.orangeText);
    set(ink::red, colors.redText);
    return palette;
}

QFont semibold(QFont font) {
    font.setWeight(QFont::DemiBold);
    return font;
}

QFont monospaced(QFont font) {
    font.setFamilies({QStringLiteral("Noto Sans Mono CJK JP"), QStringLiteral("Noto Sans Mono")});
    font.setStyleHint(QFont::Monospace);
    return font;
}

QFont fontOf(TextStyle style) {
    struct Face {
        int pixels;
        QFont::Weight weight;
    };
    const auto face = [style]() -> Face {
        switch (style) {
        case TextStyle::title1:
            return {24, QFont::Bold};
        case TextStyle::title2:
            return {20, QFont::Bold};
        case TextStyle::title3:
            return {16, QFont::DemiBold};
        case TextStyle::headline:
            return {14, QFont::DemiBold};
        case TextStyle::body:
            return {14, QFont::Normal};
        case TextStyle::caption:
            return {12, QFont::Normal};
        case TextStyle::caption2:
            return {11, QFont::Normal};
        case TextStyle::callout:
            break;
        }
        return {13, QFont::Normal};
    }();
    QFont font;
    font.setFamilies({QStringLiteral("Noto Sans CJK JP"), QStringLiteral("Noto Sans")});
    font.setPixelSize(face.pixels);
    font.setWeight(face.weight);
    return font;
}

bool looksEnabled(const QWidget* widget) {
    if (!widget || widget->isEnabled()) {
        return true;
    }
    const QWidget* covered = widget;
    while (covered && !covered->property(coveredProperty).toBool()) {
        covered = covered->isWindow() ? nullptr : covered->parentWidget();
    }
    return covered && widget->isEnabledTo(covered);
}

QColor colorFromText(const QString& text) {
    QStringView digits = text;
    while (digits.startsWith(u'#')) {
        digits = digits.sliced(1);
    }
    quint32 value = 0; // only its low 24 bits matter, so what overflows may go
    for (const QChar digit : digits) {
        const qsizetype at = QStringView(u"0123456789abcdef").indexOf(digit.toLower());
        if (at < 0) {
            break;
        }
        value = (value << 4) | static_cast<quint32>(at);
    }
    return QColor::fromRgb(static_cast<int>(value >> 16 & 0xFF), static_cast<int>(value >> 8 & 0xFF),
                           static_cast<int>(value & 0xFF));
}

} // namespace kestu
