// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/Resolution.h"
#include "classify/RuleMatcher.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

Rule ruleFor(RuleId id, CategoryKind kind, RuleField field, RuleOperator op, const QString& value) {
    return {
        .id = id, .target = {.kind = kind, .id = id}, .field = field, .op = op, .value = value, .sort = id};
}

Activity activityOf(const QString& app, const QString& title, const std::optional<QString>& url = {}) {
    Activity activity;
    activity.end = instantAt(60);
    activity.bundleId = u"jp.example.Tool"_s;
    activity.appName = app;
    activity.title = title;
    activity.url = url;
    activity.domain = url ? std::optional(u"example.jp"_s) : std::nullopt;
    return activity;
}

TEST(RuleMatching, TestsOneFieldWithoutCaseAndUpToCanonicalEquivalence) {
    using enum RuleField;
    using enum RuleOperator;
    const Activity mail =
        activityOf(u"MAIL"_s, u"Caf\u00e9 会議のメモ İstanbul"_s, u"https://example.jp/A"_s);
    const struct {
        RuleField field;
        RuleOperator op;
        QString value;
        bool matches;
    } rows[] = {
        {app, equals, u" \u3000Mail\t"_s, true},   {app, equals, u"mail viewer"_s, false},
        {app, equals, u"JP.EXAMPLE.TOOL"_s, true}, {app, prefix, u"jp."_s, true},
        {app, prefix, u"tool"_s, false},           {app, contains, u"ool"_s, true},
        {title, contains, u"CAFE\u0301"_s, true},  {title, contains, u"i\u0307stanbul"_s, true},
        {title, contains, u"会議"_s, true},        {title, prefix, u"会議"_s, false},
        {title, equals, u"会議"_s, false},         {title, contains, u"mail"_s, false},
        {title, contains, u"メモ\n"_s, false}, // line breaks are not trimmed
        {title, contains, u" \u3000\t"_s, false},  {domain, prefix, u"example."_s, true},
        {url, contains, u"JP/a"_s, true},          {url, contains, QString(), false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(matches(ruleFor(1, CategoryKind::tag, row.field, row.op, row.value), mail), row.matches)
            << row.value.toStdString();
    }
    for (const RuleOperator op : allRuleOperators) {
        EXPECT_FALSE(matches(ruleFor(1, CategoryKind::tag, url, op, u"h"_s), activityOf({}, {})));
    }
}

TEST(Resolution, AHandSetProjectBeatsRulesTheFirstRuleBeatsLaterOnesAndTagsAddUp) {
    const std::vector rules{
        ruleFor(1, CategoryKind::project, RuleField::title, RuleOperator::contains, u"x"_s),
        ruleFor(2, CategoryKind::tag, RuleField::app, RuleOperator::equals, u"Editor"_s),
        ruleFor(3, CategoryKind::project, RuleField::app, RuleOperator::equals, u"editor"_s),
        ruleFor(4, CategoryKind::project, RuleField::title, RuleOperator::contains, u"メモ"_s),
        ruleFor(5, CategoryKind::tag, RuleField::title, RuleOperator::contains, u"メモ"_s),
    };
    Activity activity = activityOf(u"editor"_s, u"メモ"_s);
    activity.tagIds = {5, 9};
    const ResolvedActivity byRule = resolve(activity, rules);
    EXPECT_EQ(byRule, (ResolvedActivity{activity, 3, false, {2, 5, 9}, {2, 5}}));
    activity.projectId = 77; // need not exist any more
    EXPECT_EQ(resolve(activity, rules), (ResolvedActivity{activity, 77, true, {2, 5, 9}, {2, 5}}));
    EXPECT_EQ(resolve(activityOf(u"a"_s, u"b"_s), {}).projectId, std::nullopt);
}

TEST(Resolution, OfManyGivesTheAnswersOfEachRuleByItself) {
    std::mt19937 random(20261118);
    const QStringList letters{u"a"_s, u"A"_s, u"会"_s, u"e\u0301"_s, u"\u00c9"_s, u"i"_s, u"İ"_s, u" "_s};
    const auto text = [&](int most) {
        QString made;
        for (int left = std::uniform_int_distribution(0, most)(random); left > 0; --left) {
            made += letters[std::uniform_int_distribution<qsizetype>(0, letters.size() - 1)(random)];
        }
        return made;
    };
    const auto pick = [&](const auto& cases) { return cases[random() % cases.size()]; };
    for (int round = 0; round < 40; ++round) {
        std::vector<Rule> rules;
        for (RuleId id = 1; id <= 25; ++id) {
            const auto kind = random() % 2 == 0 ? CategoryKind::project : CategoryKind::tag;
            rules.push_back(ruleFor(id, kind, pick(allRuleFields), pick(allRuleOperators), text(3)));
        }
        std::vector<Activity> activities;
        activities.reserve(60);
        for (int i = 0; i < 60; ++i) {
            activities.push_back(
                activityOf(text(4), text(6), random() % 2 == 0 ? std::optional(text(5)) : std::nullopt));
        }
        const auto items = resolved(activities, rules);
        for (std::size_t i = 0; i < activities.size(); ++i) {
            ResolvedActivity expected{activities[i], std::nullopt, false, {}, {}};
            for (const Rule& rule : rules) {
                if (matches(rule, activities[i]) && rule.target.kind == CategoryKind::tag) {
                    expected.tagIds.insert(rule.id);
                    expected.ruleTagIds.insert(rule.id);
                } else if (matches(rule, activities[i]) && !expected.projectId) {
                    expected.projectId = rule.id;
                }
            }
            ASSERT_EQ(items[i], expected) << round << ": " << activities[i].title.toStdString();
        }
    }
}

TEST(Clipping, CutsToTheRangeAndDropsWhatIsOutsideOrNoTime) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        double start, end;
        std::optional<std::pair<double, double>> kept; // of the range from 100 to 200
    } rows[] = {
        {50, 120, {{100, 120}}}, {150, 900, {{150, 200}}}, {-infinity, infinity, {{100, 200}}},
        {50, 100, {}},           {200, 201, {}},           {150, 150, {}},
        {180, 120, {}},          {nan, 150, {}},
    };
    for (const auto& row : rows) {
        Activity activity;
        activity.start = instantAt(row.start);
        activity.end = instantAt(row.end);
        const auto kept = clipped(std::array{activity}, {.start = instantAt(100), .end = instantAt(200)});
        ASSERT_EQ(kept.size(), row.kept ? 1U : 0U) << row.start;
        if (row.kept) {
            EXPECT_EQ(kept[0].start, instantAt(row.kept->first));
            EXPECT_EQ(kept[0].end, instantAt(row.kept->second));
        }
    }
}

TEST(SuggestionImpacts, SumWhatMatchesWhetherOrNotItIsAssigned) {
    RuleSuggestion one{.id = 4,
                       .kind = CategoryKind::tag,
                       .targetName = {},
                       .field = RuleField::title,
                       .op = RuleOperator::contains,
                       .value = u"メモ"_s,
                       .reason = {},
                       .createdAt = {}};
    RuleSuggestion none = one;
    none.id = 5;
    none.value = u"ない"_s;
    std::vector activities(3, activityOf(u"a"_s, u"メモ"_s));
    activities[1].projectId = 7;
    activities[2].end = instantAt(-60);
    EXPECT_EQ(suggestionImpacts(std::array{one, none}, activities),
              (QHash<SuggestionId, double>{{4, 120}, {5, 0}}));
}

} // namespace
} // namespace kestu
