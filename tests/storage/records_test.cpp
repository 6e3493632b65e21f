// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Records.h"

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

TEST(Sample, DomainIsTheLowerCaseHostWithoutOneLeadingWww) {
    const struct {
        std::optional<QString> url;
        std::optional<QString> domain;
    } rows[] = {
        {std::nullopt, std::nullopt},
        {QString(), std::nullopt},
        {u"about:blank"_s, std::nullopt},
        {u"file:///home/me/a.html"_s, std::nullopt},
        {u"http://[broken"_s, std::nullopt},
        {u"https://WWW.Example.JP:8080/www.?q=www."_s, u"example.jp"_s},
        {u"https://www2.example.jp/"_s, u"www2.example.jp"_s},
        {u"https://www.www.example.jp/"_s, u"www.example.jp"_s},
        {u"http://localhost:3000"_s, u"localhost"_s},
        {u"https://xn--wgv71a119e.jp/"_s, u"xn--wgv71a119e.jp"_s},
        {u"http://[::1]/"_s, u"::1"_s},
    };
    for (const auto& row : rows) {
        const Sample sample{.bundleId = {}, .appName = {}, .title = {}, .url = row.url};
        EXPECT_EQ(sample.domain(), row.domain) << row.url.value_or(QString()).toStdString();
    }
}

TEST(RawStrings, ReadBackAsTheirCaseAndUnknownOnesAsTheFirst) {
    for (const RuleField field : allRuleFields) {
        EXPECT_EQ(ruleFieldFromRaw(rawString(field)), field);
    }
    for (const RuleOperator op : allRuleOperators) {
        EXPECT_EQ(ruleOperatorFromRaw(rawString(op)), op);
    }
    EXPECT_EQ(categoryKindFromRaw(u"tag"), CategoryKind::tag);
    for (const QStringView unknown : {u"", u"Tag", u"tag ", u"URL", u"Equals", u"regex"}) {
        EXPECT_EQ(categoryKindFromRaw(unknown), CategoryKind::project);
        EXPECT_EQ(ruleFieldFromRaw(unknown), RuleField::app);
        EXPECT_EQ(ruleOperatorFromRaw(unknown), RuleOperator::contains);
    }
}

} // namespace
} // namespace kestu
