// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Records.h"

#include <gtest/gtest.h>

namespace kestu {
namespace {

TEST(Sample, DomainIsTheLowerCaseHostWithoutOneLeadingWww) {
    const struct {
        std::optional<QString> url;
        std::optional<QString> domain;
    } rows[] = {
        {std::nullopt, std::nullopt},
        {QString(), std::nullopt},
        {QStringLiteral("about:blank"), std::nullopt},
        {QStringLiteral("file:///home/me/a.html"), std::nullopt},
        {QStringLiteral("http://[broken"), std::nullopt},
        {QStringLiteral("https://WWW.Example.JP:8080/www.?q=www."), QStringLiteral("example.jp")},
        {QStringLiteral("https://www2.example.jp/"), QStringLiteral("www2.example.jp")},
        {QStringLiteral("https://www.www.example.jp/"), QStringLiteral("www.example.jp")},
        {QStringLiteral("http://localhost:3000"), QStringLiteral("localhost")},
        {QStringLiteral("https://xn--wgv71a119e.jp/"), QStringLiteral("xn--wgv71a119e.jp")},
        {QStringLiteral("http://[::1]/"), QStringLiteral("::1")},
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
