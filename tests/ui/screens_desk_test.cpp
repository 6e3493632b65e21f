// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reports, categories and settings as their user meets them, on a display with a window manager: clicked with
// its mouse, typed with its keyboard, and what is stored or written is looked at.
#include "app/AppModel.h"
#include "app/ReportCommand.h"
#include "platform/linux/AutostartEntry.h"
#include "platform/linux/X11Desktop.h"
#include "support/Desk.h"
#include "support/FakePlatform.h"
#include "support/Files.h"
#include "support/PrivateBus.h"
#include "support/Program.h"
#include "support/SampleDay.h"
#include "support/Screen.h"
#include "support/TemporaryStore.h"
#include "ui/Commands.h"
#include "ui/MainWindow.h"
#include "ui/MenuBarView.h"

#include <QApplication>
#include <QFile>
#include <QInputMethodEvent>
#include <QLineEdit>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::click;
using test::isShown;
using test::pressKey;
using test::waitUntil;

constexpr int patience = 5000; // milliseconds

/// Starts at login with a real entry in a folder of the test's.
struct Desktop final : test::FakePlatform {
    QTemporaryDir folder;
    AutostartEntry entry{folder.path(), QStringLiteral(KESTU_PROGRAM)};

    [[nodiscard]] LoginItem& loginItem() override { return entry; }
};

class ScreensTest : public testing::Test {
protected:
    ScreensTest() {
        test::fillSampleDay(*store.repository);
        test::fillSampleWeek(*store.repository);
        desktop.fakeSettings.booleans[u"welcomeShown"_s] = true;
        desktop.fakeWorkspace.front = {
            .bundleId = u"jp.example.chat"_s, .localizedName = u"Chat"_s, .processId = 1};
    }

    void launch(const QString& screen) {
        window.reset();
        model = std::make_unique<AppModel>(store.open(), desktop,
                                           AppModel::Environment{.clock = [this] { return now; },
                                                                 .calendar = test::tokyo,
                                                                 .screen = screen,
                                                                 .assistantServer = u"/usr/bin/kestu-mcp"_s});
        model->loadSettings();
        model->start();
        commands = std::make_unique<Commands>(*model);
        window = std::make_unique<MainWindow>(*model, *commands);
        window->resize(1100, 1150);
        window->show();
        ASSERT_TRUE(waitUntil([this] { return window->isActiveWindow(); }, patience));
        waitUntil([] { return false; }, 200);
    }

    /// Records that window for some seconds.
    void record(const QString& title) {
        desktop.fakeWorkspace.title = title;
        for (int look = 0; look < 4; ++look) {
            Q_EMIT desktop.events.applicationActivated();
            now += Seconds{2};
        }
        waitUntil([] { return false; }, 30);
    }

    [[nodiscard]] bool isOn(const QString& name) {
        QAccessibleInterface* control = test::findControl(name, QAccessible::CheckBox);
        return control && control->state().checked;
    }

    Instant now = test::sampleNow;
    test::TemporaryStore store;
    Desktop desktop;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<Commands> commands;
    std::unique_ptr<MainWindow> window;
};

