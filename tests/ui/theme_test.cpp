// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/theme/Icons.h"
#include "ui/theme/KestuStyle.h"
#include "ui/theme/Theme.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QToolButton>

#include <array>
#include <cmath>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

TEST(Theme, ReadsColorTexts) {
    struct Case {
        QString text;
        QRgb color;
    };
    const std::array<Case, 8> cases{{
        {u"#4F7CF7"_s, 0xFF4F7CF7},
        {u"4F7CF7"_s, 0xFF4F7CF7},
        {u"##4f7cf7"_s, 0xFF4F7CF7},
        {u"4F7CF7#"_s, 0xFF4F7CF7},
        {u"#FF"_s, 0xFF0000FF},
        {u"#12g456"_s, 0xFF000012},
        {u"青"_s, 0xFF000000},
        {QString(), 0xFF000000},
    }};
    for (const Case& one : cases) {
        EXPECT_EQ(colorFromText(one.text).rgba(), one.color) << qPrintable(one.text);
    }
}

double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QColor over(const QColor& top, const QColor& ground) {
    const auto mixed = [&](float upper, float lower) {
        return upper * top.alphaF() + lower * (1 - top.alphaF());
    };
    return QColor::fromRgbF(mixed(top.redF(), ground.redF()), mixed(top.greenF(), ground.greenF()),
                            mixed(top.blueF(), ground.blueF()));
}

double contrast(const QColor& text, const QColor& ground) {
    const double a = luminance(text);
    const double b = luminance(ground);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

TEST(Theme, EveryTextCanBeRead) {
    for (const Colors& colors : {lightColors(), darkColors()}) {
        const auto holds = [&](const QColor& text, const QColor& ground) {
            EXPECT_GE(contrast(text, ground), 4.5) << qPrintable(text.name() + u" on "_s + ground.name());
        };
        for (const QColor& ground :
             {colors.window, colors.sidebar, colors.card, colors.sheet, colors.sheetCard, colors.menu}) {
            for (const QColor& text : {colors.textPrimary, colors.textSecondary, colors.textTertiary,
                                       colors.accentText, colors.orangeText, colors.redText}) {
                holds(text, ground);
            }
        }
        for (const QColor& fill : {colors.accentFill, colors.accentFillHover, colors.accentFillPressed,
                                   colors.orangeFill, colors.redFill}) {
            holds(Qt::white, fill);
        }
        holds(colors.tooltipText, colors.tooltip);
        holds(colors.textTertiary, colors.field);
        holds(colors.textPrimary, over(colors.textSelection, colors.field));
        holds(colors.textSecondary, over(colors.pill, colors.card));
        holds(colors.orangeText, over(colors.newFill, colors.card));
        holds(colors.redText, over(colors.redSoft, colors.window));
    }
}

/// The colour of an icon's strongest pixel.
QRgb inkIn(const QPixmap& pixmap) {
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    QRgb strongest = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            strongest = qAlpha(image.pixel(x, y)) > qAlpha(strongest) ? image.pixel(x, y) : strongest;
        }
    }
    return strongest;
}

TEST(Icons, FollowThePaletteAndTheMode) {
    const QIcon icon = iconOf(u"tag.fill", ink::accent);
    for (const Colors& colors : {lightColors(), darkColors()}) {
        applyTheme(*qApp, colors);
        const QPixmap pixmap = icon.pixmap(QSize(16, 16), 1.5);
        EXPECT_EQ(pixmap.size(), QSize(24, 24));
        EXPECT_EQ(inkIn(pixmap), colors.accentText.rgba());
        EXPECT_EQ(inkIn(icon.pixmap(QSize(16, 16), 1, QIcon::Disabled)), colors.textDisabled.rgba());
        EXPECT_EQ(inkIn(icon.pixmap(QSize(16, 16), 1, QIcon::Selected)), 0xFFFFFFFF);
    }
    QColor faint(Qt::red);
    faint.setAlpha(100);
    EXPECT_EQ(qAlpha(inkIn(iconPixmap(u"tag.fill", {16, 16}, faint, 1))), 100);
    EXPECT_TRUE(iconPixmap(u"no.such.icon", {16, 16}, Qt::red, 1).isNull());
}

