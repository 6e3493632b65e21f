// SPDX-License-Identifier: GPL-3.0-or-later
//
// The sheet for entries made by hand, over the main window, with a real store behind it.
#include "app/AppModel.h"
#include "support/FakePlatform.h"
#include "support/SampleDay.h"
#include "support/Screen.h"
#include "support/TemporaryStore.h"
#include "ui/Commands.h"
#include "ui/MainWindow.h"
#include "ui/controls/DateTimeField.h"
#include "ui/controls/Settling.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

class ManualEntryTest : public testing::Test {
protected:
    ManualEntryTest() {
        test::fillSampleDay(*store.repository);
        platform.fakeSettings.booleans[u"welcomeShown"_s] = true;
        model = std::make_unique<AppModel>(store.open(), platform,
                                           AppModel::Environment{.clock = [] { return test::sampleNow; },
                                                                 .calendar = [this] { return calendar; },
                                                                 .screen = {}});
        commands = std::make_unique<Commands>(*model);
        window = std::make_unique<MainWindow>(*model, *commands);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    void open(Instant start, Instant end, std::optional<ActivityId> editing = {}) {
        model->setManualDraft(ManualDraft{.start = start,
                                          .end = end,
                                          .editingId = editing,
                                          .title = u"会議"_s,
                                          .projectId = 1,
                                          .tagIds = {1}});
    }

    template<typename Control>
    [[nodiscard]] Control* control(const QString& name) const {
        for (auto* candidate : window->findChildren<Control*>()) {
            if (candidate->isVisible() && candidate->accessibleName() == name) {
                return candidate;
            }
        }
        throw std::runtime_error("no control " + name.toStdString());
    }

    [[nodiscard]] QPushButton* saveButton() {
        QAccessibleInterface* found = test::findControl(u"保存"_s, QAccessible::Button);
        return found ? qobject_cast<QPushButton*>(found->object()) : nullptr;
    }

    /// The entries made by hand, with the seconds since midnight, and their tags.
    [[nodiscard]] std::string entries() {
        return store.dump(u"SELECT CAST(start - 1794927600 AS INTEGER) || '-' || CAST(end - 1794927600 AS "
                          "INTEGER) || ' ' || title || ' ' || ifnull(project_id, '-') || ' ' || (SELECT "
                          "count(*) FROM activity_tag WHERE activity_id = activity.id) FROM activity WHERE "
                          "is_manual AND title != 'A社と打ち合わせ' ORDER BY start"_s);
    }

    [[nodiscard]] DateTimeField& field(const QString& name) const { return *control<DateTimeField>(name); }
    [[nodiscard]] QString shown(const QString& name) const { return field(name).text().section(u' ', 1); }

    /// In the window, once everything is laid out.
    [[nodiscard]] QPoint placeOf(const QString& name) const {
        settle(*window);
        QCoreApplication::processEvents();
        settle(*window);
        return field(name).mapTo(window.get(), QPoint());
    }

    /// Goes into the field and types into its hour.
    void type(const QString& name, const QString& keys) const {
        control<QLineEdit>(u"内容"_s)->setFocus();
        field(name).setFocus(Qt::TabFocusReason);
        QTest::keyClicks(&field(name), keys);
    }
    /// Tab, as the window gets it.
    void goOn() const { QTest::keyClick(window->focusWidget(), Qt::Key_Tab); }

    Calendar calendar = test::tokyo();
    test::TemporaryStore store;
    test::FakePlatform platform;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<Commands> commands;
    std::unique_ptr<MainWindow> window;
};

TEST_F(ManualEntryTest, SavesWhatIsShown) {
    open(test::sampleTime(10, 24) + Seconds{7}, test::sampleTime(10, 38) + Seconds{9});
    EXPECT_TRUE(test::isShown(u"14分"_s));
    EXPECT_TRUE(test::isShown(
        u"この時間には自動の記録が 6分 あります。登録すると、その部分は手動のほうに置き換わります。"_s));
    type(u"終了"_s, u"1040"_s);
    control<QLineEdit>(u"内容"_s)->setText(u"　A社 訪問 "_s);
    control<QComboBox>(u"プロジェクト"_s)->setCurrentIndex(0);
    saveButton()->click();
    EXPECT_EQ(entries(), "37440-38400 A社 訪問 - 1") << "no second that nobody sees";
    EXPECT_FALSE(model->manualDraft());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(test::isShown(u"保存"_s));

    const ActivityId id = model->selectedActivityId().value();
    open(test::sampleTime(10, 25), test::sampleTime(10, 31), id);
    saveButton()->click();
    EXPECT_EQ(entries(), "37500-37860 会議 1 1") << "corrected, not added";
}

TEST_F(ManualEntryTest, KeepsTheSecondsOfTimesThatWereOnlyLookedAt) {
    open(test::sampleTime(10, 45) + Seconds{40}, test::sampleTime(10, 50) + Seconds{20});
    EXPECT_TRUE(test::isShown(u"5分"_s)) << "as the eye counts";
    field(u"開始"_s).setFocus(Qt::TabFocusReason);
    for (int stop = 0; stop < 5; ++stop) {
        goOn();
    }
    QTest::keyClick(&field(u"開始"_s), Qt::Key_Return);
    EXPECT_EQ(entries(), "38740-39020 会議 1 1") << "to the second";
}

TEST_F(ManualEntryTest, TakesAnEndOfAnotherHour) {
    open(test::sampleTime(10, 45), test::sampleTime(10, 55));
    type(u"終了"_s, u"14"_s);
    EXPECT_EQ(shown(u"終了"_s), u"14:55"_s);
    EXPECT_TRUE(test::isShown(u"4時間10分"_s));
    goOn();
    QTest::keyClicks(window->focusWidget(), u"30"_s);
    EXPECT_TRUE(test::isShown(u"3時間45分"_s));
    EXPECT_EQ(shown(u"開始"_s), u"10:45"_s);
    QTest::keyClick(window->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(entries(), "38700-52200 会議 1 1");
}

TEST_F(ManualEntryTest, SaysThatAnEndIsBeforeTheStartAndSavesNone) {
    const QString told = u"終了は開始より後にしてください。"_s;
    open(test::sampleTime(10, 45), test::sampleTime(10, 55));
    type(u"終了"_s, u"9"_s);
    EXPECT_FALSE(test::isShown(told)) << "it is half-typed";
    const QPoint before = placeOf(u"終了"_s);
    goOn();
    EXPECT_EQ(placeOf(u"終了"_s), before) << "the sheet grows downwards";
    EXPECT_TRUE(test::isShown(told));
    EXPECT_EQ(field(u"終了"_s).accessibleDescription(), told);
    EXPECT_FALSE(saveButton()->isEnabled());
    EXPECT_EQ(shown(u"開始"_s), u"10:45"_s);
    QTest::keyClick(window->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(entries(), "");
    type(u"終了"_s, u"1"_s); // which may become right
    EXPECT_TRUE(saveButton()->isEnabled());
    saveButton()->click();
    EXPECT_EQ(entries(), "") << "it did not";
    type(u"開始"_s, u"0030"_s);
    EXPECT_EQ(shown(u"終了"_s), u"1:55"_s) << "there was no length to keep";
    EXPECT_FALSE(test::isShown(told));
    EXPECT_TRUE(saveButton()->isEnabled());
}

TEST_F(ManualEntryTest, MovesWithItsStart) {
    open(test::sampleTime(12, 10), test::sampleTime(12, 30));
    type(u"開始"_s, u"1"_s);
    EXPECT_EQ(shown(u"終了"_s), u"12:30"_s) << "half-typed, it moves nothing";
    QTest::keyClicks(&field(u"開始"_s), u"345"_s);
    EXPECT_EQ(shown(u"終了"_s), u"14:05"_s);
    QTest::keyClick(&field(u"開始"_s), Qt::Key_Up);
    EXPECT_EQ(shown(u"終了"_s), u"14:06"_s);
    EXPECT_TRUE(test::isShown(u"20分"_s));
}

TEST_F(ManualEntryTest, SaysWhatItWantsInsteadOfTakingNonsense) {
    calendar.zone = QTimeZone("America/New_York");
    const Instant start = instantAt(1772989200.0); // 2026-03-08 13:00
    open(start, start + Seconds{3600});
    type(u"開始"_s, u"0230"_s);
    goOn();
    const QString gap = u"2026年3月8日(日) 2:30 は、時計が進められるため、ありません。"_s;
    EXPECT_TRUE(test::isShown(gap));
    EXPECT_EQ(shown(u"終了"_s), u"14:00"_s);
    EXPECT_FALSE(saveButton()->isEnabled());
    type(u"開始"_s, u"0330"_s);
    EXPECT_FALSE(test::isShown(gap));
    EXPECT_EQ(shown(u"終了"_s), u"4:30"_s);

    QGuiApplication::clipboard()->setText(u"🕝 明日"_s);
    QTest::keySequence(&field(u"開始"_s), QKeySequence::Paste);
    EXPECT_TRUE(test::isShown(u"日時は「2026/11/23 14:30」のように入力してください。"_s));
    EXPECT_EQ(field(u"開始"_s).text(), u"2026/03/08 3:30"_s);
    EXPECT_TRUE(saveButton()->isEnabled());
    type(u"開始"_s, {});
    QInputMethodEvent composed;
    composed.setCommitString(u"１４３０"_s);
    QApplication::sendEvent(&field(u"開始"_s), &composed);
    EXPECT_EQ(shown(u"開始"_s), u"14:30"_s);
    QInputMethodQueryEvent query(Qt::ImEnabled);
    QApplication::sendEvent(&field(u"開始"_s), &query);
    EXPECT_FALSE(query.value(Qt::ImEnabled).toBool());
    QGuiApplication::clipboard()->setText(u"2026年3月9日 午後1時"_s);
    QTest::keySequence(&field(u"開始"_s), QKeySequence::Paste);
    EXPECT_EQ(field(u"終了"_s).text(), u"2026/03/09 14:00"_s);
}

TEST_F(ManualEntryTest, ClicksAndTabSelectAPart) {
    open(test::sampleTime(9, 10), test::sampleTime(9, 30));
    auto* edit = field(u"開始"_s).findChild<QLineEdit*>();
    const auto clickOn = [edit](int letter) {
        const int x = edit->fontMetrics().horizontalAdvance(edit->text().left(letter) + u"0"_s) - 2;
        QTest::mouseClick(edit, Qt::LeftButton, {}, QPoint(x + 2, edit->height() / 2));
        return edit->selectedText();
    };
    EXPECT_EQ(clickOn(1), u"2026"_s);
    EXPECT_EQ(clickOn(5), u"11"_s);
    EXPECT_EQ(clickOn(9), u"18"_s);
    EXPECT_EQ(clickOn(13), u"10"_s);
    EXPECT_EQ(clickOn(11), u"9"_s);
    QTest::keyClicks(&field(u"開始"_s), u"1045"_s);
    EXPECT_EQ(shown(u"開始"_s), u"10:45"_s);
    control<QLineEdit>(u"内容"_s)->setFocus();
    QStringList selected;
    for (int stop = 0; stop < 6; ++stop) {
        QTest::keyClick(window->focusWidget(), Qt::Key_Backtab);
        selected << edit->selectedText() + field(u"終了"_s).findChild<QLineEdit*>()->selectedText();
    }
    EXPECT_EQ(selected, (QStringList{u"05"_s, u"11"_s, u"18"_s, u"11"_s, u"2026"_s, u"45"_s}));
}

TEST_F(ManualEntryTest, BeginsInTheTitleOfANewEntryAndInTheTimesOfAnOldOne) {
    open(test::sampleTime(12, 10), test::sampleTime(12, 30));
    EXPECT_TRUE(control<QLineEdit>(u"内容"_s)->hasFocus());
    model->setManualDraft(std::nullopt);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    open(test::sampleTime(12, 10), test::sampleTime(12, 30), 1);
    EXPECT_TRUE(field(u"開始"_s).hasFocus());
}

TEST_F(ManualEntryTest, LosesNothingThatWasTypedWithoutAQuestion) {
    struct Case {
        std::function<void()> change;
        bool isAsked;
    };
    const Case cases[] = {
        {[] {}, false},
        {[this] { control<QLineEdit>(u"内容"_s)->setText(u"訪問"_s); }, true},
        {[this] {
             QInputMethodEvent composing(u"ほうもん"_s, {});
             QApplication::sendEvent(control<QLineEdit>(u"内容"_s), &composing);
         },
         true},
        {[this] { type(u"終了"_s, u"1"_s); }, true},
        {[this] { control<QComboBox>(u"プロジェクト"_s)->setCurrentIndex(0); }, true},
        {[this] { field(u"開始"_s).stepUp(); }, true},
    };
    const auto press = [](const QString& name) {
        qobject_cast<QPushButton*>(test::findControl(name, QAccessible::Button)->object())->click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    for (const Case& each : cases) {
        open(test::sampleTime(12, 10), test::sampleTime(12, 30));
        each.change();
        EXPECT_EQ(window->holdsDraft(), each.isAsked);
        press(u"キャンセル"_s);
        EXPECT_EQ(model->manualDraft().has_value(), each.isAsked);
        if (each.isAsked) {
            press(u"破棄"_s);
        }
        EXPECT_FALSE(model->manualDraft());

        open(test::sampleTime(12, 10), test::sampleTime(12, 30));
        each.change();
        EXPECT_EQ(window->close(), !each.isAsked);
        EXPECT_EQ(model->manualDraft().has_value(), each.isAsked);
        if (each.isAsked) {
            EXPECT_FALSE(window->close()) << "it is being asked";
            press(u"破棄"_s);
        }
        EXPECT_FALSE(window->isVisible());
        EXPECT_FALSE(model->manualDraft());
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    EXPECT_EQ(entries(), "");
}

TEST_F(ManualEntryTest, SavesNothingShorterThanAMinute) {
    open(test::sampleTime(12, 30), test::sampleTime(12, 30) + Seconds{59});
    EXPECT_FALSE(saveButton()->isEnabled());
    EXPECT_TRUE(test::isShown(u"長さは1分以上にしてください。"_s));
    type(u"終了"_s, u"1231"_s);
    EXPECT_TRUE(saveButton()->isEnabled());
}

} // namespace
} // namespace kestu
