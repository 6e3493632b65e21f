// SPDX-License-Identifier: GPL-3.0-or-later
//
// The timeline's side panel over a real store: what it shows of the day, what it changes, and that a reload
// leaves what the user is at.
#include "app/AppModel.h"
#include "support/FakePlatform.h"
#include "support/SampleDay.h"
#include "support/Screen.h"
#include "support/TemporaryStore.h"
#include "ui/controls/Surfaces.h"
#include "ui/controls/TagChip.h"
#include "ui/timeline/RuleSheet.h"
#include "ui/timeline/SidePanel.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <algorithm>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

const Sample editor{.bundleId = u"e"_s, .appName = u"エディタ"_s, .title = u"注文API.cpp"_s, .url = {}};

class SidePanelTest : public testing::Test {
protected:
    void open() {
        model = std::make_unique<AppModel>(store.open(), platform,
                                           AppModel::Environment{.clock = [] { return test::sampleNow; },
                                                                 .calendar = test::tokyo,
                                                                 .screen = {}});
        panel = new SidePanel(*model);
        auto* row = new QHBoxLayout(&window);
        row->addWidget(panel);
        window.setFixedHeight(400);
        window.show();
        QApplication::processEvents();
    }

    ActivityId record(const Sample& sample, Instant start, Instant end) {
        const ActivityId id = store->insertActivity(sample, start);
        store->extendActivity(id, end);
        return id;
    }

    /// Two projects, two tags, a rule for each kind, and the activity that they hold for, selected.
    void openWithRules() {
        for (const QString& name : {u"A社"_s, u"B社"_s}) {
            store->insertCategory(CategoryKind::project, name, u"#4F7CF7"_s);
            store->insertCategory(CategoryKind::tag, u"タグ"_s + name, u"#4F7CF7"_s);
        }
        store->insertRule({.kind = CategoryKind::project, .id = 1}, RuleField::app, RuleOperator::equals,
                          editor.appName);
        store->insertRule({.kind = CategoryKind::tag, .id = 1}, RuleField::app, RuleOperator::equals,
                          editor.appName);
        activity = record(editor, test::sampleTime(9, 0), test::sampleTime(9, 40));
        open();
        model->setSelectedActivityId(activity);
    }

    void reload() {
        model->deleteRule(0); // no such rule
        QApplication::processEvents();
    }

    [[nodiscard]] QComboBox& picker() const { return *panel->findChild<QComboBox*>(); }

    void choose(int index) const {
        picker().setCurrentIndex(index);
        Q_EMIT picker().activated(index);
    }

    [[nodiscard]] QStringList choices() const {
        QStringList texts;
        for (int index = 0; index < picker().count(); ++index) {
            texts += picker().itemText(index);
        }
        return texts;
    }

    /// The chips' names; in brackets when switched on, with "!" when they can be clicked.
    [[nodiscard]] QStringList chips() const {
        QApplication::processEvents(); // new ones are shown then
        QStringList texts;
        for (const auto* chip : panel->findChildren<TagChip*>()) {
            if (chip->isVisible()) {
                const QString name = chip->accessibleName() + (chip->isCheckable() ? u"!"_s : QString());
                texts += chip->isChecked() || !chip->isCheckable() ? u'[' + name + u']' : name;
            }
        }
        texts.sort();
        return texts;
    }

    [[nodiscard]] std::vector<QPushButton*> buttons(const QString& text) const {
        std::vector<QPushButton*> found;
        for (auto* button : panel->findChildren<QPushButton*>()) {
            if (button->text() == text && button->isVisible()) {
                found.push_back(button);
            }
        }
        return found;
    }

    [[nodiscard]] QPushButton* button(const QString& text, const QString& of) const {
        const auto all = buttons(text);
        const auto at = std::find_if(all.begin(), all.end(),
                                     [&](QPushButton* each) { return each->accessibleDescription() == of; });
        return at == all.end() ? nullptr : *at;
    }

    [[nodiscard]] std::string stored() const {
        return store.dump(u"SELECT project_id, (SELECT group_concat(tag_id) FROM activity_tag WHERE "
                          "activity_id = activity.id) FROM activity"_s,
                          2);
    }

    test::TemporaryStore store;
    test::FakePlatform platform;
    std::unique_ptr<AppModel> model;
    QWidget window;
    SidePanel* panel = nullptr;
    ActivityId activity{};
};

