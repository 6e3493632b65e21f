// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/PrivateWindows.h"

#include <gtest/gtest.h>

namespace kestu {
namespace {

struct NamedWindow {
    QString name;
    bool isPrivate;
};

TEST(PrivateWindow, IsToldByWhatStandsAroundTheBrowsersOwnName) {
    const NamedWindow rows[] = {
        // As the browsers spell it: Firefox in English, Japanese, Russian; Chromium in English, Japanese,
        // German.
        {QStringLiteral("Page — Mozilla Firefox Private Browsing"), true},
        {QStringLiteral("Mozilla Firefox Private Browsing"), true},
        {QStringLiteral("ページ — Mozilla Firefox プライベートブラウジング"), true},
        {QStringLiteral("Page — Приватный просмотр Mozilla Firefox"), true},
        {QStringLiteral("Page - Chromium (Incognito)"), true},
        {QStringLiteral("ページ - Chromium（シークレット モード）"), true},
        {QStringLiteral("Page\u00a0– Google Chrome (anonym)"), true},
        {QStringLiteral("Page - Google Chrome (Guest)"), true},
        {QStringLiteral("Page - [InPrivate] - Microsoft\u200b Edge"), true},
        {QStringLiteral("New Tab - Brave (Private)"), true},
        {QStringLiteral("ページ - Vivaldi（プライベートウィンドウ）"), true},
        {QStringLiteral("ページ - シークレット モード - Google Chrome"), true},
        // Ordinary ones, also with pages about just that.
        {QStringLiteral("Page — Mozilla Firefox"), false},
        {QStringLiteral("Mozilla Firefox"), false},
        {QStringLiteral("Page — Work — Firefox Developer Edition"), false},
        {QStringLiteral("Private Browsing — Mozilla Firefox"), false},
        {QStringLiteral("Incognito - Chromium"), false},
        {QStringLiteral("Firefox プライベートブラウジングとは - Google Chrome"), false},
        {QStringLiteral("Page - Chromium - Work"), false},
        {QStringLiteral("Page - Google Chrome dev"), false},
        {QStringLiteral("Page - Microsoft\u200b Edge"), false},
        {QStringLiteral("シークレット"), false},
        {QString(), false},
    };
    for (const auto& [name, isPrivate] : rows) {
        EXPECT_EQ(isPrivateWindow(name), isPrivate) << name.toStdString();
    }
}

} // namespace
} // namespace kestu
