// SPDX-License-Identifier: GPL-3.0-or-later
//
// The report screen with a real store behind it: which period it shows, when it reads, and what leaves it.
#include "ui/report/ReportScreen.h"

#include "app/AppModel.h"
#include "app/ReportCommand.h"
#include "support/FakePlatform.h"
#include "support/Files.h"
#include "support/SampleDay.h"
#include "support/Screen.h"
#include "support/TemporaryStore.h"
#include "ui/report/DayChart.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QScrollArea>
#include <QScrollBar>

#include <gtest/gtest.h>

#include <stdexcept>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::contentsOf;
using test::isShown;

class ReportScreenTest : public testing::Test {
protected:
    ReportScreenTest() {
        store.now = now;
        test::fillSampleDay(*store.repository);
        model = std::make_unique<AppModel>(
            store.open(), platform,
            AppModel::Environment{.clock = [this] { return now; }, .calendar = test::tokyo, .screen = {}});
        screen = std::make_unique<ReportScreen>(*model);
        QObject::connect(screen.get(), &ReportScreen::loaded, screen.get(), [this] { ++loads; });
        screen->askForPath = [this](const SaveQuestion& question, const auto& chosen) {
            suggested = question.fileName;
            if (!path.isEmpty()) {
                chosen(path);
            }
        };
    }

    void open() {
        screen->resize(900, 700);
        screen->show();
        QApplication::processEvents();
    }

    [[nodiscard]] QAbstractButton* button(const QString& name) const {
        for (auto* candidate : screen->findChildren<QAbstractButton*>()) {
            if (candidate->accessibleName() == name || candidate->text() == name) {
                return candidate;
            }
        }
        throw std::runtime_error("no button " + name.toStdString());
    }

    void press(const QString& name) {
        button(name)->click();
        QApplication::processEvents();
    }

    void record(Instant from, Instant to, std::optional<ProjectId> project = {}) const {
        const ActivityId id = store->insertActivity(
            {.bundleId = u"x"_s, .appName = u"端末"_s, .title = u"夜の作業"_s, .url = {}}, from);
        store->extendActivity(id, to);
        store->setProject(std::span(&id, 1), project);
    }

    [[nodiscard]] QByteArray commandOutput(const QString& arguments) const {
        return runCommand(arguments.split(u' '), {.location = {.explicitPath = store.path, .dataHome = {}},
                                                  .calendar = test::tokyo(),
                                                  .now = now})
            .output.toUtf8();
    }

    Instant now = test::sampleNow;
    test::TemporaryStore store;
    test::FakePlatform platform;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<ReportScreen> screen;
    int loads = 0;
    QString suggested;
    QString path;
};

TEST_F(ReportScreenTest, StepsThroughDaysWeeksAndMonthsAndComesBackToThePresent) {
    open();
    EXPECT_TRUE(isShown(u"11月16日〜11月22日"_s)) << "it begins with this week";
    const struct {
        QString period;
        QString present;
        QString before;
        QString twoBefore;
    } rows[] = {
        {u"日"_s, u"2026年11月18日(水)"_s, u"2026年11月17日(火)"_s, u"2026年11月16日(月)"_s},
        {u"週"_s, u"11月16日〜11月22日"_s, u"11月9日〜11月15日"_s, u"11月2日〜11月8日"_s},
        {u"月"_s, u"2026年11月"_s, u"2026年10月"_s, u"2026年9月"_s},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.period.toStdString());
        press(row.period);
        EXPECT_TRUE(isShown(row.present));
        EXPECT_FALSE(button(u"いま"_s)->isEnabled());
        EXPECT_FALSE(button(u"次の"_s + row.period)->isEnabled());
        EXPECT_EQ(test::findControl(u"日別の記録"_s) != nullptr, row.period != u"日");
        press(u"前の"_s + row.period);
        press(u"前の"_s + row.period);
        EXPECT_TRUE(isShown(row.twoBefore));
        EXPECT_TRUE(isShown(u"この期間の記録はありません"_s));
        press(u"次の"_s + row.period);
        EXPECT_TRUE(isShown(row.before));
        EXPECT_TRUE(button(u"いま"_s)->isEnabled());
        press(u"いま"_s);
        EXPECT_TRUE(isShown(row.present));
        EXPECT_FALSE(isShown(u"この期間の記録はありません"_s));
        EXPECT_TRUE(isShown(u"8時間26分"_s));
    }
}

