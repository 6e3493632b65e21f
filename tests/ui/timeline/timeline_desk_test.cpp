// SPDX-License-Identifier: GPL-3.0-or-later
//
// A day put right by its user, on a display with a window manager: controls are found by their accessible
// names, clicked with the display's mouse and reached with its keyboard, and what is stored is looked at.
#include "app/AppModel.h"
#include "support/FakePlatform.h"
#include "support/PrivateBus.h"
#include "support/Program.h"
#include "support/SampleDay.h"
#include "support/Screen.h"
#include "support/TemporaryStore.h"
#include "ui/Commands.h"
#include "ui/MainWindow.h"
#include "ui/timeline/HourBars.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::click;
using test::isShown;
using test::pressKey;
using test::waitUntil;

const QString meetingEntry = u"14:00〜15:05、手動、A社と打ち合わせ、A社案件"_s;
const QString documentSlice =
    u"11:32〜11:56、Firefox、議事録 2026-11-18 A社 週次定例 - Google ドキュメント、A社案件"_s;

void typeText(const QString& text) {
    test::outputOf(u"xdotool"_s, {u"type"_s, u"--delay"_s, u"4"_s, text});
    waitUntil([] { return false; }, 80);
}

void pressKeys(const QStringList& keys) {
    for (const QString& key : keys) {
        pressKey(key);
    }
}

[[nodiscard]] QString focusedName() {
    QWidget* focused = QApplication::focusWidget();
    return focused ? test::nameOf(*QAccessible::queryAccessibleInterface(focused)) : QString();
}

/// Tab by tab, as a user without a mouse.
[[nodiscard]] bool tabTo(const QString& name) {
    for (int step = 0; step < 60; ++step) {
        if (focusedName() == name) {
            return true;
        }
        pressKey(u"Tab"_s);
    }
    ADD_FAILURE() << "the keyboard does not reach " << name.toStdString();
    return false;
}

class TimelineTest : public testing::Test {
protected:
    TimelineTest() {
        test::fillSampleDay(*store.repository);
        platform.fakeSettings.booleans[u"welcomeShown"_s] = true;
    }

    void launch(QSize size = {1100, 1000}) {
        model = std::make_unique<AppModel>(
            store.open(), platform,
            AppModel::Environment{.clock = [this] { return now; }, .calendar = test::tokyo, .screen = {}});
        model->loadSettings();
        commands = std::make_unique<Commands>(*model);
        window = std::make_unique<MainWindow>(*model, *commands);
        window->resize(size);
        window->show();
        ASSERT_TRUE(waitUntil([this] { return window->isActiveWindow(); }, 5000));
        waitUntil([] { return false; }, 200); // the window manager may still move it
    }

    /// What scrolls the hours.
    [[nodiscard]] QScrollArea* column() const {
        for (QWidget* widget = window->findChild<HourBars*>(); widget; widget = widget->parentWidget()) {
            if (auto* area = qobject_cast<QScrollArea*>(widget)) {
                return area;
            }
        }
        return nullptr;
    }

    /// Clicks into the row of that hour, at that minute.
    void clickBar(int hour, double minute) {
        auto* bars = window->findChild<HourBars*>();
        const auto row = static_cast<std::size_t>(hour - bars->rows().front().number);
        const QRectF bar = barBox(row, bars->width());
        const QPointF point(bar.left() + bar.width() * minute / 60, bar.center().y());
        test::clickAt(bars->mapToGlobal(point.toPoint()));
    }

    void choose(const QString& picker, const QString& item) {
        EXPECT_TRUE(click(picker, QAccessible::ComboBox)) << picker.toStdString();
        EXPECT_TRUE(click(item, QAccessible::ListItem)) << item.toStdString();
    }

    /// The entries made by hand as minutes since midnight, with title, project and number of tags.
    [[nodiscard]] std::string entries() {
        return store.dump(u"SELECT CAST((start - 1794927600) / 60 AS INTEGER) || '-' || CAST((end - "
                          "1794927600) / 60 AS INTEGER) || ' ' || title || ' ' || ifnull(project_id, '-') "
                          "|| ' ' || (SELECT count(*) FROM activity_tag WHERE activity_id = activity.id) "
                          "FROM activity WHERE is_manual ORDER BY start"_s);
    }
    /// Project and tags set by hand of the document's activity.
    [[nodiscard]] std::string document() {
        return store.dump(
            u"SELECT ifnull(project_id, '-') || ' ' || ifnull((SELECT group_concat(tag_id) FROM "
            "activity_tag WHERE activity_id = activity.id), '-') FROM activity WHERE domain = "
            "'docs.google.com'"_s);
    }
    [[nodiscard]] std::string note() {
        return store.dump(u"SELECT day || ' ' || author || ' ' || summary FROM daily_note"_s);
    }

