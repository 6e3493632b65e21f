// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TemporaryStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::dump;
using test::failureOf;
using test::TemporaryStore;

const QString blue = u"#2D9CDB"_s;

/// Everything that accepting a suggestion may touch.
std::string categoriesAndRules(const TemporaryStore& store) {
    return dump(store.database(), u"SELECT 'project', id, name, color, sort FROM project"_s, 5) + '\n' +
           dump(store.database(), u"SELECT 'tag', id, name, color, sort FROM tag"_s, 5) + '\n' +
           dump(store.database(), u"SELECT * FROM rule"_s, 7) + '\n' +
           dump(store.database(), u"SELECT * FROM rule_suggestion"_s, 8);
}

void suggest(const TemporaryStore& store, const char* kind, const char* target, const char* field,
             const char* op) {
    store.database().run(u"INSERT INTO rule_suggestion (target_kind, target_name, field, op, "
                         "value, created_at) VALUES (?, ?, ?, ?, 'v', 12.5)"_s,
                         {QString::fromUtf8(kind), QString::fromUtf8(target), QString::fromUtf8(field),
                          QString::fromUtf8(op)});
}

TEST(Categories, TakeTheNextSortAndKeepItWhenEdited) {
    const TemporaryStore store;
    Repository& repository = *store.repository;
    const auto insert = [&](const char* name) {
        return repository.insertCategory(CategoryKind::project, QString::fromUtf8(name), blue);
    };
    insert("a");
    insert("b");
    repository.deleteCategory(CategoryKind::project, insert("c"));
    insert(" d ");
    repository.updateCategory(CategoryKind::project, 2, u"B"_s, u"#000000"_s);
    store.database().executeScript(u"INSERT INTO project VALUES (20, 'e', '', 0)"_s);
    std::vector<std::string> read;
    for (const Project& project : repository.projects()) {
        read.push_back((project.name + project.colorHex + QString::number(project.sort)).toStdString());
    }
    EXPECT_EQ(read, (std::vector<std::string>{"a#2D9CDB0", "e0", "B#0000001", " d #2D9CDB2"}));
    EXPECT_TRUE(repository.tags().empty());
}

