// SPDX-License-Identifier: GPL-3.0-or-later
//
// The sheet that sorts unassigned time, over a real store.
#include "support/FakePlatform.h"
#include "support/SampleDay.h"
#include "support/TemporaryStore.h"
#include "ui/controls/SegmentedPicker.h"
#include "ui/timeline/RuleSheet.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPushButton>

#include <gtest/gtest.h>

#include <stdexcept>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

const QString newProject = u"新しいプロジェクト"_s;

class RuleSheetTest : public testing::Test {
protected:
    RuleSheetTest() {
        test::fillSampleDay(*store.repository);
        const auto id = store->insertActivity({.bundleId = u"jp.example.Firefox"_s,
                                               .appName = u"Firefox"_s,
                                               .title = u"予定"_s,
                                               .url = u"https://calendar.example.jp/"_s},
                                              test::sampleTime(18, 44));
        store->extendActivity(id, test::sampleTime(18, 56));
    }

    /// For the group of this application; the store is as the test left it.
    void open(const QString& app) {
        model = std::make_unique<AppModel>(store.open(), platform,
                                           AppModel::Environment{.clock = [] { return test::sampleNow; },
                                                                 .calendar = test::tokyo,
                                                                 .screen = {}});
        window.show();
        for (const UnassignedGroup& group : unassignedGroups(model->dayItems())) {
            if (group.appName == app) {
                sheet = new RuleSheet(&window, *model, group);
                sheet->present();
                return;
            }
        }
        throw std::runtime_error("no such group");
    }

    template<typename Control>
    [[nodiscard]] Control& control(const QString& name) const {
        for (auto* candidate : sheet->findChildren<Control*>()) {
            if (candidate->accessibleName() == name) {
                return *candidate;
            }
        }
        throw std::runtime_error("no control " + name.toStdString());
    }

    template<typename Button>
    [[nodiscard]] Button& button(const QString& text) const {
        for (auto* candidate : sheet->findChildren<Button*>()) {
            if (candidate->text() == text || candidate->accessibleName() == text) {
                return *candidate;
            }
        }
        throw std::runtime_error("no button " + text.toStdString());
    }

    void choose(const QString& picker, const QString& entry) const {
        auto& box = control<QComboBox>(picker);
        const int index = box.findText(entry);
        ASSERT_GE(index, 0);
        box.setCurrentIndex(index);
        Q_EMIT box.activated(index);
    }

    void chooseTags() const { button<Segment>(u"タグ（掛け持ち可）"_s).click(); }
    void switchRule() const { button<QAbstractButton>(u"同じ作業を今後も自動で振り分ける"_s).click(); }
    void type(const QString& field, const QString& text) const { control<QLineEdit>(field).setText(text); }
    [[nodiscard]] QPushButton& save() const { return button<QPushButton>(u"保存"_s); }
    [[nodiscard]] QString shown(const QString& picker) const {
        return control<QComboBox>(picker).currentText();
    }
    [[nodiscard]] QString condition() const {
        return shown(u"対象"_s) + u'|' + shown(u"条件"_s) + u'|' + control<QLineEdit>(u"値"_s).text();
    }
    [[nodiscard]] bool isOpen() const { return sheet && sheet->isPresented(); }

    test::TemporaryStore store;
    test::FakePlatform platform;
    std::unique_ptr<AppModel> model;
    QWidget window;
    QPointer<RuleSheet> sheet;
};

