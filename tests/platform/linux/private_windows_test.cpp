// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/PrivateWindows.h"

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

TEST(PrivateWindow, IsToldByWhatStandsAroundTheBrowsersOwnName) {
    const std::pair<QString, bool> rows[] = {
        // As the browsers spell it: Firefox in English, Japanese, Russian; Chromium in English, Japanese,
        // German.
        {u"Page — Mozilla Firefox Private Browsing"_s, true},
        {u"Mozilla Firefox Private Browsing"_s, true},
        {u"ページ — Mozilla Firefox プライベートブラウジング"_s, true},
        {u"Page — Приватный просмотр Mozilla Firefox"_s, true},
        {u"Page - Chromium (Incognito)"_s, true},
        {u"ページ - Chromium（シークレット モード）"_s, true},
        {u"Page\u00a0– Google Chrome (anonym)"_s, true},
        {u"Page - Google Chrome (Guest)"_s, true},
        {u"Page - [InPrivate] - Microsoft\u200b Edge"_s, true},
        {u"New Tab - Brave (Private)"_s, true},
        {u"ページ - Vivaldi（プライベートウィンドウ）"_s, true},
        {u"ページ - シークレット モード - Google Chrome"_s, true},
        // Ordinary ones, also with pages about just that.
        {u"Page — Mozilla Firefox"_s, false},
        {u"Mozilla Firefox"_s, false},
        {u"Page — Work — Firefox Developer Edition"_s, false},
        {u"Private Browsing — Mozilla Firefox"_s, false},
        {u"Incognito - Chromium"_s, false},
        {u"Firefox プライベートブラウジングとは - Google Chrome"_s, false},
        {u"Page - Chromium - Work"_s, false},
        {u"Page - Google Chrome dev"_s, false},
        {u"Page - Microsoft\u200b Edge"_s, false},
        {u"シークレット"_s, false},
        {QString(), false},
    };
    for (const auto& [name, isPrivate] : rows) {
        EXPECT_EQ(isPrivateWindow(name), isPrivate) << name.toStdString();
    }
}

} // namespace
} // namespace kestu