TEST_F(SidePanelTest, OverridesTheProjectOfOneActivityAndGivesItBackToTheRules) {
    openWithRules();
    EXPECT_TRUE(test::isShown(u"9:00〜9:40（40分）"_s));
    EXPECT_EQ(choices(), QStringList({u"自動（A社）"_s, QString(), u"A社"_s, u"B社"_s}));
    EXPECT_EQ(picker().currentIndex(), 0);
    choose(3);
    EXPECT_EQ(stored(), "2|∅");
    EXPECT_EQ(picker().itemText(0), u"自動（A社）"_s) << "as if there were no override";
    choose(0);
    EXPECT_EQ(stored(), "∅|∅");
    model->deleteRule(1);
    EXPECT_EQ(picker().currentText(), u"自動（未分類）"_s);

    store.execute(u"CREATE TRIGGER t BEFORE UPDATE ON activity BEGIN SELECT RAISE(ABORT, 'voll'); END"_s);
    choose(2);
    EXPECT_EQ(picker().currentIndex(), 0) << "what could not be written is not shown";
}

TEST_F(SidePanelTest, SwitchesTagsOfTheActivityButNotThoseOfRules) {
    openWithRules();
    EXPECT_EQ(chips(), QStringList({u"[タグA社 ルール]"_s, u"タグB社!"_s}));
    for (auto* chip : panel->findChildren<TagChip*>()) {
        QTest::mouseClick(chip, Qt::LeftButton);
    }
    EXPECT_EQ(stored(), "∅|2");
    EXPECT_EQ(chips(), QStringList({u"[タグA社 ルール]"_s, u"[タグB社!]"_s}));
    store->setTag(std::span(&activity, 1), 1, Repository::TagState::on);
    reload();
    EXPECT_EQ(chips(), QStringList({u"[タグA社!]"_s, u"[タグB社!]"_s})) << "set by hand, too";
    for (auto* chip : panel->findChildren<TagChip*>()) {
        QTest::mouseClick(chip, Qt::LeftButton); // the first replaces itself
    }
    EXPECT_EQ(stored(), "∅|∅");
    EXPECT_EQ(chips(), QStringList({u"[タグA社 ルール]"_s, u"タグB社!"_s}));
}

TEST_F(SidePanelTest, EditsEntriesMadeByHandAndDeletesAny) {
    openWithRules();
    EXPECT_TRUE(buttons(u"時間・内容を直す…"_s).empty());
    const auto id = store->insertManualEntry({.start = test::sampleTime(10, 0),
                                              .end = test::sampleTime(11, 0),
                                              .title = {},
                                              .projectId = 2,
                                              .tagIds = {2}});
    reload();
    model->setSelectedActivityId(id);
    EXPECT_TRUE(test::isShown(u"選択中（手動）"_s));
    EXPECT_TRUE(test::isShown(u"手動の区間"_s));
    buttons(u"時間・内容を直す…"_s).at(0)->click();
    const ManualDraft draft = model->manualDraft().value();
    EXPECT_EQ(draft, (ManualDraft{.id = draft.id,
                                  .start = test::sampleTime(10, 0),
                                  .end = test::sampleTime(11, 0),
                                  .editingId = id,
                                  .title = {},
                                  .projectId = 2,
                                  .tagIds = {2}}));
    buttons(u"この区間を削除"_s).at(0)->click();
    EXPECT_EQ(store.dump(u"SELECT id FROM activity"_s), std::to_string(activity));
    EXPECT_FALSE(test::isShown(u"手動の区間"_s));
}

TEST_F(SidePanelTest, OffersEachGapOfFiveMinutes) {
    test::fillSampleDay(*store.repository);
    open();
    EXPECT_TRUE(test::isShown(u"1時間26分"_s));
    ASSERT_EQ(buttons(u"登録…"_s).size(), 4U);
    button(u"登録…"_s, u"12:04〜13:01"_s)->click();
    const ManualDraft draft = model->manualDraft().value();
    EXPECT_EQ(draft, (ManualDraft{.id = draft.id,
                                  .start = test::sampleTime(12, 4),
                                  .end = test::sampleTime(13, 1),
                                  .editingId = {},
                                  .title = {},
                                  .projectId = {},
                                  .tagIds = {}}));
}