TEST_F(RuleSheetTest, StartsWithWhatTheGroupGivesAndResetsItForEachField) {
    open(u"Firefox"_s);
    EXPECT_EQ(condition(), u"ドメイン|と一致|calendar.example.jp"_s);
    EXPECT_EQ(shown(u"プロジェクト"_s), u"A社案件"_s);
    EXPECT_FALSE(control<QLineEdit>(u"プロジェクト名"_s).isVisible());
    EXPECT_TRUE(save().isEnabled());
    for (const auto& [field, expected] : {std::pair(u"ウィンドウ名"_s, u"ウィンドウ名|を含む|予定"_s),
                                          {u"URL"_s, u"URL|を含む|"_s},
                                          {u"アプリ"_s, u"アプリ|と一致|Firefox"_s},
                                          {u"ドメイン"_s, u"ドメイン|と一致|calendar.example.jp"_s}}) {
        choose(u"対象"_s, field);
        EXPECT_EQ(condition(), expected);
        EXPECT_EQ(save().isEnabled(), field != u"URL"_s);
    }
    type(u"値"_s, u"calendar"_s);
    choose(u"対象"_s, u"ドメイン"_s);
    EXPECT_EQ(condition(), u"ドメイン|と一致|calendar"_s) << "the same field again changes nothing";

    sheet->cancel();
    open(u"メール"_s);
    EXPECT_EQ(condition(), u"アプリ|と一致|メール"_s);
    choose(u"対象"_s, u"ドメイン"_s);
    EXPECT_EQ(condition(), u"ドメイン|と一致|"_s);
}

TEST_F(RuleSheetTest, SavesOnlyWithATargetAndACondition) {
    open(u"メール"_s);
    choose(u"プロジェクト"_s, newProject);
    EXPECT_TRUE(control<QLineEdit>(u"プロジェクト名"_s).isVisible());
    EXPECT_EQ(window.focusWidget(), &control<QLineEdit>(u"プロジェクト名"_s));
    for (const auto& [name, value, expected] : {std::tuple(u""_s, u"a"_s, false),
                                                {u" 　"_s, u"a"_s, false},
                                                {u"連絡"_s, u" 　"_s, false},
                                                {u"連絡"_s, u"a"_s, true}}) {
        type(u"プロジェクト名"_s, name);
        type(u"値"_s, value);
        EXPECT_EQ(save().isEnabled(), expected) << name.toStdString() << '|' << value.toStdString();
    }
    type(u"値"_s, u""_s);
    switchRule();
    EXPECT_TRUE(save().isEnabled()) << "without a rule no value is needed";
    EXPECT_FALSE(control<QLineEdit>(u"値"_s).isVisible());
}

TEST_F(RuleSheetTest, ClassifiesInEveryWay) {
    struct Case {
        bool isTag;
        bool makesRule;
        QString newName; // empty: the first existing one
        const char* rules;
        const char* group; // project and tag of each of the group's two activities
    };
    const Case cases[] = {
        {false, true, {}, "1|∅|app|equals|Slack", "∅|∅\n∅|∅"},
        {false, false, {}, "", "1|∅\n1|∅"},
        {true, true, {}, "∅|1|app|equals|Slack", "∅|∅\n∅|∅"},
        {true, false, {}, "", "∅|1\n∅|1"},
        {false, true, u" 連絡 "_s, "5|∅|app|equals|Slack", "∅|∅\n∅|∅"},
        {true, false, u"連絡"_s, "", "∅|4\n∅|4"},
    };
    for (const Case& each : cases) {
        const test::TemporaryStore fresh;
        test::fillSampleDay(*fresh.repository);
        store.path = fresh.path;
        open(u"Slack"_s);
        if (each.isTag) {
            chooseTags();
        }
        if (!each.makesRule) {
            switchRule();
        }
        if (!each.newName.isEmpty()) {
            choose(each.isTag ? u"タグ"_s : u"プロジェクト"_s, each.isTag ? u"新しいタグ"_s : newProject);
            type(each.isTag ? u"タグ名"_s : u"プロジェクト名"_s, each.newName);
        }
        save().click();
        EXPECT_FALSE(isOpen());
        EXPECT_EQ(fresh.dump(u"SELECT project_id, tag_id, field, op, value FROM rule WHERE id > 2"_s, 5),
                  each.rules);
        EXPECT_EQ(fresh.dump(u"SELECT project_id, (SELECT tag_id FROM activity_tag WHERE activity_id = id) "
                             "FROM activity WHERE app_name = 'Slack'"_s,
                             2),
                  each.group);
        EXPECT_EQ(fresh.dump(u"SELECT count(*) FROM project WHERE name = '連絡' AND color = '#9B51E0'"_s),
                  !each.isTag && !each.newName.isEmpty() ? "1" : "0");
    }
}

