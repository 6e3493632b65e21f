// SPDX-License-Identifier: GPL-3.0-or-later
//
// The settings as a person uses them, with a real store behind them.
#include "app/AppModel.h"
#include "support/FakePlatform.h"
#include "support/SampleDay.h"
#include "support/Screen.h"
#include "support/TemporaryStore.h"
#include "ui/controls/SwitchButton.h"
#include "ui/settings/SettingsScreen.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFileInfo>
#include <QPushButton>
#include <QScrollBar>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <stdexcept>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

class SettingsScreenTest : public testing::Test {
protected:
    SettingsScreenTest() {
        test::fillSampleDay(*store.repository);
        start();
    }

    /// The application, anew on the same settings.
    void start() {
        screen.reset();
        model.reset();
        model = std::make_unique<AppModel>(
            store.open(), platform,
            AppModel::Environment{.clock = [] { return test::sampleNow; },
                                  .calendar = test::tokyo,
                                  .screen = {},
                                  .assistantServer = u"/opt/会社 \"A\"/kestu-mcp"_s});
        model->loadSettings();
        model->start();
        screen = std::make_unique<SettingsScreen>(*model);
        screen->resize(700, 600);
        screen->show();
    }

    template<typename Control>
    [[nodiscard]] Control* control(const QString& name, const QString& description = {}) const {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (auto* candidate : screen->findChildren<Control*>()) {
            const QString own = candidate->accessibleName();
            QAccessibleInterface* shown = QAccessible::queryAccessibleInterface(candidate);
            if (candidate->isVisible() && (own.isEmpty() ? shown->text(QAccessible::Name) : own) == name &&
                (description.isNull() || candidate->accessibleDescription() == description)) {
                return candidate;
            }
        }
        throw std::runtime_error("no control " + name.toStdString());
    }

    void click(const QString& name) { control<QAbstractButton>(name)->click(); }
    [[nodiscard]] bool isOn(const QString& name) const { return control<SwitchButton>(name)->isChecked(); }

    [[nodiscard]] QComboBox* picker() const { return control<QComboBox>(u"今日使ったアプリから追加"_s); }
    [[nodiscard]] QStringList offered() const {
        QStringList names;
        for (int index = 0; index < picker()->count(); ++index) {
            names << picker()->itemText(index);
        }
        return names;
    }
    void pick(const QString& name) {
        const int index = picker()->findText(name);
        picker()->setCurrentIndex(index);
        Q_EMIT picker()->activated(index);
    }

    test::TemporaryStore store;
    test::FakePlatform platform;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<SettingsScreen> screen;
};

TEST_F(SettingsScreenTest, TheSwitchesSetWhatSurvivesTheNextStart) {
    const QString keepAlive = u"会議・動画のあいだは、操作がなくても記録する"_s;
    const QString atLogin = u"ログイン時に起動"_s;
    EXPECT_TRUE(isOn(keepAlive));
    EXPECT_FALSE(isOn(atLogin));
    click(keepAlive);
    click(atLogin);
    EXPECT_TRUE(platform.fakeLoginItem.enabled);
    start();
    EXPECT_FALSE(isOn(keepAlive));
    EXPECT_TRUE(isOn(atLogin));
    click(atLogin);
    EXPECT_FALSE(platform.fakeLoginItem.enabled);
}

TEST_F(SettingsScreenTest, RecordingIsSwitchedHereAndElsewhere) {
    EXPECT_TRUE(isOn(u"記録する"_s));
    click(u"記録する"_s);
    EXPECT_FALSE(model->isTracking());
    EXPECT_TRUE(model->userPaused());
    model->toggleTracking();
    EXPECT_TRUE(isOn(u"記録する"_s));
}

TEST_F(SettingsScreenTest, ARefusedLoginItemIsToldAndTheSwitchKeepsTheWish) {
    platform.fakeLoginItem.refusal = u"書き込めません"_s;
    click(u"ログイン時に起動"_s);
    EXPECT_EQ(model->errorMessage(), u"ログイン時に起動の設定に失敗しました：書き込めません"_s);
    EXPECT_TRUE(isOn(u"ログイン時に起動"_s));
    start();
    EXPECT_FALSE(isOn(u"ログイン時に起動"_s));
}

TEST_F(SettingsScreenTest, TheIdleTimeStaysWithinItsLimits) {
    const auto isShown = [](int minutes) {
        return test::isShown(u"%1分 操作がなければ「何もしていない」とみなす"_s.arg(minutes));
    };
    const QString less = u"何もしていないとみなすまでの時間を減らす"_s;
    const QString more = u"何もしていないとみなすまでの時間を増やす"_s;
    EXPECT_TRUE(isShown(3));
    for (int press = 0; press < 5; ++press) {
        click(less);
    }
    EXPECT_TRUE(isShown(1));
    EXPECT_FALSE(control<QAbstractButton>(less)->isEnabled());
    model->setIdleMinutes(29);
    click(more);
    click(more);
    EXPECT_FALSE(control<QAbstractButton>(more)->isEnabled());
    start();
    EXPECT_TRUE(isShown(30));
}