/// How much of what an icon covers of a panel can be told from it.
double visiblePart(const QIcon& icon, int size, const QColor& panel) {
    const QImage image = icon.pixmap(QSize(size, size), 1).toImage();
    int covered = 0;
    int seen = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            covered += pixel.alpha() > 127 ? 1 : 0;
            seen += pixel.alpha() > 127 && contrast(over(pixel, panel), panel) >= 3 ? 1 : 0;
        }
    }
    return covered == 0 ? 0 : static_cast<double>(seen) / covered;
}

TEST(Icons, AreSeenInTheTrayOfEveryPanel) {
    for (const QStringView name : {u"clock.fill", u"clock.badge.xmark"}) {
        for (const int size : {16, 22, 24, 32}) {
            for (const QColor& panel : {QColor(Qt::white), QColor(0x80, 0x80, 0x80), QColor(Qt::black)}) {
                EXPECT_GE(visiblePart(trayIconOf(name, std::nullopt), size, panel), 0.3)
                    << name.toUtf8().constData() << " at " << size << " on " << panel.name().toStdString();
            }
            EXPECT_GE(visiblePart(trayIconOf(name, QColor(Qt::white)), size, QColor(0x3C3B37)), 0.7);
        }
        EXPECT_EQ(inkIn(trayIconOf(name, QColor(Qt::red)).pixmap(32)), 0xFFFF0000) << "as the tray says";
    }
}

TEST(Style, GivesButtonsTheirSizes) {
    applyTheme(*qApp, lightColors());
    QPushButton normal(u"登録"_s);
    QPushButton small(u"登録"_s);
    setSmall(&small);
    QPushButton led(iconOf(u"plus"), u"登録"_s);
    QPushButton bare(iconOf(u"chevron.left"), QString());
    QPushButton text(u"削除"_s);
    setBorderless(&text);
    QToolButton tool;
    tool.setIcon(iconOf(u"xmark"));
    EXPECT_EQ(normal.sizeHint(), QSize(normal.fontMetrics().horizontalAdvance(normal.text()) + 26, 28));
    EXPECT_EQ(small.sizeHint(), QSize(small.fontMetrics().horizontalAdvance(small.text()) + 22, 24));
    EXPECT_EQ(led.sizeHint(), normal.sizeHint() + QSize(16 + 5 - 3, 0));
    EXPECT_EQ(bare.sizeHint(), QSize(28, 28));
    EXPECT_EQ(text.sizeHint(), QSize(text.fontMetrics().horizontalAdvance(text.text()) + 12, 24));
    EXPECT_EQ(tool.sizeHint(), QSize(24, 24));
}

TEST(Style, ReturnPressesAButtonOnceAndLeavesChecksAlone) {
    QPushButton push(u"登録"_s);
    QToolButton tool;
    QPushButton check(u"集中"_s);
    check.setCheckable(true);
    for (const auto& [button, presses] :
         {std::pair<QAbstractButton*, int>{&push, 1}, {&tool, 1}, {&check, 0}}) {
        int count = 0;
        QObject::connect(button, &QAbstractButton::clicked, [&count] { ++count; });
        button->ensurePolished();
        for (const bool isRepeated : {false, true, true}) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, u"\r"_s, isRepeated);
            QApplication::sendEvent(button, &press);
        }
        EXPECT_EQ(count, presses);
        EXPECT_FALSE(button->isDown());
    }
    QPointer<QPushButton> passing = new QPushButton(u"削除"_s);
    passing->ensurePolished();
    QObject::connect(passing, &QAbstractButton::pressed, [&] { delete passing; });
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Enter, Qt::KeypadModifier);
    QApplication::sendEvent(passing, &press);
    EXPECT_FALSE(passing);
}

TEST(Style, WhatASheetCoversLooksEnabled) {
    applyTheme(*qApp, darkColors());
    for (const bool covered : {true, false}) {
        QWidget window;
        QLineEdit field(&window);
        field.ensurePolished();
        window.setProperty(coveredProperty, covered);
        window.setEnabled(false);
        const QColor text = field.palette().color(QPalette::Disabled, QPalette::Text);
        EXPECT_EQ(text, covered ? darkColors().textPrimary : darkColors().textDisabled);
    }
}

} // namespace
} // namespace kestu