    Instant now = test::sampleNow;
    test::TemporaryStore store;
    test::FakePlatform platform;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<Commands> commands;
    std::unique_ptr<MainWindow> window;
};

TEST_F(TimelineTest, AddsEntriesFromAGapFromARowAndFromTheButton) {
    launch();
    EXPECT_TRUE(click(u"登録…"_s)); // the first gap, 10:24 to 10:32
    EXPECT_TRUE(isShown(u"8分"_s));
    EXPECT_TRUE(click(u"保存"_s));
    EXPECT_EQ(entries(), "624-632  - 0\n840-905 A社と打ち合わせ 1 2");

    clickBar(12, 30); // in the gap that follows
    EXPECT_TRUE(click(u"内容"_s, QAccessible::EditableText));
    typeText(u"lunch"_s);
    choose(u"プロジェクト"_s, u"学習"_s);
    EXPECT_TRUE(click(u"集中"_s, QAccessible::CheckBox));
    EXPECT_TRUE(click(u"保存"_s));
    EXPECT_EQ(entries(), "624-632  - 0\n724-781 lunch 4 1\n840-905 A社と打ち合わせ 1 2");

    store.execute(u"DELETE FROM activity WHERE NOT is_manual OR title = ''"_s);
    EXPECT_TRUE(waitUntil([this] { return model->dayItems().size() == 2; }, 4000));
    EXPECT_TRUE(click(u"手動で追加"_s)); // the gap that is left
    EXPECT_TRUE(click(u"保存"_s));
    EXPECT_EQ(entries(), "724-781 lunch 4 1\n781-840  - 0\n840-905 A社と打ち合わせ 1 2");
    EXPECT_TRUE(click(u"手動で追加"_s)); // no gap: the last hour
    EXPECT_TRUE(click(u"保存"_s));
    EXPECT_TRUE(click(u"前の日"_s));
    EXPECT_TRUE(click(u"手動で追加"_s)); // no gap on another day: nine to ten
    EXPECT_TRUE(click(u"保存"_s));
    EXPECT_EQ(entries(), "-900--840  - 0\n724-781 lunch 4 1\n781-840  - 0\n840-905 A社と打ち合わせ 1 2\n"
                         "1064-1124  - 0");
}

TEST_F(TimelineTest, CorrectsAndDeletesAnEntry) {
    launch();
    EXPECT_TRUE(click(meetingEntry, QAccessible::ListItem));
    EXPECT_TRUE(isShown(u"選択中（手動）"_s));
    EXPECT_TRUE(click(u"時間・内容を直す…"_s));
    EXPECT_TRUE(click(u"内容"_s, QAccessible::EditableText));
    pressKey(u"ctrl+a"_s);
    typeText(u"visit"_s);
    pressKey(u"Return"_s);
    EXPECT_EQ(entries(), "840-905 visit 1 2");
    EXPECT_TRUE(click(u"この区間を削除"_s));
    EXPECT_EQ(entries(), "");
    EXPECT_FALSE(isShown(u"選択中（手動）"_s));
}

TEST_F(TimelineTest, SortsAGroupIntoANewProjectByARuleAndUnderATagByHand) {
    launch();
    EXPECT_TRUE(click(u"振り分ける…"_s)); // most of the unassigned time is mail
    choose(u"プロジェクト"_s, u"新しいプロジェクト"_s);
    EXPECT_TRUE(click(u"プロジェクト名"_s, QAccessible::EditableText));
    typeText(u"office"_s);
    EXPECT_TRUE(click(u"保存"_s));
    EXPECT_EQ(store.dump(u"SELECT project.name || ' ' || field || ' ' || op || ' ' || value FROM rule JOIN "
                         "project ON project.id = project_id ORDER BY rule.id DESC LIMIT 1"_s),
              "office app equals メール");
    EXPECT_FALSE(isShown(u"保存"_s));

    EXPECT_TRUE(click(u"振り分ける…"_s)); // what is left is the chat
    EXPECT_TRUE(click(u"タグ（掛け持ち可）"_s, QAccessible::RadioButton));
    choose(u"タグ"_s, u"会議"_s);
    EXPECT_TRUE(click(u"同じ作業を今後も自動で振り分ける"_s, QAccessible::CheckBox));
    EXPECT_TRUE(click(u"保存"_s));
    EXPECT_EQ(store.dump(u"SELECT app_name || ' ' || count(*) FROM activity JOIN activity_tag ON activity_id "
                         "= activity.id WHERE tag_id = 3 GROUP BY app_name ORDER BY app_name"_s),
              "Firefox 1\nSlack 2\n手動 1");
    EXPECT_EQ(store.dump(u"SELECT count(*) FROM rule"_s), "3") << "no rule for the tag";
}