TEST_F(ScreensTest, StepsThroughReportsAndSavesWhatTheCommandLineWrites) {
    launch(u"report"_s);
    EXPECT_TRUE(isShown(u"11月16日〜11月22日"_s));
    const struct {
        QString period;
        QString present;
        QString before;
    } rows[] = {
        {u"日"_s, u"2026年11月18日(水)"_s, u"2026年11月17日(火)"_s},
        {u"月"_s, u"2026年11月"_s, u"2026年10月"_s},
        {u"週"_s, u"11月16日〜11月22日"_s, u"11月9日〜11月15日"_s},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(click(row.period, QAccessible::RadioButton));
        EXPECT_TRUE(waitUntil([&] { return isShown(row.present); }, patience)) << row.present.toStdString();
        EXPECT_TRUE(click(u"前の"_s + row.period));
        EXPECT_TRUE(waitUntil([&] { return isShown(row.before); }, patience)) << row.before.toStdString();
        EXPECT_TRUE(click(u"次の"_s + row.period));
        EXPECT_TRUE(waitUntil([&] { return isShown(row.present); }, patience));
        EXPECT_TRUE(click(u"前の"_s + row.period));
        EXPECT_TRUE(click(u"いま"_s));
        EXPECT_TRUE(waitUntil([&] { return isShown(row.present); }, patience));
    }

    EXPECT_TRUE(click(u"前の週"_s));
    EXPECT_TRUE(click(u"Markdownで保存…"_s));
    ASSERT_TRUE(waitUntil([] { return QApplication::activeModalWidget() != nullptr; }, patience));
    waitUntil([] { return QApplication::activeModalWidget()->isActiveWindow(); }, patience);
    const QString path = desktop.folder.filePath(u"week.md"_s);
    pressKey(u"ctrl+a"_s);
    test::outputOf(u"xdotool"_s, {u"type"_s, u"--delay"_s, u"5"_s, path});
    pressKey(u"Return"_s);
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(path); }, patience));
    EXPECT_EQ(test::contentsOf(path), runCommand({u"report"_s, u"--date"_s, u"2026-11-11"_s},
                                                 {.location = {.explicitPath = store.path, .dataHome = {}},
                                                  .calendar = test::tokyo(),
                                                  .now = now})
                                          .output.toUtf8());
}

TEST_F(ScreensTest, AreAnApplicationInFrontButThePanelIsKnownForOurOwn) {
    QString why;
    const auto xcb = Xcb::connect(why);
    X11Desktop eyes(*xcb, [] { return false; });
    const auto isPanelInFront = [&] {
        const auto front = eyes.frontmostApplication();
        return front && front->processId == QCoreApplication::applicationPid()
                   ? std::optional(front->isOwnPanel)
                   : std::nullopt;
    };
    launch(u"timeline"_s);
    EXPECT_TRUE(waitUntil([&] { return isPanelInFront() == false; }, patience));
    MenuBarView panel(*model, *commands);
    panel.show();
    panel.activateWindow();
    EXPECT_TRUE(waitUntil([&] { return isPanelInFront() == true; }, patience));
    panel.close();
    EXPECT_TRUE(waitUntil([&] { return isPanelInFront() == false; }, patience));
}

TEST_F(ScreensTest, TakesASuggestionOfAnotherProcessForThePastToo) {
    store.execute(u"DELETE FROM rule_suggestion"_s);
    launch(u"projects"_s);
    const double unassigned = unassignedGroups(model->dayItems()).front().seconds;
    store.execute(u"INSERT INTO rule_suggestion (target_kind, target_name, field, op, value, created_at) "
                  "VALUES ('project', '連絡', 'app', 'equals', 'メール', 0)"_s);
    ASSERT_TRUE(waitUntil([] { return isShown(u"承認"_s, QAccessible::Button); }, 4000));
    EXPECT_TRUE(isShown(u"新規"_s));
    EXPECT_TRUE(click(u"承認"_s));
    EXPECT_EQ(
        store.dump(u"SELECT name || ' ' || field || ' ' || op || ' ' || value FROM rule JOIN project ON "
                   "project.id = project_id WHERE value = 'メール'"_s),
        "連絡 app equals メール");
    EXPECT_LT(unassignedGroups(model->dayItems()).front().seconds, unassigned);
    EXPECT_FALSE(isShown(u"承認"_s));
}

