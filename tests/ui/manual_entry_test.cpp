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

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

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
                                                                 .calendar = test::tokyo,
                                                                 .screen = {}});
        commands = std::make_unique<Commands>(*model);
        window = std::make_unique<MainWindow>(*model, *commands);
        window->show();
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

    test::TemporaryStore store;
    test::FakePlatform platform;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<Commands> commands;
    std::unique_ptr<MainWindow> window;
};

TEST_F(ManualEntryTest, SavesWhatIsShownAndKeepsTheSecondsOfWhatWasNotTouched) {
    open(test::sampleTime(10, 24) + Seconds{7}, test::sampleTime(10, 38) + Seconds{9});
    EXPECT_TRUE(test::isShown(u"14分"_s));
    EXPECT_TRUE(test::isShown(
        u"この時間には自動の記録が 6分 あります。登録すると、その部分は手動のほうに置き換わります。"_s));
    control<DateTimeField>(u"終了"_s)->setTime(QTime(10, 40));
    control<QLineEdit>(u"内容"_s)->setText(u"　A社 訪問 "_s);
    control<QComboBox>(u"プロジェクト"_s)->setCurrentIndex(0);
    saveButton()->click();
    EXPECT_EQ(entries(), "37447-38400 A社 訪問 - 1");
    EXPECT_FALSE(model->manualDraft());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(test::isShown(u"保存"_s));

    const ActivityId id = model->selectedActivityId().value();
    open(test::sampleTime(10, 25), test::sampleTime(10, 31), id);
    saveButton()->click();
    EXPECT_EQ(entries(), "37500-37860 会議 1 1") << "corrected, not added";
}

TEST_F(ManualEntryTest, KeepsTimesThatWereOnlyLookedAtOrPassedThrough) {
    open(test::sampleTime(10, 24) + Seconds{40}, test::sampleTime(10, 32) + Seconds{20});
    QTest::keyClick(control<DateTimeField>(u"開始"_s), Qt::Key_Return); // in the field that has the focus
    EXPECT_EQ(entries(), "37480-37940 会議 1 1") << "to the second";

    open(test::sampleTime(12, 10), test::sampleTime(12, 30));
    auto* start = control<DateTimeField>(u"開始"_s);
    start->setTime(QTime(12, 50)); // half-typed
    start->setTime(QTime(12, 5));
    EXPECT_EQ(control<DateTimeField>(u"終了"_s)->time(), QTime(12, 30));
}

TEST_F(ManualEntryTest, KeepsTheWindowWhileSomethingIsBeingWritten) {
    open(test::sampleTime(12, 10), test::sampleTime(12, 30));
    EXPECT_FALSE(window->close());
    model->setManualDraft(std::nullopt);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window->close());
}

TEST_F(ManualEntryTest, SavesNothingShorterThanAMinuteAndNothingWhenCancelled) {
    open(test::sampleTime(12, 30), test::sampleTime(12, 30) + Seconds{59});
    EXPECT_FALSE(saveButton()->isEnabled());
    EXPECT_FALSE(test::isShown(
        u"この時間には自動の記録が 0分 あります。登録すると、その部分は手動のほうに置き換わります。"_s));
    control<DateTimeField>(u"終了"_s)->setTime(QTime(12, 31));
    EXPECT_TRUE(saveButton()->isEnabled());
    control<DateTimeField>(u"開始"_s)->setTime(QTime(13, 0));
    EXPECT_FALSE(saveButton()->isEnabled()) << "the end goes with the start";
    EXPECT_EQ(control<DateTimeField>(u"終了"_s)->time(), QTime(13, 0));
    qobject_cast<QPushButton*>(test::findControl(u"キャンセル"_s, QAccessible::Button)->object())->click();
    EXPECT_FALSE(model->manualDraft());
    EXPECT_EQ(entries(), "");
}

} // namespace
} // namespace kestu