TEST_F(TimelineTest, SetsProjectAndTagsOfOneActivity) {
    launch();
    EXPECT_TRUE(click(documentSlice, QAccessible::ListItem));
    EXPECT_EQ(document(), "- 2");
    choose(u"プロジェクト"_s, u"学習"_s);
    EXPECT_EQ(document(), "4 2");
    choose(u"プロジェクト"_s, u"自動（A社案件）"_s);
    EXPECT_EQ(document(), "- 2");
    EXPECT_TRUE(click(u"集中"_s, QAccessible::CheckBox));
    EXPECT_EQ(document(), "- -");
    EXPECT_TRUE(click(u"会議"_s, QAccessible::CheckBox));
    EXPECT_EQ(document(), "- 3");
    EXPECT_FALSE(isShown(u"顧客A"_s, QAccessible::CheckBox)) << "a rule gives it";
}

TEST_F(TimelineTest, WritesChangesAndClearsTheNote) {
    launch();
    EXPECT_TRUE(click(u"編集"_s));
    pressKey(u"ctrl+a"_s);
    typeText(u"# day"_s);
    pressKey(u"Return"_s);
    typeText(u"done"_s);
    pressKey(u"ctrl+Return"_s);
    EXPECT_EQ(note(), "2026-11-18 user # day\ndone");
    EXPECT_TRUE(click(u"編集"_s));
    pressKeys({u"ctrl+a"_s, u"Delete"_s, u"Escape"_s});
    EXPECT_TRUE(click(u"破棄"_s));
    EXPECT_EQ(note(), "2026-11-18 user # day\ndone");
    EXPECT_TRUE(click(u"編集"_s));
    pressKeys({u"ctrl+a"_s, u"Delete"_s});
    EXPECT_TRUE(click(u"保存"_s));
    EXPECT_EQ(note(), "");

    EXPECT_TRUE(click(u"Claude に頼む文面をコピー"_s));
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith(u"KESTUの MCP で 2026-11-18 の記録"_s));
    EXPECT_TRUE(isShown(u"コピーしました"_s));
    EXPECT_TRUE(click(u"前の日"_s));
    EXPECT_TRUE(isShown(u"この日の記録はありません"_s));
    EXPECT_TRUE(isShown(u"まだ記録がありません。"_s));
    EXPECT_FALSE(isShown(u"コピーしました"_s));
    EXPECT_TRUE(click(u"自分で書く"_s));
    typeText(u"quiet"_s);
    EXPECT_TRUE(click(u"保存"_s));
    EXPECT_EQ(note(), "2026-11-17 user quiet");
}

