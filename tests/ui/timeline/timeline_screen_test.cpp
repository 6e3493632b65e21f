// SPDX-License-Identifier: GPL-3.0-or-later
//
// Days as nobody plans them, shown in the main window: nothing breaks, nothing stored is lost.
#include "app/AppModel.h"
#include "support/FakePlatform.h"
#include "support/SampleDay.h"
#include "support/Screen.h"
#include "support/TemporaryStore.h"
#include "ui/Commands.h"
#include "ui/MainWindow.h"
#include "ui/controls/TextLabel.h"
#include "ui/timeline/HourBars.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::isShown;

class TimelineScreenTest : public testing::Test {
protected:
    TimelineScreenTest() { platform.fakeSettings.booleans[u"welcomeShown"_s] = true; }

    void open() {
        model = std::make_unique<AppModel>(store.open(), platform,
                                           AppModel::Environment{.clock = [] { return test::sampleNow; },
                                                                 .calendar = test::tokyo,
                                                                 .screen = {}});
        commands = std::make_unique<Commands>(*model);
        window = std::make_unique<MainWindow>(*model, *commands);
        window->resize(900, 560);
        window->show();
        QApplication::processEvents();
    }

    void record(double start, double end, const QString& title, bool isManual = false) const {
        store->database().run(u"INSERT INTO activity (start, end, bundle_id, app_name, title, is_manual) "
                              "VALUES (?, ?, 'a', 'App', ?, ?)"_s,
                              {epochSeconds(test::sampleDay) + start, epochSeconds(test::sampleDay) + end,
                               title, std::int64_t{isManual}});
    }

    void press(const QString& text) const {
        for (auto* button : window->findChildren<QAbstractButton*>()) {
            if (button->isVisible() && button->text() == text) {
                button->click();
                return;
            }
        }
        ADD_FAILURE() << "no button " << text.toStdString();
    }

    [[nodiscard]] HourBars& bars() const { return *window->findChild<HourBars*>(); }

    test::TemporaryStore store;
    test::FakePlatform platform;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<Commands> commands;
    std::unique_ptr<MainWindow> window;
};

TEST_F(TimelineScreenTest, ShowsFiveThousandActivitiesOneWithoutEndOfTitleAndOverlappingEntries) {
    const QString endless = QString(5000, u'長') + QString(5000, u'x');
    store->database().transaction([&] {
        for (int index = 0; index < 5000; ++index) {
            record(index * 12.0, index * 12.0 + (index % 7 == 0 ? 1 : 12), index == 4999 ? endless : u"a"_s);
        }
        record(-86400, 60, u"<b>出張</b>"_s, true);
        record(3600, 7200, u"重なる"_s, true);
        record(60000, 2 * 86400, u"<b>出張</b>"_s, true);
    });
    QElapsedTimer timer;
    timer.start();
    open();
    EXPECT_LT(timer.elapsed(), 1500) << "milliseconds";
    EXPECT_EQ(bars().rows().size(), 24) << "of three days only this one";
    EXPECT_FALSE(window->grab().isNull());

    const auto& items = model->dayItems();
    const auto last = std::find_if(items.begin(), items.end(), [&](const ResolvedActivity& item) {
        return item.activity.title == endless;
    });
    model->setSelectedActivityId(last->activity.id);
    QApplication::processEvents();
    EXPECT_FALSE(window->grab().isNull());
    for (const auto* label : window->findChildren<TextLabel*>()) {
        if (label->isVisible() && label->text() == endless) {
            EXPECT_TRUE(label->isElided());
            EXPECT_LE(label->height(), 3 * 20);
        }
    }
    const auto place = bars().slices().back();
    EXPECT_LT(bars().helpOf(place).size(), 600) << "a tooltip leaves the screen in sight";
}