TEST(Categories, AreFoundByNameWithoutCaseAndSurroundingBlanks) {
    const TemporaryStore store;
    Repository& repository = *store.repository;
    store.database().executeScript(
        u"INSERT INTO tag (id, name, color) VALUES (1, '　Ｄev 会議 ', ''), (2, 'line' || char(10), ''), "
        "(3, 'ＤEV 会議', '')"_s);
    const struct {
        const char* name;
        std::optional<RowId> id;
    } rows[] = {
        {"ｄEV 会議", 1}, {"\t\u3000ｄev 会議\u00a0", 1}, {"dev 会議", {}}, {"line", {}}, {" LINE\n", 2},
        {"", {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(repository.findCategory(CategoryKind::tag, QString::fromUtf8(row.name)), row.id)
            << row.name;
        EXPECT_FALSE(repository.findCategory(CategoryKind::project, QString::fromUtf8(row.name)));
    }
}

TEST(Categories, AreMadeWithTrimmedNameAndThePalettesNextColour) {
    const TemporaryStore store;
    Repository& repository = *store.repository;
    const char* const palette[] = {"#4F7CF7", "#F2994A", "#27AE60", "#EB5757", "#9B51E0",
                                   "#2D9CDB", "#F2C94C", "#828282", "#4F7CF7", "#F2994A"};
    for (const char* color : palette) {
        const QString name = u"t%1"_s.arg(repository.tags().size());
        const RowId id = repository.findOrCreateCategory(CategoryKind::tag, u'\u3000' + name + u'\t');
        EXPECT_EQ(repository.tags().back(),
                  (Tag{.id = id, .name = name, .colorHex = QString::fromUtf8(color), .sort = id - 1}));
    }
    EXPECT_EQ(repository.findOrCreateCategory(CategoryKind::tag, u" T3"_s, blue), 4);
    EXPECT_EQ(repository.tags().at(3).colorHex, u"#EB5757"_s);
    repository.findOrCreateCategory(CategoryKind::tag, u"new"_s, u"#123456"_s);
    EXPECT_EQ(repository.tags().back().colorHex, u"#123456"_s);
}

TEST(Categories, TakeTheirRulesAndLinksWithThem) {
    const TemporaryStore store;
    Repository& repository = *store.repository;
    const std::array id{repository.insertActivity({}, instantAt(10))};
    repository.extendActivity(id[0], instantAt(20));
    for (const CategoryKind kind : {CategoryKind::project, CategoryKind::tag}) {
        const RowId category = repository.insertCategory(kind, u"c"_s, blue);
        repository.insertRule({.kind = kind, .id = category}, RuleField::app, RuleOperator::equals, {});
    }
    repository.setProject(id, 1);
    repository.setTag(id, 1, Repository::TagState::on);
    repository.deleteCategory(CategoryKind::tag, 1);
    EXPECT_EQ(repository.rules().size(), 1U);
    EXPECT_EQ(repository.activitiesOverlapping(instantAt(0), instantAt(30)).at(0).projectId, 1);
    repository.deleteCategory(CategoryKind::project, 1);
    const auto activities = repository.activitiesOverlapping(instantAt(0), instantAt(30));
    EXPECT_TRUE(repository.rules().empty() && !activities.at(0).projectId && activities[0].tagIds.isEmpty());
}

TEST(Rules, AreEditedInPlaceAndRefusedWithoutATarget) {
    const TemporaryStore store;
    Repository& repository = *store.repository;
    repository.insertCategory(CategoryKind::project, u"p"_s, blue);
    repository.insertCategory(CategoryKind::tag, u"t"_s, blue);
    const RuleTarget project{.kind = CategoryKind::project, .id = 1};
    const RuleId first = repository.insertRule(project, RuleField::url, RuleOperator::prefix, u"v"_s);
    const RuleId second = repository.insertRule(project, RuleField::app, RuleOperator::equals, {});
    Rule edited{.id = first,
                .target = {.kind = CategoryKind::tag, .id = 1},
                .field = RuleField::domain,
                .op = RuleOperator::equals,
                .value = u"w"_s,
                .sort = 99};
    repository.updateRule(edited);
    edited.sort = 0; // is not written
    EXPECT_EQ(repository.rules().at(0), edited);
    EXPECT_EQ(repository.rules().at(1).sort, 1);
    repository.deleteRule(second);
    EXPECT_EQ(repository.rules(), std::vector{edited});
    EXPECT_EQ(failureOf([&] {
                  repository.insertRule({.kind = CategoryKind::tag, .id = 7}, RuleField::app,
                                        RuleOperator::equals, {});
              }),
              "FOREIGN KEY constraint failed — INSERT INTO rule (project_id, tag_id, field, op, value, sort) "
              "VALUES (?, ?, ?, ?, ?, ?)");
}

TEST(Suggestions, BecomeRulesOfANewOrAnExistingCategory) {
    const TemporaryStore store;
    Repository& repository = *store.repository;
    repository.insertCategory(CategoryKind::tag, u"Review"_s, blue);
    suggest(store, "tag", "　review ", "url", "prefix");
    suggest(store, "Tag", " 新しい ", "window", "regex"); // unknown words read as the first of their kind
    suggest(store, "tag", "left", "app", "equals");
    const std::vector<RuleSuggestion> waiting = repository.suggestions();
    ASSERT_EQ(waiting.size(), 3U);
    EXPECT_EQ(waiting[1], (RuleSuggestion{.id = 2,
                                          .kind = CategoryKind::project,
                                          .targetName = u" 新しい "_s,
                                          .field = RuleField::app,
                                          .op = RuleOperator::contains,
                                          .value = u"v"_s,
                                          .reason = QString(),
                                          .createdAt = instantAt(12.5)}));
    EXPECT_EQ(repository.acceptSuggestion(1), 1);
    EXPECT_EQ(repository.acceptSuggestion(2), 2);
    repository.deleteSuggestion(3);
    const std::string after = categoriesAndRules(store);
    EXPECT_EQ(after, "project|1|新しい|#4F7CF7|0\ntag|1|Review|#2D9CDB|0\n"
                     "1|∅|1|url|prefix|v|0\n2|1|∅|app|contains|v|1\n");
    EXPECT_EQ(failureOf([&] { repository.acceptSuggestion(2); }), "提案が見つかりません（id: 2）");
    EXPECT_EQ(categoriesAndRules(store), after);
}

TEST(Suggestions, ThatFailInAnyStepChangeNothing) {
    for (const char* event : {"INSERT ON project", "INSERT ON rule", "DELETE ON rule_suggestion"}) {
        const TemporaryStore store;
        suggest(store, "project", "new", "url", "prefix");
        store.database().executeScript(
            u"CREATE TRIGGER refuse AFTER %1 BEGIN SELECT RAISE(ABORT, 'refused'); END"_s.arg(
                QString::fromUtf8(event)));
        const std::string before = categoriesAndRules(store);
        EXPECT_THAT(failureOf([&] { store.repository->acceptSuggestion(1); }),
                    testing::StartsWith("refused — "));
        EXPECT_EQ(categoriesAndRules(store), before) << event;
    }
}

TEST(DailyNotes, AreTrimmedAndClearedWhenNothingIsLeft) {
    TemporaryStore store;
    const QString day = u"2026-03-05"_s;
    const struct {
        const char* summary;
        std::optional<std::string> stored;
    } rows[] = {
        {" \u3000実装\r\n  と試験 \u2028\n", "実装\r\n  と試験"},
        {"\t\n\u3000\r", std::nullopt},
        {"二度目", "二度目"},
        {"", std::nullopt},
    };
    for (const auto& row : rows) {
        store.database().executeScript(
            u"INSERT OR IGNORE INTO daily_note VALUES ('2026-03-05', 'x', 'assistant', 0)"_s);
        store.now += Seconds(1);
        store.repository->saveDailyNote(day, QString::fromUtf8(row.summary), u"user"_s);
        const auto note = store.repository->dailyNote(day);
        ASSERT_EQ(note.has_value(), row.stored.has_value()) << row.summary;
        if (note) {
            EXPECT_EQ(note->summary.toStdString(), *row.stored);
            EXPECT_EQ(note->author, u"user"_s);
            EXPECT_EQ(note->updatedAt, store.now);
        }
    }
    EXPECT_FALSE(store.repository->dailyNote(u"2026-03-06"_s));
}

} // namespace
} // namespace kestu