TEST_F(ReportScreenTest, ReadsNothingWhileHiddenAndOnceForWhatComesTogether) {
    model->goToToday();
    QApplication::processEvents();
    EXPECT_EQ(loads, 0);
    open();
    EXPECT_EQ(loads, 1);

    model->updateCategory(CategoryKind::project, 1, u"B社案件"_s, u"#EB5757"_s);
    model->goToToday();
    model->goToToday();
    EXPECT_EQ(loads, 1);
    QApplication::processEvents();
    EXPECT_EQ(loads, 2);
    EXPECT_TRUE(isShown(u"B社案件 3時間39分 43%"_s)) << "the new name";

    screen->hide();
    record(test::sampleTime(18, 44), test::sampleTime(19, 44), 1);
    model->goToToday();
    QApplication::processEvents();
    EXPECT_EQ(loads, 2);
    screen->show();
    EXPECT_EQ(loads, 3);
    EXPECT_TRUE(isShown(u"B社案件 4時間39分 49%"_s));
    screen->hide();
    screen->show();
    QApplication::processEvents();
    EXPECT_EQ(loads, 3) << "nothing has changed";
}

TEST_F(ReportScreenTest, BeginsWithThisWeekAtTheTopAndWithAllOptionsWheneverItIsOpened) {
    open();
    press(u"月"_s);
    press(u"前の月"_s);
    press(u"ウィンドウ名・URL・サイトを含める"_s);
    press(u"時系列（何時から何時まで何をしていたか）を含める"_s);
    press(u"次の月"_s);
    auto* bar = screen->findChild<QScrollArea*>()->verticalScrollBar();
    bar->setValue(bar->maximum());
    ASSERT_GT(bar->value(), 0);
    screen->hide();
    now += Seconds{7 * 86400.0};
    open();
    EXPECT_TRUE(isShown(u"11月23日〜11月29日"_s));
    EXPECT_FALSE(button(u"いま"_s)->isEnabled());
    EXPECT_EQ(bar->value(), 0);
    EXPECT_TRUE(button(u"ウィンドウ名・URL・サイトを含める"_s)->isChecked());
    EXPECT_TRUE(button(u"時系列（何時から何時まで何をしていたか）を含める"_s)->isChecked());
}

TEST_F(ReportScreenTest, SavesAndCopiesTheReportOfTheCommandLine) {
    // Some of it lies outside the week, and some crosses its end.
    record(test::sampleDay + Seconds{5 * 86400.0 - 600}, test::sampleDay + Seconds{5 * 86400.0 + 1200});
    record(test::sampleDay - Seconds{10 * 86400.0}, test::sampleDay - Seconds{10 * 86400.0 - 900}, 2);
    open();
    press(u"Markdownで保存…"_s);
    EXPECT_EQ(suggested, u"kestu-week-2026-11-16.md"_s);
    EXPECT_TRUE(QDir(store.folder.path()).entryList({u"*.md"_s}).isEmpty()) << "the user cancelled";

    const struct {
        QString period;
        QString button;
        QString fileName;
        QString command;
    } rows[] = {
        {u"週"_s, u"Markdownで保存…"_s, u"kestu-week-2026-11-16.md"_s, u"report"_s},
        {u"月"_s, u"CSVで保存…"_s, u"kestu-2026-11.csv"_s, u"report --period month --format csv"_s},
        {u"日"_s, u"Markdownで保存…"_s, u"kestu-2026-11-18.md"_s, u"report --period day"_s},
    };
    for (const auto& row : rows) {
        press(row.period);
        path = store.folder.filePath(row.fileName);
        test::putFile(path, "old");
        press(row.button);
        EXPECT_EQ(suggested, row.fileName);
        EXPECT_EQ(contentsOf(path), commandOutput(row.command)) << row.command.toStdString();
        EXPECT_FALSE(model->errorMessage());
    }

    press(u"ウィンドウ名・URL・サイトを含める"_s);
    press(u"時系列（何時から何時まで何をしていたか）を含める"_s);
    press(u"AI向けレポートをコピー"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toUtf8(),
              commandOutput(u"report --period day --no-details --no-timeline"_s));
    for (const QString& change : {u"時系列（何時から何時まで何をしていたか）を含める"_s, u"前の日"_s}) {
        EXPECT_TRUE(isShown(u"コピーしました"_s));
        press(change);
        EXPECT_FALSE(isShown(u"コピーしました"_s)) << "another report by now";
        press(u"AI向けレポートをコピー"_s);
    }
}

