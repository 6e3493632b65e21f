// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/WindowNews.h"

#include "support/PrivateBus.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::waitUntil;

ToldWindow window(const QString& key, const QString& title, Moment at = Moment::clock::now()) {
    return {.key = key, .facts = {.wmClass = key}, .title = title, .at = at};
}

TEST(WindowNewsTest, KeepsTheWindowThroughTheMomentWithoutOne) {
    WindowNews news;
    const QSignalSpy fronts(&news, &WindowNews::frontChanged);
    news.take(window(u"a"_s, u"A"_s));
    news.take(std::nullopt);
    EXPECT_TRUE(news.front());
    news.take(window(u"b"_s, u"B"_s));
    EXPECT_TRUE(waitUntil([&] { return fronts.count() == 2; }));
    EXPECT_EQ(news.front()->title, u"B");
    EXPECT_FALSE(waitUntil([&] { return fronts.count() > 2; }, 100)) << "the moment became news";

    news.take(std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return !news.front(); }));
    EXPECT_TRUE(waitUntil([&] { return fronts.count() == 3; }));
}

TEST(WindowNewsTest, SaysWhenWindowAndTitleCameAndBelievesNoTimeOutsideItsOwn) {
    WindowNews news;
    const Moment begin = Moment::clock::now();
    news.begin();
    EXPECT_TRUE(waitUntil([&] { return Moment::clock::now() > begin + 30ms; }));
    news.take(window(u"a"_s, u"A"_s, begin + 10ms));
    EXPECT_EQ(news.front()->since, begin + 10ms);
    news.take(window(u"a"_s, u"A2"_s, begin + 20ms));
    EXPECT_EQ(news.front()->since, begin + 10ms);
    EXPECT_EQ(news.front()->titledSince, begin + 20ms);
    news.take(window(u"a"_s, u"A2"_s, begin + 25ms));
    EXPECT_EQ(news.front()->titledSince, begin + 20ms) << "the same title is no news";
    news.take(window(u"b"_s, u"B"_s, begin - 1h));
    EXPECT_GE(news.front()->since, begin);
    EXPECT_LT(news.front()->since, begin + 10ms);
    news.take(window(u"c"_s, u"C"_s, begin + 1h));
    EXPECT_LE(news.front()->since, Moment::clock::now());
    EXPECT_GT(news.front()->since, begin + 25ms);
}

TEST(WindowNewsTest, TurnsAFloodIntoAFewNewsAndKeepsTheLastWord) {
    WindowNews news;
    const QSignalSpy fronts(&news, &WindowNews::frontChanged);
    const QSignalSpy titles(&news, &WindowNews::titleChanged);
    const Moment begin = Moment::clock::now();
    for (int i = 0; i < 1000; ++i) {
        news.take(window(i % 2 == 0 ? u"a"_s : u"b"_s, QString::number(i)));
    }
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Moment::clock::now() - begin);
    EXPECT_LE(fronts.count() + titles.count(), 1 + took / 50ms);
    EXPECT_EQ(news.front()->title, u"999");
    EXPECT_TRUE(waitUntil([&] { return fronts.count() + titles.count() >= 2; }))
        << "the last word is not told";
}

} // namespace
} // namespace kestu