TEST_F(TimelineTest, CanBeUsedWithTheKeyboardAlone) {
    launch({900, 560});
    pressKeys({u"alt+Left"_s, u"alt+Left"_s, u"alt+Right"_s});
    EXPECT_EQ(model->selectedDay(), test::sampleDay - Seconds{86400});
    pressKey(u"ctrl+t"_s);
    EXPECT_TRUE(model->isTodaySelected());
    pressKey(u"alt+Right"_s);
    EXPECT_TRUE(model->isTodaySelected()) << "there is no tomorrow";

    pressKey(u"ctrl+n"_s); // the first gap
    ASSERT_TRUE(tabTo(u"内容"_s));
    typeText(u"walk"_s);
    pressKey(u"Return"_s);
    EXPECT_EQ(entries(), "624-632 walk - 0\n840-905 A社と打ち合わせ 1 2");

    ASSERT_TRUE(tabTo(u"1日の帯"_s));
    pressKeys({u"Home"_s, u"Right"_s, u"Right"_s, u"Left"_s});
    EXPECT_TRUE(isShown(u"9:07〜9:15（8分）"_s));
    pressKeys({u"End"_s});
    const auto* bars = window->findChild<HourBars*>();
    EXPECT_FALSE(bars->visibleRegion().intersected(bars->boxOf(bars->slices().back())).isEmpty())
        << "it is scrolled into view";
    pressKeys({u"Home"_s, u"Down"_s, u"Down"_s, u"Down"_s, u"Down"_s, u"Return"_s}); // 12:04 to 13:01
    ASSERT_TRUE(isShown(u"57分"_s));
    pressKey(u"Return"_s);
    EXPECT_EQ(entries(), "624-632 walk - 0\n724-781  - 0\n840-905 A社と打ち合わせ 1 2");

    ASSERT_TRUE(tabTo(u"1日の帯"_s));
    pressKey(u"Delete"_s);
    ASSERT_TRUE(isShown(u"この区間を削除しますか？"_s));
    pressKey(u"Return"_s); // キャンセル has the focus
    EXPECT_EQ(entries(), "624-632 walk - 0\n724-781  - 0\n840-905 A社と打ち合わせ 1 2");
    pressKeys({u"Delete"_s, u"Tab"_s, u"Return"_s});
    EXPECT_EQ(entries(), "624-632 walk - 0\n840-905 A社と打ち合わせ 1 2");

    pressKeys({u"Home"_s, u"Right"_s});
    ASSERT_TRUE(tabTo(u"プロジェクト"_s));
    pressKeys({u"End"_s});
    EXPECT_EQ(store.dump(u"SELECT project_id FROM activity WHERE title = '課題一覧 - A社ポータル'"_s), "4");
    ASSERT_TRUE(tabTo(u"集中"_s));
    pressKey(u"space"_s);
    EXPECT_EQ(
        store.dump(u"SELECT count(*) FROM activity JOIN activity_tag ON activity_id = activity.id WHERE "
                   "title = '課題一覧 - A社ポータル'"_s),
        "2");
    ASSERT_TRUE(tabTo(u"振り分ける…"_s));
    pressKey(u"space"_s);
    ASSERT_TRUE(isShown(u"振り分け先"_s));
    pressKey(u"Return"_s); // the first project, by a rule
    EXPECT_EQ(store.dump(u"SELECT value FROM rule ORDER BY id DESC LIMIT 1"_s), "メール");
    ASSERT_TRUE(tabTo(u"編集"_s));
    pressKeys({u"space"_s, u"ctrl+a"_s});
    typeText(u"short"_s);
    pressKey(u"ctrl+Return"_s);
    EXPECT_EQ(note(), "2026-11-18 user short");
    pressKey(u"Escape"_s);
    EXPECT_FALSE(model->selectedActivityId()) << "Escape closes the detail";
}

TEST_F(TimelineTest, KeepsWhatTheUserIsDoingWhileRecordingGoesOn) {
    platform.fakeWorkspace.front = {
        .bundleId = u"jp.example.code"_s, .localizedName = u"Code"_s, .processId = 1};
    launch({900, 560});
    model->start();
    model->setSelectedActivityId(model->dayItems()[7].activity.id);
    QScrollBar* scroll = column()->verticalScrollBar();
    scroll->setValue(120);
    const auto record = [this](const QString& title) {
        platform.fakeWorkspace.title = title;
        for (int look = 0; look < 8; ++look) {
            Q_EMIT platform.events.applicationActivated();
            now += Seconds{2};
        }
        waitUntil([] { return false; }, 50);
    };
    const auto before = model->dayItems().size();
    record(u"one"_s);
    record(u"two"_s);
    EXPECT_EQ(model->dayItems().size(), before + 2);
    EXPECT_EQ(scroll->value(), 120);
    EXPECT_TRUE(model->selectedActivityId());

    scroll->setValue(0);
    EXPECT_TRUE(click(u"編集"_s));
    pressKey(u"ctrl+a"_s);
    typeText(u"half"_s);
    auto* editor = qobject_cast<QPlainTextEdit*>(QApplication::focusWidget());
    ASSERT_TRUE(editor);
    QInputMethodEvent composing(u"にほ"_s, {});
    QApplication::sendEvent(editor, &composing);
    record(u"three"_s);
    store.execute(u"UPDATE daily_note SET summary = 'by another', updated_at = 5"_s);
    EXPECT_TRUE(waitUntil([this] { return model->dayNote()->summary == u"by another"_s; }, 4000));
    EXPECT_TRUE(editor->hasFocus());
    EXPECT_EQ(editor->toPlainText(), u"half"_s);
    EXPECT_EQ(editor->textCursor().block().layout()->preeditAreaText(), u"にほ"_s);
    QInputMethodEvent done;
    done.setCommitString(u"日本"_s);
    QApplication::sendEvent(editor, &done);
    pressKey(u"ctrl+Return"_s);
    EXPECT_EQ(note(), "2026-11-18 ai by another") << "nothing is lost unasked";
    EXPECT_TRUE(click(u"上書き"_s));
    EXPECT_EQ(note(), "2026-11-18 user half日本");
}

} // namespace
} // namespace kestu