TEST_F(RuleSheetTest, StaysOpenWhenTheNewProjectOrItsRuleCannotBeMade) {
    store.execute(u"CREATE TRIGGER t BEFORE INSERT ON rule BEGIN SELECT RAISE(ABORT, 'voll'); END"_s);
    open(u"Slack"_s);
    choose(u"プロジェクト"_s, newProject);
    type(u"プロジェクト名"_s, u"連絡"_s);
    save().click();
    EXPECT_TRUE(isOpen());
    EXPECT_TRUE(model->errorMessage().value_or(QString()).contains(u"voll"_s));
    EXPECT_EQ(control<QLineEdit>(u"プロジェクト名"_s).text(), u"連絡"_s);
    EXPECT_EQ(store.dump(u"SELECT (SELECT count(*) FROM project), count(*) FROM rule WHERE id > 2"_s, 2),
              "4|0");
}

TEST_F(RuleSheetTest, StaysOpenWhenTheRuleCannotBeMade) {
    store.execute(u"CREATE TRIGGER t BEFORE INSERT ON rule BEGIN SELECT RAISE(ABORT, 'voll'); END"_s);
    open(u"Slack"_s);
    EXPECT_FALSE(sheet->holdsDraft());
    type(u"値"_s, u"typed"_s);
    save().click();
    EXPECT_TRUE(isOpen());
    EXPECT_TRUE(model->errorMessage());
    EXPECT_EQ(control<QLineEdit>(u"値"_s).text(), u"typed"_s);
    EXPECT_TRUE(sheet->holdsDraft());
}

TEST_F(RuleSheetTest, AHalfTypedTagBecomesNoProject) {
    open(u"Slack"_s);
    chooseTags();
    choose(u"タグ"_s, u"新しいタグ"_s);
    QInputMethodEvent composing(u"会議"_s, {});
    QApplication::sendEvent(&control<QLineEdit>(u"タグ名"_s), &composing);
    EXPECT_TRUE(save().isEnabled());
    button<Segment>(u"プロジェクト（1つだけ）"_s).click();
    choose(u"プロジェクト"_s, newProject);
    EXPECT_EQ(control<QLineEdit>(u"プロジェクト名"_s).text(), QString());
    EXPECT_FALSE(save().isEnabled());
    type(u"プロジェクト名"_s, u"連絡"_s);
    chooseTags();
    choose(u"タグ"_s, u"新しいタグ"_s);
    EXPECT_EQ(control<QLineEdit>(u"タグ名"_s).text(), u"会議"_s);
    save().click();
    EXPECT_EQ(store.dump(u"SELECT (SELECT group_concat(name) FROM tag WHERE id > 3), (SELECT count(*) FROM "
                         "project)"_s,
                         2),
              "会議|4");
}

TEST_F(RuleSheetTest, FollowsTheListsAndKeepsWhatWasChosenAndTyped) {
    open(u"Slack"_s);
    choose(u"プロジェクト"_s, u"学習"_s);
    type(u"値"_s, u"typed"_s);
    model->deleteCategory(CategoryKind::project, 2);
    EXPECT_EQ(shown(u"プロジェクト"_s), u"学習"_s);
    model->deleteCategory(CategoryKind::project, 4);
    EXPECT_EQ(shown(u"プロジェクト"_s), QString()) << "no other was meant";
    EXPECT_FALSE(save().isEnabled());
    EXPECT_EQ(condition(), u"アプリ|と一致|typed"_s);
    EXPECT_EQ(control<QComboBox>(u"プロジェクト"_s).count(), 3);
    chooseTags();
    EXPECT_EQ(shown(u"タグ"_s), u"顧客A"_s);
    for (const TagId id : {1, 2, 3}) {
        model->deleteCategory(CategoryKind::tag, id);
    }
    EXPECT_FALSE(save().isEnabled());
    choose(u"タグ"_s, u"新しいタグ"_s);
    EXPECT_TRUE(control<QLineEdit>(u"タグ名"_s).isVisible());
}

} // namespace
} // namespace kestu