TEST_F(SettingsScreenTest, ApplicationsGoFromThePickerToTheListAndBack) {
    const QStringList all{u"選んでください"_s, u"Firefox"_s, u"Slack"_s,
                          u"エディタ"_s,       u"メール"_s,  u"表計算"_s};
    EXPECT_EQ(offered(), all) << "and not what was entered by hand";
    EXPECT_TRUE(test::isShown(u"なし"_s));
    pick(u"メール"_s);
    pick(u"Firefox"_s);
    EXPECT_EQ(picker()->currentText(), u"選んでください"_s);
    EXPECT_EQ(offered(), QStringList({all[0], all[2], all[3], all[5]}));
    EXPECT_FALSE(test::isShown(u"なし"_s));
    start();
    EXPECT_TRUE(test::isShown(u"jp.example.メール"_s));
    const auto* second = control<QPushButton>(u"外す"_s, u"メール"_s);
    auto* first = control<QPushButton>(u"外す"_s, u"Firefox"_s);
    EXPECT_LT(first->mapTo(screen.get(), QPoint()).y(), second->mapTo(screen.get(), QPoint()).y());
    first->click();
    EXPECT_EQ(control<QPushButton>(u"外す"_s), second) << "the other row is left alone";
    EXPECT_EQ(platform.fakeSettings.dictionaries[u"excludedApps"_s],
              (QMap<QString, QString>{{u"jp.example.メール"_s, u"メール"_s}}));
    EXPECT_TRUE(offered().contains(u"Firefox"_s));
}

TEST_F(SettingsScreenTest, NeitherTheWheelNorAnArrowExcludesAnApplication) {
    QWheelEvent wheel(QPointF(9, 9), QPointF(9, 9), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(picker(), &wheel);
    QKeyEvent letter(QEvent::KeyPress, Qt::Key_S, Qt::NoModifier, u"s"_s);
    QApplication::sendEvent(picker(), &letter);
    QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
    QApplication::sendEvent(picker(), &down);
    EXPECT_TRUE(model->excludedApps().isEmpty());
    EXPECT_TRUE(QApplication::activePopupWidget()) << "it opens the list";
    const QStringList before = offered();
    model->shiftDay(-1);
    EXPECT_EQ(offered(), before) << "which stays while it is open";
    picker()->hidePopup();
}

TEST_F(SettingsScreenTest, TheSnippetsAreCopiedToTheCharacter) {
    const QString command = u"Claude Code に登録するコマンド"_s;
    const QString json = u"Claude デスクトップの設定（JSON）"_s;
    EXPECT_TRUE(test::isShown(u"/opt/会社 \"A\"/kestu-mcp"_s));
    click(json);
    EXPECT_EQ(QGuiApplication::clipboard()->text(),
              u"{\n  \"mcpServers\": {\n    \"kestu\": {\n      \"command\": "
              u"\"/opt/会社 \"A\"/kestu-mcp\"\n    }\n  }\n}"_s);
    EXPECT_FALSE(test::isShown(json));
    click(command);
    EXPECT_EQ(QGuiApplication::clipboard()->text(),
              u"claude mcp add --scope user kestu -- \"/opt/会社 \"A\"/kestu-mcp\""_s);
    EXPECT_TRUE(test::isShown(json)) << "only the last one says that it was copied";
    EXPECT_TRUE(test::isShown(u"コピーしました"_s));
    screen->hide();
    screen->show();
    EXPECT_FALSE(test::isShown(u"コピーしました"_s));
}

TEST_F(SettingsScreenTest, ThePermissionSaysWhatThisSessionCanTell) {
    const auto tells = [](const QString& what, Ability::Kind kind) {
        return test::isShown(what + u"："_s + abilityText(kind));
    };
    for (const QString& what :
         {u"前面のウィンドウ（X11）"_s, u"ブラウザの URL"_s, u"操作のない時間"_s, u"画面のロック"_s}) {
        EXPECT_TRUE(tells(what, Ability::Kind::yes)) << what.toStdString();
    }
    const QString unseen = u"記録できません：ウィンドウを見られません"_s;
    EXPECT_FALSE(test::isShown(unseen));

    platform.loseSight(u"次のログインからわかります。"_s, Ability::Kind::afterLogin);
    EXPECT_TRUE(tells(u"前面のウィンドウ"_s, Ability::Kind::afterLogin));
    EXPECT_TRUE(tells(u"操作のない時間"_s, Ability::Kind::no));
    EXPECT_TRUE(test::isShown(u"次のログインからわかります。"_s));
    EXPECT_TRUE(isOn(u"記録する"_s)) << "that is wanted";
    EXPECT_TRUE(test::isShown(u"記録できません：次のログインから記録します"_s)) << "and cannot be had";
    EXPECT_FALSE(test::isShown(u"許可する"_s));

    Abilities askable = platform.fakeAccessibility.able;
    askable.windows = {
        .kind = Ability::Kind::no, .note = u"押すとオンになります。"_s, .mayBeRequested = true};
    platform.fakeAccessibility.become(askable);
    click(u"許可する"_s);
    EXPECT_EQ(platform.fakeAccessibility.requests, 1);
}

TEST_F(SettingsScreenTest, ThePermissionAndTheFolderAreThoseThatHold) {
    EXPECT_TRUE(test::isShown(u"許可済み"_s));
    platform.fakeAccessibility.granted = false;
    model->refreshAccessibility();
    EXPECT_FALSE(test::isShown(u"許可済み"_s));
    click(u"システム設定を開く"_s);
    EXPECT_EQ(platform.fakeAccessibility.settingsOpened, 1);
    const QString folder = QFileInfo(store.path).canonicalPath();
    EXPECT_TRUE(test::isShown(folder));
    EXPECT_TRUE(test::isShown(model->words().dataNote)) << "which names that folder";
    EXPECT_TRUE(model->words().dataNote.contains(folder));
    click(u"保存場所を開く"_s);
    EXPECT_EQ(platform.fakeOpener.folders, QStringList(folder));
}

} // namespace
} // namespace kestu
