// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Records.h"

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

TEST(Sample, DomainIsTheLowerCaseHostWithoutOneLeadingWww) {
    const std::pair<std::optional<QString>, std::optional<QString>> rows[] = {
        {std::nullopt, std::nullopt},
        {u""_s, std::nullopt},
        {u"file:///home/me/a.html"_s, std::nullopt},
        {u"http://[broken"_s, std::nullopt},
        {u"https://WWW.Example.JP:8080/www.?q=www."_s, u"example.jp"_s},
        {u"https://www2.example.jp/"_s, u"www2.example.jp"_s},
        {u"https://www.www.example.jp/"_s, u"www.example.jp"_s},
        {u"https://xn--wgv71a119e.jp/"_s, u"xn--wgv71a119e.jp"_s},
    };
    for (const auto& [url, domain] : rows) {
        EXPECT_EQ((Sample{{}, {}, {}, url}.domain()), domain) << url.value_or(QString()).toStdString();
    }
}

// Other programs write these words into the same file.
TEST(RawStrings, AreTheWordsInTheFile) {
    for (const QStringView raw : {u"app", u"title", u"domain", u"url"}) {
        EXPECT_EQ(rawString(ruleFieldFromRaw(raw)), raw);
    }
    for (const QStringView raw : {u"contains", u"equals", u"prefix"}) {
        EXPECT_EQ(rawString(ruleOperatorFromRaw(raw)), raw);
    }
    EXPECT_EQ(rawString(categoryKindFromRaw(u"tag")), u"tag");
}

} // namespace
} // namespace kestu
