// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/StoreProcess.h"
#include "support/TemporaryStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::failureOf;
using test::TemporaryStore;

const QString blue = u"#2D9CDB"_s;
constexpr RuleTarget firstProject{CategoryKind::project, 1};
constexpr RuleTarget firstTag{CategoryKind::tag, 1};

/// Everything that accepting a suggestion may touch.
std::string categoriesAndRules(const TemporaryStore& store) {
    return store.dump(u"SELECT 'project', id, name, color, sort FROM project"_s, 5) + '\n' +
           store.dump(u"SELECT 'tag', id, name, color, sort FROM tag"_s, 5) + '\n' +
           store.dump(u"SELECT * FROM rule"_s, 7) + '\n' + store.dump(u"SELECT * FROM rule_suggestion"_s, 8);
}

/// Leaves the suggestions `values`: kind, category, field and operator each.
void suggest(const TemporaryStore& store, const QString& values) {
    store.execute(u"INSERT INTO rule_suggestion (target_kind, target_name, field, op, value, created_at) "
                  "SELECT *, 'v', 12.5 FROM (VALUES "_s +
                  values + u')');
}

TEST(Categories, TakeTheNextSortAndKeepItWhenEdited) {
    const TemporaryStore store;
    const auto insert = [&](const QString& name) {
        return store->insertCategory(CategoryKind::project, name, blue);
    };
    insert(u"a"_s);
    insert(u"b"_s);
    store->deleteCategory(CategoryKind::project, insert(u"c"_s));
    insert(u" d "_s);
    store->updateCategory(CategoryKind::project, 2, u"B"_s, u"#000000"_s);
    store.execute(u"INSERT INTO project VALUES (20, 'e', '', 0)"_s);
    EXPECT_EQ(store->projects(), (std::vector<Project>{{1, u"a"_s, blue, 0},
                                                       {20, u"e"_s, {}, 0},
                                                       {2, u"B"_s, u"#000000"_s, 1},
                                                       {3, u" d "_s, blue, 2}}));
    EXPECT_TRUE(store->tags().empty());
}

TEST(Categories, AreFoundByNameWithoutCaseAndSurroundingBlanks) {
    const TemporaryStore store;
    store.execute(u"INSERT INTO tag (id, name, color) VALUES (1, '　Ｄev 会議 ', ''), "
                  "(2, 'line' || char(10), ''), (3, 'ＤEV 会議', '')"_s);
    const std::pair<QString, std::optional<RowId>> rows[] = {
        {u"ｄEV 会議"_s, 1}, {u"\t\u3000ｄev 会議\u00a0"_s, 1}, {u"dev 会議"_s, {}}, {u"line"_s, {}},
        {u" LINE\n"_s, 2},
    };
    for (const auto& [name, id] : rows) {
        EXPECT_EQ(store->findCategory(CategoryKind::tag, name), id) << name.toStdString();
        EXPECT_FALSE(store->findCategory(CategoryKind::project, name));
    }
}

TEST(Categories, AreMadeWithTrimmedNameAndThePalettesNextColour) {
    const TemporaryStore store;
    for (const char* color : {"#4F7CF7", "#F2994A", "#27AE60", "#EB5757", "#9B51E0", "#2D9CDB", "#F2C94C",
                              "#828282", "#4F7CF7", "#F2994A"}) {
        const QString name = u"t%1"_s.arg(store->tags().size());
        const RowId id = store->findOrCreateCategory(CategoryKind::tag, u'\u3000' + name + u'\t');
        EXPECT_EQ(store->tags().back(), (Tag{id, name, QString::fromUtf8(color), id - 1}));
    }
    EXPECT_EQ(store->findOrCreateCategory(CategoryKind::tag, u" T3"_s, blue), 4);
    EXPECT_EQ(store->tags().at(3).colorHex, u"#EB5757"_s);
    store->findOrCreateCategory(CategoryKind::tag, u"new"_s, u"#123456"_s);
    EXPECT_EQ(store->tags().back().colorHex, u"#123456"_s);
}

TEST(Rules, AreEditedInPlaceRefusedWithoutATargetAndGoWithIt) {
    const TemporaryStore store;
    store->insertCategory(CategoryKind::project, u"p"_s, blue);
    store->insertCategory(CategoryKind::tag, u"t"_s, blue);
    for (const char* value : {"a", "b", "c"}) {
        store->insertRule(firstProject, RuleField::url, RuleOperator::prefix, QString::fromUtf8(value));
    }
    const Rule untouched{2, firstProject, RuleField::url, RuleOperator::prefix, u"b"_s, 1};
    Rule edited{1, firstTag, RuleField::domain, RuleOperator::equals, u"w"_s, 99};
    store->updateRule(edited);
    edited.sort = 0; // is not written
    store->deleteRule(3);
    EXPECT_EQ(store->rules(), (std::vector{edited, untouched}));
    EXPECT_THAT(failureOf([&] {
                    store->insertRule({CategoryKind::tag, 7}, RuleField::app, RuleOperator::equals, {});
                }),
                testing::StartsWith("FOREIGN KEY constraint failed — INSERT INTO rule"));
    store->deleteCategory(CategoryKind::tag, 1);
    EXPECT_EQ(store->rules(), std::vector{untouched});
    store->deleteCategory(CategoryKind::project, 1);
    EXPECT_TRUE(store->rules().empty());
}

