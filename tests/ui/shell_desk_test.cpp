// SPDX-License-Identifier: GPL-3.0-or-later
//
// The application as its user meets it, on a display with a window manager and a tray: controls are found by
// their accessible names and clicked with the display's mouse.
#include "app/AppModel.h"
#include "support/Desk.h"
#include "support/FakePlatform.h"
#include "support/PrivateBus.h"
#include "support/SampleDay.h"
#include "support/Screen.h"
#include "support/TemporaryStore.h"
#include "ui/HelpPages.h"
#include "ui/MainWindow.h"
#include "ui/MenuBarView.h"
#include "ui/Shell.h"
#include "ui/theme/KestuStyle.h"

#include <QApplication>
#include <QScreen>
#include <QTimer>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::click;
using test::isShown;
using test::pressKey;
using test::waitUntil;

constexpr int patience = 5000; // milliseconds

/// Counts what is drawn while it lives.
class PaintCounter final : public QObject {
public:
    PaintCounter() { qApp->installEventFilter(this); }

    int count = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        count += watched->isWidgetType() && event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

class ShellTest : public testing::Test {
protected:
    ShellTest() {
        test::fillSampleDay(*store.repository);
        platform.fakeSettings.booleans[u"welcomeShown"_s] = true;
        platform.fakeWorkspace.front = {.bundleId = u"a"_s, .localizedName = u"メール"_s, .processId = 1};
        platform.fakeWorkspace.title = u"<b>件名</b>"_s;
    }

    void launch(const QString& screen = {}) {
        auto repository = store.open();
        model = std::make_unique<AppModel>(std::move(repository), platform,
                                           AppModel::Environment{.clock = [this] { return now; },
                                                                 .calendar = test::tokyo,
                                                                 .screen = screen});
        shell = std::make_unique<Shell>(*model, [this] { return isTrayThere; });
        model->loadSettings();
        model->start();
        shell->showWindow();
        ASSERT_TRUE(waitUntil([this] { return shell->window()->isActiveWindow(); }, patience));
    }

    void closeWindow() {
        pressKey(u"alt+F4"_s);
        waitUntil([this] { return !shell->window() || shell->window()->isMinimized(); }, patience);
    }

    /// The tray moves its icons for a while.
    [[nodiscard]] bool hasTrayIcon() {
        QRect place;
        return waitUntil(
            [&] {
                const QRect before = std::exchange(place, shell->statusItem().geometry());
                waitUntil([] { return false; }, 300);
                return place.topLeft() != QPoint() && place == before;
            },
            15000);
    }

    [[nodiscard]] std::string rows() { return store.dump(u"SELECT count(*) FROM activity"_s); }

    void TearDown() override {
        shell.reset();
        model.reset();
        applyTheme(*qApp, lightColors());
    }