TEST_F(ScreensTest, RenamesAProjectInComposedWordsWhileRecordsGoOn) {
    launch(u"projects"_s);
    QLineEdit* name = nullptr;
    for (auto* field : window->findChildren<QLineEdit*>()) {
        name = field->text() == u"学習"_s ? field : name;
    }
    ASSERT_TRUE(name);
    test::clickAt(name->mapToGlobal(QPoint(60, name->height() / 2)));
    ASSERT_TRUE(name->hasFocus());
    pressKey(u"End"_s);
    QInputMethodEvent composing(u"かい"_s, {});
    QApplication::sendEvent(name, &composing);
    record(u"one"_s);
    record(u"two"_s);
    const auto stored = [this] { return store.dump(u"SELECT name FROM project WHERE id = 4"_s); };
    EXPECT_EQ(stored(), "学習") << "nothing is stored before the word stands";
    QInputMethodEvent composed;
    composed.setCommitString(u"会"_s);
    QApplication::sendEvent(name, &composed);
    EXPECT_EQ(stored(), "学習会");
    test::outputOf(u"xdotool"_s, {u"type"_s, u"--delay"_s, u"30"_s, u"A1"_s});
    record(u"three"_s);
    EXPECT_EQ(stored(), "学習会A1");
    EXPECT_TRUE(name->hasFocus());
    EXPECT_EQ(name->cursorPosition(), 5);
    EXPECT_NE(store.dump(u"SELECT count(*) FROM activity WHERE app_name = 'Chat'"_s), "0");
}

TEST_F(ScreensTest, RecordsNoExcludedApplicationFromTheNextLookOn) {
    launch(u"timeline"_s);
    record(u"secret"_s);
    record(u"known by now"_s);
    const auto rows = [this] {
        return store.dump(u"SELECT count(*) FROM activity WHERE app_name = 'Chat'"_s);
    };
    EXPECT_TRUE(click(u"設定"_s, QAccessible::ListItem));
    EXPECT_TRUE(click(u"今日使ったアプリから追加"_s, QAccessible::ComboBox));
    EXPECT_TRUE(click(u"Chat"_s, QAccessible::ListItem));
    EXPECT_TRUE(isShown(u"jp.example.chat"_s));
    Q_EMIT desktop.events.applicationActivated(); // the next look closes the open row
    const std::string before = rows();
    const std::string end = store.dump(u"SELECT max(end) FROM activity"_s);
    record(u"secret too"_s);
    EXPECT_EQ(rows(), before);
    EXPECT_EQ(store.dump(u"SELECT max(end) FROM activity"_s), end);
    EXPECT_TRUE(click(u"外す"_s));
    record(u"open"_s);
    EXPECT_NE(rows(), before);
}

TEST_F(ScreensTest, KeepsTheSwitchesAndStartsAtLoginWithoutAWindow) {
    launch(u"settings"_s);
    const QString keepAlive = u"会議・動画のあいだは、操作がなくても記録する"_s;
    const QString atLogin = u"ログイン時に起動"_s;
    EXPECT_TRUE(isOn(keepAlive));
    EXPECT_FALSE(isOn(atLogin));
    EXPECT_TRUE(click(keepAlive, QAccessible::CheckBox));
    EXPECT_TRUE(click(atLogin, QAccessible::CheckBox));
    launch(u"settings"_s);
    EXPECT_FALSE(isOn(keepAlive)) << "it survives a restart";
    EXPECT_TRUE(isOn(atLogin));

    const QString entry = desktop.folder.filePath(u"kestu.desktop"_s);
    ASSERT_TRUE(QFile::exists(entry));
    const QStringList lines = QString::fromUtf8(test::contentsOf(entry)).split(u'\n');
    const QString exec = lines.filter(u"Exec="_s).value(0).mid(5);
    const QString database = desktop.folder.filePath(u"login.sqlite"_s);
    const test::Terminal front(u"Front"_s, u"front"_s);
    front.activate();
    {
        test::Program kestu(u"/bin/sh"_s, {u"-c"_s, u"exec "_s + exec}, {{u"KESTU_DB_PATH"_s, database}});
        ASSERT_TRUE(waitUntil([&] { return QFile::exists(database); }, 20000));
        waitUntil([] { return false; }, 1500);
        EXPECT_TRUE(kestu.isRunning());
        EXPECT_TRUE(test::outputOf(u"xdotool"_s, {u"search"_s, u"--onlyvisible"_s, u"--pid"_s,
                                                  QString::number(kestu.pid())})
                        .isEmpty())
            << "no window";
    }
    window->activateWindow();
    EXPECT_TRUE(click(atLogin, QAccessible::CheckBox));
    EXPECT_FALSE(QFile::exists(entry));
}

} // namespace
} // namespace kestu
