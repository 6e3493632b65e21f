// SPDX-License-Identifier: GPL-3.0-or-later
//
// The colours, and that what is drawn follows them.
#include "ui/theme/Icons.h"
#include "ui/theme/KestuStyle.h"

#include <QApplication>
#include <QPainter>
#include <QPushButton>

#include <gtest/gtest.h>

#include <cmath>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

TEST(ColorFromText, ReadsTheLeadingHexadecimalDigits) {
    const std::pair<QString, QRgb> rows[] = {
        {u"#4F7CF7"_s, 0xFF4F7CF7},  {u"4f7cf7"_s, 0xFF4F7CF7}, {u"##4F7CF7"_s, 0xFF4F7CF7},
        {u"#4F7CF7#"_s, 0xFF4F7CF7}, {u"#7CF7"_s, 0xFF007CF7},  {u"#AB4F7CF7"_s, 0xFF4F7CF7},
        {u"12x456"_s, 0xFF000012},   {u"x"_s, 0xFF000000},      {QString(), 0xFF000000},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(colorFromText(text).rgba(), expected) << text.toStdString();
    }
}

double luminance(const QColor& color) {
    const auto linear = [](float part) {
        return part <= 0.03928F ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// `top` as it shows over `ground`.
QColor over(const QColor& top, const QColor& ground) {
    const auto mixed = [&](float a, float b) { return a * top.alphaF() + b * (1 - top.alphaF()); };
    return QColor::fromRgbF(mixed(top.redF(), ground.redF()), mixed(top.greenF(), ground.greenF()),
                            mixed(top.blueF(), ground.blueF()));
}

double contrast(const QColor& text, const QColor& ground) {
    const double one = luminance(text) + 0.05;
    const double other = luminance(ground) + 0.05;
    return std::max(one, other) / std::min(one, other);
}

TEST(Colors, KeepEveryTextReadable) {
    for (const Colors* colors : {&lightColors(), &darkColors()}) {
        for (const QColor& ground : {colors->window, colors->sidebar, colors->card, colors->sheet,
                                     colors->sheetCard, colors->menu}) {
            for (const QColor& text : {colors->textPrimary, colors->textSecondary, colors->textTertiary,
                                       colors->accentText, colors->orangeText, colors->redText}) {
                EXPECT_GE(contrast(text, ground), 4.5)
                    << text.name().toStdString() << " on " << ground.name().toStdString();
            }
        }
        for (const QColor& fill : {colors->accentFill, colors->accentFillHover, colors->accentFillPressed,
                                   colors->redFill, colors->orangeFill}) {
            EXPECT_GE(contrast(Qt::white, fill), 4.5) << fill.name().toStdString();
        }
        EXPECT_GE(contrast(colors->textSecondary, over(colors->bannerFill, colors->window)), 4.5);
        EXPECT_GE(contrast(colors->textPrimary, colors->control), 4.5);
        EXPECT_GE(contrast(colors->redText, colors->control), 4.5);
        EXPECT_GE(contrast(colors->tooltipText, colors->tooltip), 4.5);
    }
}

TEST(Icons, FollowThePaletteAlsoAfterTheyWereMade) {
    const QIcon icon = iconOf(u"minus");
    for (const Colors* colors : {&lightColors(), &darkColors()}) {
        applyTheme(*qApp, *colors);
        const auto middle = [&](QIcon::Mode mode) {
            return icon.pixmap(QSize(48, 48), 1.0, mode).toImage().pixelColor(24, 24).rgb();
        };
        EXPECT_EQ(middle(QIcon::Normal), colors->textPrimary.rgb());
        EXPECT_EQ(middle(QIcon::Disabled), colors->textDisabled.rgb());
    }
    applyTheme(*qApp, lightColors());
    EXPECT_EQ(icon.pixmap(QSize(16, 16), 2.0).size(), QSize(32, 32)) << "sharp at every scale";
}

TEST(PushButtons, HaveTheirHeightsAndTheirFill) {
    QPushButton button(u"保存"_s);
    EXPECT_EQ(button.sizeHint().height(), metrics::controlHeight);
    QPushButton smallButton(u"編集"_s);
    setSmall(&smallButton);
    EXPECT_EQ(smallButton.sizeHint().height(), metrics::smallControlHeight);
    const auto fill = [&] { return button.grab().toImage().pixelColor(5, button.height() / 2); };
    button.resize(button.sizeHint());
    EXPECT_EQ(fill(), lightColors().control);
    button.setDefault(true);
    EXPECT_EQ(fill(), lightColors().accentFill);
    setRole(&button, ButtonRole::destructiveFilled);
    EXPECT_EQ(fill(), lightColors().redFill);
    button.setEnabled(false);
    EXPECT_EQ(fill(), lightColors().controlPressed);
}

} // namespace
} // namespace kestu
