// SPDX-License-Identifier: GPL-3.0-or-later
//
// The card of the day's note in a window, and the editor over it, with a real store behind them.
#include "app/AppModel.h"
#include "support/FakePlatform.h"
#include "support/SampleDay.h"
#include "support/Screen.h"
#include "support/TemporaryStore.h"
#include "ui/theme/Theme.h"
#include "ui/timeline/DayNoteCard.h"
#include "ui/timeline/NoteView.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextBlock>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

class DayNoteTest : public testing::Test {
protected:
    DayNoteTest() {
        test::fillSampleDay(*store.repository);
        store.execute(u"DELETE FROM daily_note"_s);
        model = std::make_unique<AppModel>(store.open(), platform,
                                           AppModel::Environment{.clock = [] { return test::sampleNow; },
                                                                 .calendar = test::tokyo,
                                                                 .screen = {}});
        auto* layout = new QVBoxLayout(&window);
        layout->setContentsMargins(24, 24, 24, 24);
        layout->addWidget(new DayNoteCard(*model));
        layout->addStretch();
        window.resize(398, 512);
        window.show();
        window.activateWindow();
        QCoreApplication::processEvents();
    }

    void note(const QString& summary, const QString& author = u"ai"_s) {
        store->saveDailyNote(u"2026-11-18"_s, summary, author);
        model->goToToday(); // which reads the day again
    }