    Instant now = test::sampleNow;
    test::TemporaryStore store;
    test::FakePlatform platform;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<Shell> shell;
    bool isTrayThere = true;
};

TEST_F(ShellTest, GreetsOnceAndHasOneWayOutOfTheGreeting) {
    platform.fakeSettings.booleans.remove(u"welcomeShown"_s);
    platform.fakeAccessibility.granted = false;
    platform.fakeAccessibility.grantsOnRequest = true;
    launch();
    ASSERT_TRUE(isShown(u"KESTUへようこそ"_s));
    EXPECT_TRUE(isShown(u"1"_s));
    pressKey(u"Escape"_s);
    EXPECT_TRUE(isShown(u"KESTUへようこそ"_s));
    EXPECT_TRUE(click(u"レポート"_s, QAccessible::ListItem));
    EXPECT_EQ(model->screen(), SidebarItem::timeline) << "what lies beneath does not answer";

    EXPECT_TRUE(click(u"許可する"_s));
    EXPECT_EQ(platform.fakeAccessibility.requests, 1);
    EXPECT_TRUE(isShown(u"済み"_s));
    EXPECT_TRUE(click(u"はじめる"_s));
    EXPECT_FALSE(isShown(u"KESTUへようこそ"_s));
    EXPECT_TRUE(platform.fakeSettings.booleans.value(u"welcomeShown"_s));

    closeWindow();
    ASSERT_FALSE(shell->window());
    shell->showWindow();
    EXPECT_FALSE(isShown(u"KESTUへようこそ"_s));
}

TEST_F(ShellTest, PausesAndResumesFromThePanelAndFromTheMenu) {
    const test::Program tray(u"trayer"_s, {u"--edge"_s, u"top"_s, u"--align"_s, u"right"_s});
    launch();
    ASSERT_TRUE(hasTrayIcon());
    const auto iconName = [this] { return shell->statusItem().iconName(); };
    const auto clickIcon = [this] { test::clickAt(shell->statusItem().geometry().center()); };
    EXPECT_EQ(iconName(), u"clock.fill"_s);
    clickIcon();
    ASSERT_TRUE(waitUntil([this] { return shell->panel() && shell->panel()->isActiveWindow(); }, patience));
    EXPECT_TRUE(QGuiApplication::primaryScreen()->geometry().contains(shell->panel()->frameGeometry()));
    EXPECT_TRUE(isShown(u"<b>件名</b>"_s)) << "a title is text, whatever it holds";
    EXPECT_TRUE(isShown(u"3時間39分"_s));
    EXPECT_EQ(shell->statusItem().toolTip(), QString()) << "the desktop would cover the panel with it";

    EXPECT_TRUE(click(u"一時停止"_s));
    EXPECT_TRUE(isShown(u"一時停止中"_s)) << "in the sidebar too";
    EXPECT_EQ(iconName(), u"clock.badge.xmark"_s);
    EXPECT_TRUE(model->userPaused());
    EXPECT_TRUE(click(u"記録を再開"_s));
    EXPECT_TRUE(isShown(u"記録中"_s));

    pressKey(u"Escape"_s);
    EXPECT_TRUE(waitUntil([this] { return !shell->panel(); }, patience));
    EXPECT_EQ(shell->statusItem().toolTip(), u"KESTU：記録中"_s);
    QAction* toggle = shell->statusItem().menu().actions().first();
    EXPECT_EQ(toggle->text(), u"一時停止"_s);
    toggle->trigger();
    EXPECT_FALSE(model->isTracking());
    EXPECT_EQ(toggle->text(), u"記録を再開"_s);

    waitUntil([] { return false; }, 300); // a click that closes the panel does not open it again
    clickIcon();
    ASSERT_TRUE(waitUntil([this] { return shell->panel() && shell->panel()->isActiveWindow(); }, patience));
    shell->window()->activateWindow();
    EXPECT_TRUE(waitUntil([this] { return !shell->panel(); }, patience)) << "it closes without the focus";
}

TEST_F(ShellTest, KeepsThePanelBesideTheIconAndOnTheScreenWhateverItHolds) {
    const test::Program tray(u"trayer"_s, {u"--edge"_s, u"bottom"_s, u"--align"_s, u"right"_s});
    launch();
    ASSERT_TRUE(hasTrayIcon());
    model->shiftDay(-1); // without projects
    const auto isWellPlaced = [this] {
        const QRect place = shell->panel()->frameGeometry();
        return QGuiApplication::primaryScreen()->availableGeometry().contains(place) &&
               !place.intersects(shell->statusItem().geometry()) &&
               shell->statusItem().geometry().top() - place.bottom() < 20;
    };
    test::clickAt(shell->statusItem().geometry().center());
    ASSERT_TRUE(waitUntil([this] { return shell->panel() && shell->panel()->isActiveWindow(); }, patience));
    EXPECT_TRUE(waitUntil(isWellPlaced, patience));
    shell->panel()->move(300, 300); // as some window managers do to whatever is new
    EXPECT_TRUE(waitUntil(isWellPlaced, patience));
    const int before = shell->panel()->height();
    model->goToToday();
    EXPECT_TRUE(waitUntil([&] { return shell->panel()->height() > before && isWellPlaced(); }, patience));
    model->toggleTracking();
    EXPECT_TRUE(waitUntil(isWellPlaced, patience));
    EXPECT_TRUE(click(u"記録を再開"_s)) << "its buttons are reached";
}

TEST_F(ShellTest, OpensTheWindowWhereItWasAndAlwaysOnAScreen) {
    launch();
    shell->window()->setGeometry(300, 200, 950, 600);
    ASSERT_TRUE(
        waitUntil([this] { return shell->window()->geometry() == QRect(300, 200, 950, 600); }, patience));
    closeWindow();
    ASSERT_FALSE(shell->window());
    const auto reopen = [this] {
        shell->showWindow();
        return waitUntil([this] { return shell->window()->isActiveWindow(); }, patience);
    };
    ASSERT_TRUE(reopen());
    EXPECT_TRUE(
        waitUntil([this] { return shell->window()->geometry() == QRect(300, 200, 950, 600); }, patience))
        << shell->window()->x() << ' ' << shell->window()->y();

    shell->window()->showMaximized();
    ASSERT_TRUE(waitUntil([this] { return shell->window()->width() > 1800; }, patience));
    closeWindow();
    ASSERT_TRUE(reopen());
    EXPECT_TRUE(waitUntil([this] { return shell->window()->width() > 1800; }, patience));
    shell->window()->showNormal();
    EXPECT_TRUE(waitUntil([this] { return shell->window()->size() == QSize(950, 600); }, patience));
    closeWindow();

    auto& stored = platform.fakeSettings.dictionaries[u"window"_s];
    for (const auto& [x, width] : {std::pair(u"5000"_s, u"950"_s), std::pair(u"-20"_s, u"9000"_s)}) {
        stored[u"x"_s] = x;
        stored[u"width"_s] = width;
        ASSERT_TRUE(reopen());
        EXPECT_TRUE(waitUntil(
            [this] {
                return QGuiApplication::primaryScreen()->geometry().contains(
                    shell->window()->frameGeometry());
            },
            patience))
            << x.toStdString();
        closeWindow();
    }
    for (const auto& absurd : {QMap<QString, QString>{}, {{u"x"_s, u"many"_s}}}) {
        stored = absurd;
        ASSERT_TRUE(reopen());
        EXPECT_EQ(shell->window()->size(), QSize(1100, 720));
        closeWindow();
    }
}

TEST_F(ShellTest, PausesAndChangesItsColoursFromTheWindowsMenu) {
    launch();
    EXPECT_TRUE(click(u"メニュー"_s));
    EXPECT_TRUE(click(u"一時停止"_s, QAccessible::MenuItem));
    EXPECT_FALSE(model->isTracking());
    EXPECT_TRUE(click(u"メニュー"_s));
    EXPECT_TRUE(click(u"記録を再開"_s, QAccessible::MenuItem));
    EXPECT_TRUE(model->isTracking());

    const auto isChecked = [](const QString& name) {
        const auto* item = test::findControl(name, QAccessible::MenuItem);
        return item && item->state().checked;
    };
    EXPECT_TRUE(click(u"メニュー"_s));
    EXPECT_TRUE(click(u"外観"_s, QAccessible::MenuItem));
    EXPECT_TRUE(waitUntil([&] { return isChecked(u"システムに合わせる"_s); }, patience));
    EXPECT_TRUE(click(u"ダーク"_s, QAccessible::MenuItem));
    EXPECT_EQ(model->themeChoice(), ThemeChoice::dark);
    EXPECT_TRUE(click(u"メニュー"_s));
    EXPECT_TRUE(click(u"外観"_s, QAccessible::MenuItem));
    EXPECT_TRUE(waitUntil([&] { return isChecked(u"ダーク"_s); }, patience));
    EXPECT_FALSE(isChecked(u"システムに合わせる"_s));
    pressKey(u"Escape"_s);
    pressKey(u"Escape"_s);
    shell.reset();
    model.reset();
    launch();
    EXPECT_EQ(model->themeChoice(), ThemeChoice::dark) << "after a new start";
}

TEST_F(ShellTest, RecordsOnBehindAClosedWindowAndOpensItAgainOnToday) {
    platform.fakeSettings.booleans.remove(u"welcomeShown"_s);
    launch();
    pressKey(u"Return"_s);
    EXPECT_FALSE(isShown(u"KESTUへようこそ"_s)) << "Return begins";
    model->shiftDay(-3);
    closeWindow();
    ASSERT_FALSE(shell->window());
    const std::string before = rows();
    platform.fakeWorkspace.title = u"別の題"_s;
    now += Seconds{2};
    Q_EMIT platform.events.applicationActivated();
    EXPECT_NE(rows(), before);
    shell->statusItem().menu().actions().at(1)->trigger();
    ASSERT_TRUE(waitUntil([this] { return shell->window() && shell->window()->isActiveWindow(); }, patience));
    EXPECT_TRUE(model->isTodaySelected());
}

TEST_F(ShellTest, AsksBeforeItQuitsOrClosesOnWhatIsHalfTyped) {
    const auto type = [](const QString& text) {
        test::outputOf(u"xdotool"_s, {u"type"_s, u"--delay"_s, u"30"_s, text});
        waitUntil([] { return false; }, 100);
    };
    const auto isAsked = [] { return isShown(u"入力した内容を破棄しますか？"_s); };
    launch(u"settings"_s);
    pressKey(u"ctrl+n"_s);
    ASSERT_TRUE(waitUntil([this] { return model->manualDraft().has_value(); }, patience));
    EXPECT_EQ(model->screen(), SidebarItem::timeline);
    closeWindow();
    EXPECT_FALSE(shell->window()) << "nothing was typed";
    EXPECT_FALSE(model->manualDraft());

    shell->showWindow();
    ASSERT_TRUE(waitUntil([this] { return shell->window()->isActiveWindow(); }, patience));
    pressKey(u"ctrl+n"_s);
    type(u"meeting"_s); // it begins in its title
    pressKey(u"alt+F4"_s);
    EXPECT_TRUE(waitUntil(isAsked, patience));
    pressKey(u"Escape"_s);
    EXPECT_FALSE(isAsked());
    shell->window()->showMinimized();
    shell->statusItem().menu().actions().last()->trigger();
    EXPECT_TRUE(waitUntil([&] { return isAsked() && shell->window()->isActiveWindow(); }, patience));
    pressKey(u"ctrl+q"_s);
    EXPECT_TRUE(click(u"編集を続ける"_s));
    EXPECT_FALSE(isAsked()) << "once";
    QTimer::singleShot(0, [] {
        pressKey(u"ctrl+q"_s);
        EXPECT_TRUE(click(u"破棄"_s));
    });
    QTimer::singleShot(10000, qApp, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QApplication::exec(), 0);

    isTrayThere = false;
    closeWindow();
    ASSERT_TRUE(waitUntil([this] { return shell->window()->isMinimized(); }, patience));
    EXPECT_FALSE(isAsked()) << "a minimised window loses nothing";
}

TEST_F(ShellTest, MinimisesWhereThereIsNoTray) {
    isTrayThere = false;
    launch();
    closeWindow();
    ASSERT_TRUE(shell->window());
    EXPECT_TRUE(waitUntil([this] { return shell->window()->isMinimized(); }, patience));
    shell->showWindow();
    EXPECT_TRUE(waitUntil([this] { return shell->window()->isActiveWindow(); }, patience));

    QTimer::singleShot(0, [this] { shell->statusItem().menu().actions().last()->trigger(); });
    EXPECT_EQ(QApplication::exec(), 0) << "a window that does not close does not keep KESTU from quitting";

    isTrayThere = true;
    closeWindow();
    ASSERT_FALSE(shell->window());
    isTrayThere = false;
    EXPECT_TRUE(waitUntil([this] { return shell->window() != nullptr; }, 8000)) << "the tray is gone";
}

TEST_F(ShellTest, SaysAnErrorOnceWhateverHappensBeneath) {
    launch();
    QFile::rename(store.path, store.path + u".moved"_s);
    ASSERT_TRUE(waitUntil([] { return isShown(u"エラー"_s); }, 8000));
    pressKey(u"Return"_s);
    EXPECT_FALSE(isShown(u"エラー"_s));
    EXPECT_FALSE(model->errorMessage());
    waitUntil([] { return false; }, 500);
    PaintCounter paints;
    EXPECT_FALSE(waitUntil([] { return isShown(u"エラー"_s); }, 7000)) << "not again with each look";
    EXPECT_EQ(paints.count, 0) << "ticks that change nothing redraw nothing";

    model->setErrorMessage(u"x <b>y</b>"_s);
    EXPECT_TRUE(isShown(u"x <b>y</b>"_s));
    pressKey(u"Escape"_s);
    EXPECT_FALSE(model->errorMessage());
}

TEST_F(ShellTest, CountsWhatAnotherProcessSuggests) {
    launch();
    const auto other = store.open();
    other->database().run(u"DELETE FROM rule_suggestion"_s);
    const auto badge = [] {
        return test::findControl(u"分類とルール"_s, QAccessible::ListItem)->text(QAccessible::Description);
    };
    EXPECT_TRUE(waitUntil([&] { return badge().isEmpty(); }, 4000));
    for (int i = 0; i < 3; ++i) {
        other->database().run(u"INSERT INTO rule_suggestion (target_kind, target_name, field, op, value, "
                              "created_at) VALUES ('tag', 't', 'app', 'equals', 'v', 0)"_s);
    }
    EXPECT_TRUE(waitUntil([&] { return badge() == u"提案 3 件"_s; }, 4000));
}

TEST_F(ShellTest, ShowsTheBannerUntilTitlesCanBeRead) {
    platform.fakeAccessibility.granted = false;
    launch();
    ASSERT_TRUE(isShown(u"許可する"_s));
    EXPECT_TRUE(click(u"許可する"_s));
    EXPECT_TRUE(click(u"システム設定を開く"_s));
    EXPECT_EQ(platform.fakeAccessibility.settingsOpened, 1);
    EXPECT_TRUE(isShown(u"許可する"_s));

    const test::Terminal settings(u"Settings"_s, u"settings"_s);
    settings.activate();
    platform.fakeAccessibility.granted = true;
    ASSERT_TRUE(waitUntil([this] { return !shell->window()->isActiveWindow(); }, patience));
    shell->showWindow();
    EXPECT_TRUE(waitUntil([] { return !isShown(u"許可する"_s); }, patience)) << "on coming back";
}

TEST_F(ShellTest, SaysThatNoWindowCanBeSeenAsLongAsThatIsSo) {
    const QString why = u"手前のウィンドウがわかりません。"_s;
    const Abilities seen = platform.fakeAccessibility.able;
    platform.loseSight(why);
    launch();
    const auto told = [] { return isShown(u"ウィンドウを見られません"_s); };
    EXPECT_TRUE(told());
    EXPECT_TRUE(isShown(u"記録できません"_s));
    EXPECT_TRUE(isShown(why));
    EXPECT_FALSE(isShown(u"記録中"_s));
    EXPECT_EQ(shell->statusItem().iconName(), u"clock.badge.xmark"_s);
    EXPECT_FALSE(isShown(u"許可する"_s)) << "a permission would not help";

    Abilities askable = platform.fakeAccessibility.able;
    askable.windows.mayBeRequested = true;
    platform.fakeAccessibility.become(askable);
    EXPECT_TRUE(isShown(u"許可する"_s)) << "here it would";
    EXPECT_TRUE(isShown(u"ウィンドウを記録するには許可が必要です"_s));

    Abilities partly = seen;
    partly.windows = partly.titles = {.kind = Ability::Kind::partly, .note = u"端末は見えません。"_s};
    platform.fakeWorkspace.unseen.clear();
    platform.fakeAccessibility.become(partly);
    EXPECT_TRUE(isShown(u"一部を記録中"_s)) << "at once";
    EXPECT_TRUE(isShown(u"端末は見えません。"_s));
    EXPECT_EQ(shell->statusItem().iconName(), u"clock.fill"_s);
    platform.fakeAccessibility.become(seen);
    EXPECT_TRUE(isShown(u"記録中"_s));
    EXPECT_FALSE(isShown(u"許可する"_s));

    shell->window()->close();
    platform.loseSight(why);
    Commands commands(*model);
    MenuBarView panel(*model, commands);
    panel.show();
    EXPECT_TRUE(waitUntil(told, patience)) << "in the panel";
    model->toggleTracking();
    EXPECT_FALSE(told()) << "paused it looks for none";
}

TEST_F(ShellTest, OpensTheHelpPagesAndAnswersWhetherThereIsANewerVersion) {
    launch();
    pressKey(u"F1"_s);
    EXPECT_TRUE(click(u"メニュー"_s));
    EXPECT_TRUE(click(u"うまくいかないとき"_s, QAccessible::MenuItem));
    EXPECT_TRUE(click(u"メニュー"_s));
    EXPECT_TRUE(click(u"利用規約"_s, QAccessible::MenuItem));
    EXPECT_EQ(platform.fakeOpener.pages,
              (QStringList{fileOf(HelpPage::start), fileOf(HelpPage::support), fileOf(HelpPage::terms)}));

    const std::pair<UpdateAnswer, QString> rowsOfTest[] = {
        {{.kind = UpdateAnswer::Kind::available, .version = u"9.1"_s},
         u"新しいバージョン 9.1 があります。パッケージマネージャーから更新してください。"_s},
        {{.kind = UpdateAnswer::Kind::upToDate, .version = {}},
         u"お使いのバージョン %1 は最新です。"_s.arg(QApplication::applicationVersion())},
        {{.kind = UpdateAnswer::Kind::unavailable, .version = {}},
         u"アップデートを確認できませんでした。パッケージマネージャーで確認してください。"_s},
    };
    for (const auto& [answer, text] : rowsOfTest) {
        EXPECT_TRUE(click(u"メニュー"_s));
        EXPECT_TRUE(click(u"アップデートを確認…"_s, QAccessible::MenuItem));
        ASSERT_TRUE(waitUntil([this] { return !platform.fakeUpdates.asked.empty(); }, patience));
        platform.fakeUpdates.asked.back()(answer);
        EXPECT_TRUE(isShown(text)) << text.toStdString();
        EXPECT_TRUE(click(u"OK"_s));
    }

    shell->checkForUpdatesQuietly();
    platform.fakeUpdates.asked.back()(rowsOfTest[0].first);
    EXPECT_FALSE(isShown(rowsOfTest[0].second)) << "nobody asked";
    EXPECT_TRUE(click(u"メニュー"_s));
    EXPECT_TRUE(isShown(u"バージョン 9.1 を入手できます"_s));
    pressKey(u"Escape"_s);
}

TEST_F(ShellTest, BeginsOnTheNamedScreenAndFollowsTheSidebar) {
    launch(u"settings"_s);
    EXPECT_EQ(shell->window()->windowTitle(), u"設定"_s);
    EXPECT_TRUE(click(u"分類とルール"_s, QAccessible::ListItem));
    EXPECT_EQ(model->screen(), SidebarItem::projects);
    pressKey(u"Up"_s);
    EXPECT_EQ(model->screen(), SidebarItem::report);
    EXPECT_EQ(shell->window()->windowTitle(), u"KESTU"_s);
    const std::pair<QString, SidebarItem> keys[] = {{u"ctrl+1"_s, SidebarItem::timeline},
                                                    {u"ctrl+3"_s, SidebarItem::projects},
                                                    {u"ctrl+2"_s, SidebarItem::report},
                                                    {u"ctrl+comma"_s, SidebarItem::settings},
                                                    {u"ctrl+4"_s, SidebarItem::settings}};
    for (const auto& [key, screen] : keys) {
        pressKey(key);
        EXPECT_EQ(model->screen(), screen) << key.toStdString();
    }
    pressKey(u"ctrl+2"_s);
    const auto isElsewhere = [] { return !test::findControl(u"いま"_s)->state().disabled; };
    EXPECT_FALSE(isElsewhere());
    pressKey(u"alt+Left"_s);
    EXPECT_TRUE(waitUntil(isElsewhere, patience));
    pressKey(u"ctrl+comma"_s);
    model->setErrorMessage(u"x"_s);
    pressKey(u"ctrl+1"_s);
    EXPECT_EQ(model->screen(), SidebarItem::settings) << "not beneath an alert";
}

TEST_F(ShellTest, IsReachableByKeyboardInTheOrderOfTheEye) {
    platform.fakeAccessibility.granted = false;
    launch();
    QStringList reached;
    for (int i = 0; i < 4; ++i) {
        reached
            << QAccessible::queryAccessibleInterface(QApplication::focusWidget())->text(QAccessible::Name);
        pressKey(u"Tab"_s);
    }
    EXPECT_EQ(reached, (QStringList{u"画面"_s, u"メニュー"_s, u"許可する"_s, u"システム設定を開く"_s}));
}

TEST_F(ShellTest, FollowsAChangeOfTheDesktopsColours) {
    launch();
    const auto corner = [this] { return shell->window()->grab().toImage().pixelColor(2, 200); };
    EXPECT_EQ(corner(), lightColors().sidebar);
    applyTheme(*qApp, darkColors());
    EXPECT_TRUE(waitUntil([&] { return corner() == darkColors().sidebar; }, patience));
}

TEST(PanelPosition, IsBesideItsAnchorAndInsideTheScreen) {
    const QRect whole(0, 0, 1000, 800);
    const QRect second(1000, 200, 600, 400);
    const struct {
        QRect anchor;
        QRect room; // of the anchor's screen, with or without the desktop's panels
        QPoint expected;
    } rows[] = {
        {{490, 0, 20, 20}, whole, {359, 26}},                // a tray at the top
        {{490, 780, 20, 20}, whole, {359, 474}},             // at the bottom
        {{490, 780, 20, 20}, {0, 0, 1000, 770}, {359, 464}}, // which keeps its room free
        {{980, 0, 20, 20}, whole, {714, 26}},                // in a corner
        {{0, 390, 24, 24}, whole, {30, 251}},                // in a column at the left
        {{976, 390, 24, 24}, whole, {690, 251}},             // at the right
        {{976, 390, 24, 24}, {0, 0, 970, 800}, {684, 251}},  // which keeps its room free
        {{1580, 580, 20, 20}, second, {1314, 274}},          // on another screen
        {{1400, 200, 20, 20}, second, {1269, 226}},          //
        {{500, 10, 1, 1}, whole, {360, 17}},                 // no place known: the cursor's
        {{2, 799, 1, 1}, whole, {6, 493}},                   // in the other corner
        {{490, 300, 20, 20}, {0, 0, 1000, 320}, {516, 14}},  // neither above nor below
    };
    const QSize panel(280, 300);
    for (const auto& row : rows) {
        const QPoint found = panelPosition(panel, row.anchor, row.room);
        EXPECT_EQ(found, row.expected) << row.anchor.x() << ' ' << row.anchor.y();
        EXPECT_FALSE(QRect(found, panel).intersects(row.anchor)) << row.anchor.x() << ' ' << row.anchor.y();
        EXPECT_TRUE(row.room.contains(QRect(found, panel))) << row.anchor.x() << ' ' << row.anchor.y();
    }
}

} // namespace
} // namespace kestu