TEST_F(TimelineScreenTest, ShowsTheTimesOfEachPieceAroundAnEntry) {
    record(9 * 3600, 12 * 3600, u"a"_s);
    record(10 * 3600 + 1200, 10 * 3600 + 2400, u"会議"_s, true);
    open();
    QStringList helps;
    for (const SlicePlace& place : bars().slices()) {
        helps += bars().helpOf(place).section(u'\n', 0, 0);
    }
    EXPECT_EQ(helps.join(u' '), u"9:00〜10:20 9:00〜10:20 10:20〜10:40 10:40〜12:00 10:40〜12:00"_s);

    bars().choose(bars().slices().back());
    for (const SlicePlace& place : bars().slices()) {
        EXPECT_EQ(bars().isSelected(place), !bars().rows()[place.row].slices[place.slice].isManual);
    }
    EXPECT_TRUE(isShown(u"9:00〜10:20、10:40〜12:00（2時間40分）"_s));
    const QImage row = bars().grab().toImage();
    const auto edge = [&](std::size_t index) {
        const QRect box = bars().boxOf(bars().slices().at(index));
        return row.pixelColor(box.center().x(), box.top());
    };
    EXPECT_EQ(edge(1), edge(3)) << "both pieces in the row of 10 o'clock are framed";
    EXPECT_NE(edge(1), edge(2));

    QKeyEvent remove(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
    QApplication::sendEvent(&bars(), &remove);
    EXPECT_TRUE(isShown(u"9:00〜10:20、10:40〜12:00、App、a、未分類\n削除すると元に戻せません。"_s));
    press(u"削除"_s);
    EXPECT_EQ(store.dump(u"SELECT title FROM activity"_s), "会議");
}

TEST_F(TimelineScreenTest, CorrectsAnEntryOfThreeDaysWithoutCuttingIt) {
    record(-86400, 2 * 86400, u"出張"_s, true);
    open();
    model->setSelectedActivityId(model->dayItems().front().activity.id);
    QApplication::processEvents();
    EXPECT_TRUE(isShown(u"0:00〜0:00（24時間）"_s));
    press(u"時間・内容を直す…"_s);
    QApplication::processEvents();
    EXPECT_TRUE(isShown(u"72時間"_s));
    press(u"保存"_s);
    EXPECT_EQ(store.dump(u"SELECT end - start FROM activity"_s), "259200.0");
}

TEST_F(TimelineScreenTest, FollowsWhatAnotherProcessTakesAway) {
    test::fillSampleDay(*store.repository);
    open();
    model->setSelectedActivityId(model->dayItems()[3].activity.id);
    EXPECT_TRUE(isShown(u"選択中"_s));
    store.execute(u"DELETE FROM activity WHERE id = 4"_s);
    model->deleteRule(-1); // reads everything anew
    EXPECT_FALSE(isShown(u"選択中"_s));

    press(u"登録…"_s);
    ManualDraft draft = model->manualDraft().value();
    model->setManualDraft(std::nullopt);
    draft.id = QUuid::createUuid();
    draft.projectId = 4;
    draft.tagIds = {1, 3};
    model->setManualDraft(draft);
    store.execute(u"DELETE FROM project WHERE id = 4; DELETE FROM tag WHERE id = 3"_s);
    model->deleteRule(-1);
    press(u"保存"_s);
    EXPECT_FALSE(model->errorMessage());
    EXPECT_EQ(
        store.dump(u"SELECT ifnull(project_id, '-') || ' ' || (SELECT group_concat(tag_id) FROM "
                   "activity_tag WHERE activity_id = activity.id) FROM activity ORDER BY id DESC LIMIT 1"_s),
        "- 1")
        << "the entry is kept without what is gone";
}

TEST_F(TimelineScreenTest, LeavesNoSelectionBehindADay) {
    test::fillSampleDay(*store.repository);
    open();
    model->setSelectedActivityId(model->dayItems()[3].activity.id);
    model->shiftDay(-1);
    QApplication::processEvents();
    EXPECT_TRUE(isShown(u"この日の記録はありません"_s));
    EXPECT_FALSE(isShown(u"選択中"_s));
    EXPECT_FALSE(bars().isVisible());
}

} // namespace
} // namespace kestu