TEST_F(ReportScreenTest, TellsWhyAFileCannotBeWrittenAndLeavesNoneBehind) {
    open();
    test::putFile(store.folder.filePath(u"file"_s), "kept");
    for (const QString& target : {u"/proc/none.md"_s, store.folder.filePath(u"no/such/folder.md"_s),
                                  store.folder.filePath(u"file/report.md"_s), store.folder.path()}) {
        model->clearErrorMessage();
        path = target;
        press(u"Markdownで保存…"_s);
        ASSERT_TRUE(model->errorMessage()) << target.toStdString();
        EXPECT_TRUE(model->errorMessage()->startsWith(u"保存できませんでした："_s));
        EXPECT_GT(model->errorMessage()->size(), u"保存できませんでした："_s.size());
        EXPECT_TRUE(QDir(store.folder.path()).entryList({u"*.md*"_s}).isEmpty());
    }
    EXPECT_EQ(contentsOf(store.folder.filePath(u"file"_s)), "kept");
}

TEST_F(ReportScreenTest, StacksEachDayByProjectAndNamesEveryPiece) {
    // Sunday to Monday across midnight: half an hour on each day, the second one in the next week.
    record(test::sampleDay + Seconds{5 * 86400.0 - 1800}, test::sampleDay + Seconds{5 * 86400.0 + 1800}, 3);
    open();
    const auto* chart = screen->findChild<DayChart*>();
    const auto pieces = chart->pieces();
    QStringList texts;
    double bottom = 0;
    for (const DayChart::Piece& piece : pieces) {
        texts << chart->textAt(piece.box.center()).replace(u'\n', u' ');
        EXPECT_TRUE(QRectF(chart->rect()).contains(piece.box));
        EXPECT_TRUE(texts.size() == 1 || piece.day != pieces.front().day ||
                    qFuzzyCompare(piece.box.bottom(), bottom))
            << "each stands on the one before";
        bottom = piece.box.top();
    }
    EXPECT_EQ(texts, QStringList({u"A社案件 18日(水)　3時間39分"_s, u"KESTU開発 18日(水)　2時間20分"_s,
                                  u"請求・経理 18日(水)　38分"_s, u"学習 18日(水)　31分"_s,
                                  u"未分類 18日(水)　1時間18分"_s, u"請求・経理 22日(日)　30分"_s}));
    EXPECT_EQ(chart->textAt({2, 2}), QString());
    EXPECT_NEAR(pieces[0].box.height() / pieces[3].box.height(), 219.0 / 31, 0.01);
    EXPECT_NEAR(pieces[0].box.width(), 48, 0.01);
    EXPECT_EQ(chart->accessibleDescription(),
              u"18日(水)：A社案件 3時間39分、KESTU開発 2時間20分、請求・経理 38分、学習 31分、未分類 "
              "1時間18分\n22日(日)：請求・経理 30分"_s);

    press(u"月"_s);
    const double dayWidth = (chart->width() - 34) / 30.0;
    EXPECT_NEAR(chart->pieces().front().box.width(), dayWidth * 0.6, 0.01);
    EXPECT_NEAR(chart->pieces().front().box.center().x(), 34 + 17.5 * dayWidth, 0.01) << "the 18th of 30";
}

} // namespace
} // namespace kestu