TEST_F(SidePanelTest, SaysWhyNothingIsUnassigned) {
    open();
    EXPECT_TRUE(test::isShown(u"まだ記録がありません。"_s));
    EXPECT_FALSE(test::isShown(u"記録のない時間"_s));
    activity = record(editor, test::sampleTime(9, 0), test::sampleTime(9, 40));
    reload();
    EXPECT_FALSE(test::isShown(u"まだ記録がありません。"_s));
    EXPECT_TRUE(button(u"振り分ける…"_s, u"エディタ"_s));
    const ProjectId project = store->insertCategory(CategoryKind::project, u"A社"_s, u"#4F7CF7"_s);
    store->setProject(std::span(&activity, 1), project);
    reload();
    EXPECT_TRUE(test::isShown(u"すべて振り分け済みです。"_s));
    const auto dividers = panel->findChildren<Divider*>();
    EXPECT_FALSE(
        std::any_of(dividers.begin(), dividers.end(), [](Divider* each) { return each->isVisible(); }));
}

TEST_F(SidePanelTest, SortsAGroupAndGoesOnToTheNext) {
    test::fillSampleDay(*store.repository);
    open();
    QPointer<QPushButton> mail = button(u"振り分ける…"_s, u"メール"_s);
    mail->setFocus();
    mail->click();
    auto* sheet = window.findChild<RuleSheet*>();
    ASSERT_TRUE(sheet && sheet->isPresented());
    for (auto* each : sheet->findChildren<QPushButton*>()) {
        if (each->text() == u"保存"_s) {
            each->click();
        }
    }
    EXPECT_EQ(store.dump(u"SELECT project_id, value FROM rule WHERE id > 2"_s, 2), "1|メール");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(mail);
    EXPECT_EQ(window.focusWidget(), button(u"振り分ける…"_s, u"Slack"_s));
}

TEST_F(SidePanelTest, KeepsWhatTheUserIsAtThroughAReload) {
    openWithRules();
    record({.bundleId = u"b"_s, .appName = u"ブラウザ"_s, .title = u"一"_s, .url = u"https://www.b.jp/"_s},
           test::sampleTime(10, 0), test::sampleTime(10, 9));
    record({.bundleId = u"m"_s, .appName = u"メール"_s, .title = u"二"_s, .url = {}}, test::sampleTime(10, 9),
           test::sampleTime(10, 20));
    reload();
    auto* bar = panel->findChild<QScrollArea*>()->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 100);
    bar->setValue(100);
    QPointer<QPushButton> focused = button(u"振り分ける…"_s, u"ブラウザ · b.jp"_s);
    focused->setFocus();
    picker().showPopup();

    store->extendActivity(activity, test::sampleTime(9, 45));
    store->extendActivity(2, test::sampleTime(10, 40)); // the most time now: its card moves up
    store->insertCategory(CategoryKind::project, u"C社"_s, u"#4F7CF7"_s);
    store->insertCategory(CategoryKind::tag, u"タグC社"_s, u"#4F7CF7"_s);
    reload();
    EXPECT_TRUE(test::isShown(u"9:00〜9:45（45分）"_s));
    EXPECT_EQ(buttons(u"振り分ける…"_s).size(), 2U);
    EXPECT_TRUE(focused && focused->isVisible());
    EXPECT_TRUE(picker().view()->isVisible());
    EXPECT_EQ(choices().last(), u"C社"_s);
    picker().hidePopup();
    EXPECT_EQ(QApplication::focusWidget(), focused);
    EXPECT_EQ(bar->value(), 100);

    QStringList reached;
    for (picker().setFocus(); QApplication::focusWidget() != focused && reached.size() < 9;) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        reached += QApplication::focusWidget()->accessibleName() +
                   QApplication::focusWidget()->accessibleDescription();
        if (const auto* reachedButton = qobject_cast<QPushButton*>(QApplication::focusWidget())) {
            reached.last() += reachedButton->text();
        }
    }
    EXPECT_EQ(reached, QStringList({u"タグB社"_s, u"タグC社"_s, u"この区間を削除"_s, u"9:45〜10:00登録…"_s,
                                    u"ブラウザ · b.jp振り分ける…"_s}));
}

TEST_F(SidePanelTest, ScrollsUnderTheWheelInsteadOfChoosing) {
    openWithRules();
    window.setFixedHeight(200);
    QApplication::processEvents();
    const QPoint at = picker().rect().center();
    QWheelEvent wheel(at, picker().mapToGlobal(at), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&wheel); // any other does not go on to the parent
    qApp->notify(&picker(), &wheel);
    EXPECT_EQ(stored(), "∅|∅");
    EXPECT_GT(panel->findChild<QScrollArea*>()->verticalScrollBar()->value(), 0);
}

} // namespace
} // namespace kestu