TEST(Suggestions, BecomeRulesOfANewOrAnExistingCategory) {
    const TemporaryStore store;
    store->insertCategory(CategoryKind::tag, u"Review"_s, blue);
    suggest(store, u"('tag', '　review ', 'url', 'prefix'), ('Tag', ' 新しい ', 'window', 'regex'), "
                   "('tag', 'left', 'app', 'equals')"_s);
    const std::vector<RuleSuggestion> shown = store->suggestions();
    EXPECT_EQ(store->acceptSuggestion(shown.at(0)), 1);
    EXPECT_EQ(store->acceptSuggestion(shown.at(1)), 2); // unknown words read as the first of their kind
    store->deleteSuggestion(shown.at(2));
    EXPECT_EQ(failureOf([&] { store->acceptSuggestion(shown.at(1)); }), "提案が見つかりません（id: 2）");
    EXPECT_EQ(failureOf([&] { store->deleteSuggestion(shown.at(2)); }), "提案が見つかりません（id: 3）");
    EXPECT_EQ(categoriesAndRules(store), "project|1|新しい|#4F7CF7|0\ntag|1|Review|#2D9CDB|0\n"
                                         "1|∅|1|url|prefix|v|0\n2|1|∅|app|contains|v|1\n");
}

TEST(Suggestions, ThatFailInAnyStepChangeNothing) {
    const TemporaryStore store;
    suggest(store, u"('project', 'new', 'url', 'prefix')"_s);
    const RuleSuggestion shown = store->suggestions().at(0);
    const std::string before = categoriesAndRules(store);
    for (const QString& event :
         {u"INSERT ON project"_s, u"INSERT ON rule"_s, u"DELETE ON rule_suggestion"_s}) {
        store.execute(u"DROP TRIGGER IF EXISTS refuse; CREATE TRIGGER refuse AFTER "_s + event +
                      u" BEGIN SELECT RAISE(ABORT, 'refused'); END"_s);
        EXPECT_THAT(failureOf([&] { store->acceptSuggestion(shown); }), testing::StartsWith("refused — "));
        EXPECT_EQ(categoriesAndRules(store), before) << event.toStdString();
    }
}

TEST(Suggestions, ThatWereReplacedUnderTheirIdAreNeitherAcceptedNorDeleted) {
    TemporaryStore store;
    test::StoreProcess other(store.path);
    suggest(store, u"('project', 'new', 'url', 'prefix')"_s);
    const RuleSuggestion shown = store->suggestions().at(0);
    for (const char* change : {"target_kind = 'tag'", "target_name = 'else'", "field = 'app'",
                               "op = 'equals'", "value = 'w'", "reason = 'why'", "created_at = 13"}) {
        other.execute(u"DELETE FROM rule_suggestion"_s);
        other.execute(
            u"INSERT INTO rule_suggestion (id, target_kind, target_name, field, op, value, created_at) "
            "VALUES (1, 'project', 'new', 'url', 'prefix', 'v', 12.5)"_s);
        other.execute(u"UPDATE rule_suggestion SET "_s + QString::fromUtf8(change));
        const std::string before = categoriesAndRules(store);
        EXPECT_EQ(failureOf([&] { store->acceptSuggestion(shown); }), "提案が見つかりません（id: 1）");
        EXPECT_EQ(failureOf([&] { store->deleteSuggestion(shown); }), "提案が見つかりません（id: 1）");
        EXPECT_EQ(categoriesAndRules(store), before) << change;
    }
    store->deleteSuggestion(store->suggestions().at(0));
    EXPECT_TRUE(store->suggestions().empty());
}

TEST(DailyNotes, AreTrimmedAndClearedWhenNothingIsLeft) {
    TemporaryStore store;
    const QString day = u"2026-03-05"_s;
    const auto save = [&](const QString& summary) {
        store.now += Seconds(1);
        store->saveDailyNote(day, summary, u"user"_s);
    };
    store.execute(u"INSERT INTO daily_note VALUES ('2026-03-05', 'x', 'assistant', 0)"_s);
    save(u" \u3000実装\r\n  と試験 \u2028\n"_s);
    EXPECT_EQ(store->dailyNote(day), (DailyNote{day, u"実装\r\n  と試験"_s, u"user"_s, store.now}));
    save(u"\t\n\u3000\r"_s);
    EXPECT_FALSE(store->dailyNote(day));
    save(u"二度目"_s);
    EXPECT_EQ(store->dailyNote(day), (DailyNote{day, u"二度目"_s, u"user"_s, store.now}));
    EXPECT_FALSE(store->dailyNote(u"2026-03-06"_s));
    save({});
    EXPECT_FALSE(store->dailyNote(day));
}

} // namespace
} // namespace kestu