    void press(const QString& name) {
        QAccessibleInterface* found = test::findControl(name, QAccessible::Button);
        ASSERT_TRUE(found) << name.toStdString();
        qobject_cast<QPushButton*>(found->object())->click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void type(Qt::Key key, Qt::KeyboardModifiers modifiers = {}, const QString& text = {}) {
        QWidget* focused = window.focusWidget();
        ASSERT_TRUE(focused);
        QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
        QApplication::sendEvent(focused, &event);
    }

    [[nodiscard]] QPlainTextEdit* editor() const { return window.findChild<QPlainTextEdit*>(); }
    [[nodiscard]] NoteView* view() const { return window.findChild<NoteView*>(); }
    [[nodiscard]] std::string notes() {
        return store.dump(u"SELECT day, summary, author FROM daily_note ORDER BY day"_s, 3);
    }

    test::TemporaryStore store;
    test::FakePlatform platform;
    std::unique_ptr<AppModel> model;
    QWidget window;
};

TEST_F(DayNoteTest, IsWrittenChangedAndTakenAway) {
    EXPECT_TRUE(test::isShown(u"この日のまとめはまだありません"_s));
    press(u"自分で書く"_s);
    ASSERT_EQ(window.focusWidget(), editor());
    editor()->setPlainText(u"# 午前"_s);
    editor()->moveCursor(QTextCursor::End);
    type(Qt::Key_Return, {}, u"\r"_s);
    EXPECT_EQ(editor()->toPlainText(), u"# 午前\n"_s);
    editor()->insertPlainText(u"**会議**"_s);
    type(Qt::Key_Return, Qt::ControlModifier, u"\r"_s);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(editor());
    EXPECT_EQ(notes(), "2026-11-18|# 午前\n**会議**|user");
    EXPECT_EQ(view()->toPlainText(), u"午前\n会議"_s);
    EXPECT_TRUE(test::isShown(u"自分"_s));
    EXPECT_FALSE(test::isShown(u"この日のまとめはまだありません"_s));
    EXPECT_EQ(qobject_cast<QPushButton*>(window.focusWidget())->text(), u"編集"_s);

    press(u"編集"_s);
    EXPECT_EQ(editor()->toPlainText(), u"# 午前\n**会議**"_s);
    type(Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(editor()) << "nothing was changed";
    press(u"編集"_s);
    editor()->setPlainText(u"別の"_s);
    type(Qt::Key_Escape);
    press(u"編集を続ける"_s);
    EXPECT_EQ(editor()->toPlainText(), u"別の"_s);
    press(u"キャンセル"_s);
    press(u"破棄"_s);
    EXPECT_FALSE(editor());
    EXPECT_EQ(notes(), "2026-11-18|# 午前\n**会議**|user");
    press(u"編集"_s);
    editor()->clear();
    press(u"保存"_s);
    EXPECT_EQ(notes(), "");
    EXPECT_TRUE(test::isShown(u"この日のまとめはまだありません"_s));
}

TEST_F(DayNoteTest, HalfTypedTextStaysAndGoesToItsDay) {
    press(u"自分で書く"_s);
    editor()->insertPlainText(u"書きかけ"_s);
    QInputMethodEvent composing(u"ちゅう"_s, {});
    QApplication::sendEvent(editor(), &composing);
    model->shiftDay(-1);
    EXPECT_EQ(editor()->toPlainText(), u"書きかけ"_s);
    EXPECT_EQ(editor()->textCursor().block().layout()->preeditAreaText(), u"ちゅう"_s);
    press(u"保存"_s);
    EXPECT_EQ(notes(), "2026-11-18|書きかけちゅう|user");
    EXPECT_FALSE(model->dayNote()) << "of the day before";
}

TEST_F(DayNoteTest, TheEscapeThatEndsACompositionEndsNothingElse) {
    press(u"自分で書く"_s);
    QInputMethodEvent composing(u"ちゅう"_s, {});
    QApplication::sendEvent(editor(), &composing);
    type(Qt::Key_Escape);
    ASSERT_TRUE(editor());
    EXPECT_EQ(editor()->textCursor().block().layout()->preeditAreaText(), QString());
    EXPECT_FALSE(test::isShown(u"破棄"_s, QAccessible::Button));
    type(Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(editor()) << "the next one ends the sheet";
}

TEST_F(DayNoteTest, ANoteThatCameMeanwhileIsReplacedOnlyWhenThatIsMeant) {
    note(u"古い"_s);
    press(u"編集"_s);
    note(u"AIの"_s);
    editor()->setPlainText(u"自分の"_s);
    press(u"保存"_s);
    EXPECT_TRUE(test::isShown(u"編集しているあいだに、この日のまとめが AI によって書き換えられました。"
                              "上書きすると、次の内容は消えます。\n\nAIの"_s));
    EXPECT_EQ(notes(), "2026-11-18|AIの|ai");
    press(u"編集を続ける"_s);
    editor()->clear();
    press(u"保存"_s);
    EXPECT_EQ(notes(), "2026-11-18|AIの|ai") << "nor taken away unasked";
    note(u"AIの次の"_s);
    press(u"上書き"_s);
    EXPECT_EQ(notes(), "2026-11-18|AIの次の|ai") << "another one than was shown";
    editor()->setPlainText(u"自分の"_s);
    press(u"上書き"_s);
    EXPECT_EQ(notes(), "2026-11-18|自分の|user");
    EXPECT_FALSE(editor());

    press(u"編集"_s);
    note(u""_s);
    editor()->setPlainText(u"また"_s);
    press(u"保存"_s);
    EXPECT_EQ(notes(), "2026-11-18|また|user") << "there was nothing to lose";
}

TEST_F(DayNoteTest, AFailureKeepsWhatWasWritten) {
    press(u"自分で書く"_s);
    editor()->insertPlainText(u"大事"_s);
    store.execute(u"ALTER TABLE daily_note RENAME TO away"_s);
    press(u"保存"_s);
    EXPECT_TRUE(model->errorMessage());
    ASSERT_TRUE(editor());
    store.execute(u"ALTER TABLE away RENAME TO daily_note"_s);
    press(u"保存"_s);
    EXPECT_EQ(notes(), "2026-11-18|大事|user");
}

TEST_F(DayNoteTest, TheRequestIsCopiedAndTheButtonSaysSoUntilAnotherDay) {
    press(u"Claude に頼む文面をコピー"_s);
    EXPECT_EQ(QApplication::clipboard()->text(), model->summaryRequest());
    EXPECT_TRUE(test::isShown(u"コピーしました"_s));
    model->goToToday();
    EXPECT_TRUE(test::isShown(u"コピーしました"_s)) << "the same day";
    model->shiftDay(-1);
    EXPECT_TRUE(test::isShown(u"Claude に頼む文面をコピー"_s));
}

TEST_F(DayNoteTest, LinksOfTheWebOpenAndNothingElseDoes) {
    note(u"[悪](file:///etc/passwd) [悪](javascript:1) ![悪](http://a.jp/i.png) [良](https://a.jp/あ) "
         "<mailto:a@a.jp>"_s);
    EXPECT_TRUE(test::isShown(u"AI"_s));
    view()->setFocus(Qt::TabFocusReason);
    for (int link = 0; link < 2; ++link) {
        type(Qt::Key_Return);
        type(Qt::Key_Tab);
    }
    EXPECT_EQ(platform.fakeOpener.addresses,
              (QList<QUrl>{QUrl(u"https://a.jp/あ"_s), QUrl(u"mailto:a@a.jp"_s)}));
}

TEST_F(DayNoteTest, IsAsHighAsItsTextAndStaysQuick) {
    note(u"一行"_s);
    QApplication::processEvents();
    EXPECT_EQ(view()->height(), 21);
    const QString text = u"長い **まとめ** の本文。\n"_s.repeated(3'000);
    QElapsedTimer timer;
    timer.start();
    note(text);
    QApplication::processEvents();
    EXPECT_LT(timer.elapsed(), 5'000);
    EXPECT_GE(view()->heightForWidth(320), 3'000 * 21);
    int changes = 0;
    QObject::connect(view()->document(), &QTextDocument::contentsChange, &window, [&] { ++changes; });
    store.now += Seconds{60};
    note(text, u"user"_s);
    EXPECT_TRUE(test::isShown(u"自分"_s));
    EXPECT_EQ(changes, 0) << "the same text is not laid out again";
}

} // namespace
} // namespace kestu
