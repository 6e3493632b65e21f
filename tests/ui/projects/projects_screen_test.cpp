// SPDX-License-Identifier: GPL-3.0-or-later
//
// The screen of categories with a real store behind it: what is typed and clicked reaches the store at once,
// and the reload that follows leaves the user alone.
#include "app/AppModel.h"
#include "support/FakePlatform.h"
#include "support/SampleDay.h"
#include "support/Screen.h"
#include "support/TemporaryStore.h"
#include "ui/controls/ColorChoice.h"
#include "ui/controls/SegmentedPicker.h"
#include "ui/projects/AddCategoryRow.h"
#include "ui/projects/AddRuleRow.h"
#include "ui/projects/CategoryCard.h"
#include "ui/projects/NameField.h"
#include "ui/projects/ProjectsScreen.h"
#include "ui/projects/RulePickers.h"
#include "ui/projects/RuleRow.h"
#include "ui/projects/SuggestionRow.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <stdexcept>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

void press(QWidget* widget, Qt::Key key, const QString& text = {}, Qt::KeyboardModifiers modifiers = {}) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(widget, &event);
}

void type(QWidget* widget, const QString& text) {
    for (const QChar& character : text) {
        press(widget, Qt::Key_unknown, character);
    }
}

void compose(QWidget* widget, const QString& preedit, const QString& commit = {}) {
    QInputMethodEvent event(preedit, {});
    event.setCommitString(commit);
    QApplication::sendEvent(widget, &event);
}

template<typename Button = QPushButton>
Button* buttonIn(const QWidget& box, const QString& name) {
    for (auto* button : box.findChildren<Button*>()) {
        if (button->text() == name || button->accessibleName() == name) {
            return button;
        }
    }
    throw std::runtime_error("no button " + name.toStdString());
}

class ProjectsScreenTest : public testing::Test {
protected:
    ProjectsScreenTest() {
        test::fillSampleDay(*store.repository);
        store.execute(u"DELETE FROM rule"_s);
        store.execute(u"DELETE FROM rule_suggestion"_s);
    }

    void open() {
        model = std::make_unique<AppModel>(store.open(), platform,
                                           AppModel::Environment{.clock = [] { return test::sampleNow; },
                                                                 .calendar = test::tokyo,
                                                                 .screen = {}});
        screen = new ProjectsScreen(*model);
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(screen);
        window.resize(900, 560);
        window.show();
        window.activateWindow();
        settle();
    }

    static void settle() {
        for (int turn = 0; turn < 30; ++turn) {
            QApplication::processEvents();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    /// What another process writes, and the model's look at it.
    void otherProcess(const QString& sql) {
        store.execute(sql);
        model->deleteRule(-1);
    }

    [[nodiscard]] CategoryCard* card(RowId id) const {
        for (auto* candidate : window.findChildren<CategoryCard*>()) {
            if (candidate->id() == id && candidate->isVisible()) {
                return candidate;
            }
        }
        throw std::runtime_error("no card");
    }

    [[nodiscard]] NameField* nameOf(RowId id) const { return card(id)->findChild<NameField*>(); }
    [[nodiscard]] QString stored(RowId id) const { return model->project(id)->name; }

    [[nodiscard]] static QAbstractButton* shownButton(const QString& name) {
        QAccessibleInterface* found = test::findControl(name, QAccessible::Button);
        return found ? qobject_cast<QAbstractButton*>(found->object()) : nullptr;
    }

    [[nodiscard]] std::string rules() const {
        return store.dump(u"SELECT ifnull(project_id, 't') || ' ' || field || ' ' || op || ' ' || value "
                          "FROM rule ORDER BY sort, id"_s);
    }

    test::TemporaryStore store;
    test::FakePlatform platform;
    std::unique_ptr<AppModel> model;
    QWidget window;
    ProjectsScreen* screen = nullptr;
};

TEST_F(ProjectsScreenTest, AddsOfTheShownKindAndProposesTheNextColour) {
    store.execute(u"DELETE FROM tag"_s);
    open();
    auto* row = screen->findChild<AddCategoryRow*>();
    auto* name = row->findChild<QLineEdit*>();
    auto* colors = row->findChild<ColorChoice*>();
    EXPECT_EQ(colors->hex(), u"#4F7CF7"_s);
    Q_EMIT screen->findChild<SegmentedPicker*>()->chosen(1);
    EXPECT_TRUE(test::isShown(u"タグがありません"_s));
    type(name, u" 　"_s);
    press(name, Qt::Key_Return);
    EXPECT_FALSE(buttonIn(*row, u"追加"_s)->isEnabled());
    EXPECT_EQ(name->text(), u" 　"_s);
    for (int made = 1; made <= 8; ++made) {
        type(name, u"タグ "_s);
        press(name, Qt::Key_Return);
        EXPECT_EQ(name->text(), QString());
        EXPECT_EQ(colors->hex(), categoryPalette.at(static_cast<size_t>(made % 8)));
    }
    EXPECT_EQ(store.dump(u"SELECT count(*) || min(name) || max(name) FROM tag"_s), "8タグタグ");
    EXPECT_FALSE(test::isShown(u"タグがありません"_s));
}

TEST_F(ProjectsScreenTest, AddsAWordThatIsStillComposed) {
    open();
    auto* row = screen->findChild<AddCategoryRow*>();
    auto* name = row->findChild<QLineEdit*>();
    name->setFocus();
    EXPECT_FALSE(row->holdsDraft());
    compose(name, u"れんらく"_s);
    EXPECT_TRUE(row->holdsDraft());
    ASSERT_TRUE(buttonIn(*row, u"追加"_s)->isEnabled());
    compose(name, {});
    EXPECT_FALSE(buttonIn(*row, u"追加"_s)->isEnabled()) << "given up";
    compose(name, u"連絡"_s);
    buttonIn(*row, u"追加"_s)->click();
    EXPECT_EQ(store.dump(u"SELECT name FROM project WHERE id = 5"_s), "連絡");
    EXPECT_EQ(name->text(), QString());
    EXPECT_FALSE(row->holdsDraft());

    auto* value = card(1)->findChild<AddRuleRow*>()->findChild<QLineEdit*>();
    compose(value, u"会議"_s);
    buttonIn(*card(1), u"ルールを追加"_s)->click();
    EXPECT_EQ(rules(), "1 app contains 会議");
}

TEST_F(ProjectsScreenTest, KeepsAHalfTypedNameForItsKind) {
    open();
    auto* row = screen->findChild<AddCategoryRow*>();
    auto* name = row->findChild<QLineEdit*>();
    auto* picker = screen->findChild<SegmentedPicker*>();
    Q_EMIT picker->chosen(1);
    type(name, u"会"_s);
    compose(name, u"ぎ"_s);
    screen->hide();
    screen->show();
    EXPECT_EQ(picker->current(), 0);
    EXPECT_EQ(name->text(), QString()) << "a tag is no project";
    EXPECT_FALSE(buttonIn(*row, u"追加"_s)->isEnabled());
    EXPECT_TRUE(row->holdsDraft());
    Q_EMIT picker->chosen(1);
    EXPECT_EQ(name->text(), u"会ぎ"_s);
}

TEST_F(ProjectsScreenTest, KeepsTheValueOfARuleThatCouldNotBeWritten) {
    open();
    auto* row = card(1)->findChild<AddRuleRow*>();
    auto* value = row->findChild<QLineEdit*>();
    store.execute(u"CREATE TRIGGER t BEFORE INSERT ON rule BEGIN SELECT RAISE(ABORT, 'voll'); END"_s);
    type(value, u"a.example"_s);
    press(value, Qt::Key_Return);
    EXPECT_TRUE(model->errorMessage().value_or(QString()).contains(u"voll"_s));
    EXPECT_EQ(value->text(), u"a.example"_s);
    EXPECT_TRUE(row->holdsDraft());
    store.execute(u"DROP TRIGGER t"_s);
    press(value, Qt::Key_Return);
    EXPECT_EQ(rules(), "1 app contains a.example");
}

TEST_F(ProjectsScreenTest, StoresEveryKeyAndLeavesTheFieldToItsUser) {
    open();
    NameField* name = nameOf(1);
    NameField* other = nameOf(2);
    name->setFocus();
    name->setCursorPosition(1);
    type(name, u"BC"_s);
    EXPECT_EQ(stored(1), u"ABC社案件"_s);
    EXPECT_EQ(name->cursorPosition(), 3);
    EXPECT_TRUE(name->hasFocus());
    name->setSelection(0, 2);
    otherProcess(u"UPDATE project SET name = name || '!'"_s);
    EXPECT_EQ(name->text(), u"ABC社案件"_s) << "not under the user's hands";
    EXPECT_EQ(name->selectedText(), u"AB"_s);
    EXPECT_EQ(other->text(), u"KESTU開発!"_s);
    EXPECT_EQ(other, nameOf(2));
    name->undo();
    EXPECT_EQ(stored(1), u"A社案件"_s) << "and can be undone";
    otherProcess(u"UPDATE project SET name = 'X' WHERE id = 1"_s);
    other->setFocus();
    EXPECT_EQ(name->text(), u"X"_s) << "once it is left";
}

TEST_F(ProjectsScreenTest, StoresNothingWhileANameIsComposed) {
    open();
    NameField* name = nameOf(1);
    name->setFocus();
    name->selectAll();
    compose(name, u"かい"_s);
    otherProcess(u"UPDATE project SET color = '#000000'"_s);
    compose(name, u"会議"_s);
    EXPECT_EQ(stored(1), u"A社案件"_s);
    EXPECT_TRUE(name->hasFocus());
    compose(name, {}, u"会議"_s);
    EXPECT_EQ(stored(1), u"会議"_s);
    compose(name, u"さ"_s, u"録"_s);
    EXPECT_EQ(stored(1), u"会議録"_s) << "a word that ends as the next begins";
    compose(name, {});
    name->selectAll();
    compose(name, u"しゅ"_s);
    compose(name, {});
    EXPECT_EQ(stored(1), name->text()) << "given up, what is shown is what is stored";
}

TEST_F(ProjectsScreenTest, RecoloursAndKeepsTheName) {
    open();
    auto* colors = card(1)->findChild<ColorChoice*>();
    buttonIn<QAbstractButton>(*colors, u"緑"_s)->click();
    EXPECT_EQ(store.dump(u"SELECT name || color FROM project WHERE id = 1"_s), "A社案件#27AE60");
    EXPECT_EQ(colors->hex(), u"#27AE60"_s);
}

TEST_F(ProjectsScreenTest, DeletesACategoryOnlyAfterItsQuestion) {
    open();
    const auto ask = [this](RowId id) { buttonIn<QAbstractButton>(*card(id), u"削除"_s)->click(); };
    ask(1);
    EXPECT_TRUE(test::isShown(u"「A社案件」を削除しますか？"_s));
    EXPECT_TRUE(test::isShown(u"ルールも一緒に消えます。記録そのものは残り、未分類に戻ります。"_s));
    ASSERT_TRUE(shownButton(u"キャンセル"_s));
    EXPECT_TRUE(shownButton(u"キャンセル"_s)->hasFocus());
    shownButton(u"キャンセル"_s)->click();
    settle();
    EXPECT_TRUE(model->project(1));
    ask(2);
    otherProcess(u"DELETE FROM project WHERE id = 2"_s);
    settle();
    EXPECT_FALSE(shownButton(u"キャンセル"_s)) << "there is nothing left to ask about";
    ask(1);
    for (auto* button : window.findChildren<QPushButton*>()) {
        if (button->text() == u"削除"_s) {
            button->click();
        }
    }
    settle();
    EXPECT_EQ(store.dump(u"SELECT group_concat(id) FROM project"_s), "3,4");
    EXPECT_THROW((void)card(1), std::runtime_error);
}

TEST_F(ProjectsScreenTest, AddsChangesAndDeletesRulesInPlace) {
    open();
    auto* add = card(1)->findChild<AddRuleRow*>();
    auto* value = add->findChild<QLineEdit*>();
    add->findChild<RuleFieldPicker*>()->setField(RuleField::domain);
    value->setFocus();
    for (const QString& text : {u" "_s, u"a.example"_s, u" b.example "_s}) {
        value->clear();
        type(value, text);
        press(value, Qt::Key_Return);
    }
    EXPECT_EQ(rules(), "1 domain contains a.example\n1 domain contains b.example");
    EXPECT_EQ(add->findChild<RuleFieldPicker*>()->field(), RuleField::domain);
    EXPECT_TRUE(value->hasFocus());

    const auto rows = card(1)->findChildren<RuleRow*>();
    auto* op = rows.at(1)->findChild<RuleOperatorPicker*>();
    op->setFocus();
    op->setOp(RuleOperator::prefix);
    Q_EMIT op->activated(op->currentIndex());
    EXPECT_EQ(rules(), "1 domain contains a.example\n1 domain prefix b.example");
    auto* remove = buttonIn<QAbstractButton>(*rows.at(0), u"削除"_s);
    EXPECT_EQ(remove->accessibleDescription(), u"ドメイン が a.example を含む"_s);
    remove->click();
    settle();
    EXPECT_EQ(rules(), "1 domain prefix b.example");
    EXPECT_EQ(card(1)->findChildren<RuleRow*>(), QList{rows.at(1)});
    EXPECT_TRUE(op->hasFocus());

    type(value, u"c"_s);
    store.execute(u"DELETE FROM project WHERE id = 1"_s);
    press(value, Qt::Key_Return);
    EXPECT_TRUE(model->errorMessage());
    EXPECT_THROW((void)card(1), std::runtime_error) << "it is gone, the screen stands";
}

TEST_F(ProjectsScreenTest, TabReachesEverythingFromTheTopDown) {
    open();
    model->addRule({.kind = CategoryKind::project, .id = 1}, RuleField::app, RuleOperator::equals, u"x"_s);
    otherProcess(u"UPDATE project SET sort = -1 WHERE id = 4; INSERT INTO project (name, color, sort) VALUES "
                 "('neu', '#000000', 0);"_s);
    settle();
    QWidget* first = screen->findChild<AddCategoryRow*>()->findChild<QLineEdit*>();
    first->setFocus();
    int at = 0;
    int stops = 0;
    for (QWidget* now = first->nextInFocusChain(); now != first; now = now->nextInFocusChain()) {
        if (!now->isVisible() || !(now->focusPolicy() & Qt::TabFocus) || !screen->isAncestorOf(now)) {
            continue;
        }
        const QPoint place = now->mapTo(screen, QPoint());
        if (place.y() < first->mapTo(screen, QPoint()).y()) {
            continue; // what is above comes round again
        }
        EXPECT_GE(place.y() + 12, at) << now->metaObject()->className() << qPrintable(now->accessibleName());
        at = place.y();
        ++stops;
    }
    EXPECT_EQ(stops, (1 + 1) + 5 * (1 + 1 + 1 + 4) + 3) << "one for all colours, and the disabled buttons";
}

TEST_F(ProjectsScreenTest, SuggestionsSayWhatIsNewAndAreTakenOrRejected) {
    for (const auto& [kind, target] :
         {std::pair(u"tag"_s, u"　会議 "_s), {u"project"_s, u"kestu開発"_s}, {u"project"_s, u"会議"_s}}) {
        store->database().run(u"INSERT INTO rule_suggestion (target_kind, target_name, field, op, value, "
                              "created_at) VALUES (?, ?, 'app', 'equals', 'メール', 0)"_s,
                              {kind, target});
    }
    open();
    const auto rows = screen->findChildren<SuggestionRow*>();
    const auto news = [&] {
        std::string text;
        for (const SuggestionRow* row : rows) {
            for (const QLabel* label : row->findChildren<QLabel*>()) {
                text += label->text() == u"新規"_s ? (label->isVisible() ? "1" : "0") : "";
            }
        }
        return text;
    };
    EXPECT_EQ(news(), "001");
    EXPECT_TRUE(test::isShown(u"直近30日で 57分 に当たります"_s));
    model->updateCategory(CategoryKind::project, 2, u"開発"_s, u"#000000"_s);
    EXPECT_EQ(news(), "011") << "it follows the names";

    buttonIn(*rows.at(0), u"承認"_s)->setFocus();
    model->dismissSuggestion(model->suggestions().at(0));
    EXPECT_TRUE(buttonIn(*rows.at(1), u"承認"_s)->hasFocus()) << "and not the next one's 却下";
    buttonIn(*rows.at(2), u"承認"_s)->click();
    EXPECT_EQ(rules(), "5 app equals メール");
    EXPECT_FALSE(model->errorMessage());
    store.execute(u"DELETE FROM rule_suggestion"_s);
    buttonIn(*rows.at(1), u"承認"_s)->click();
    EXPECT_EQ(model->errorMessage(), u"提案が見つかりません（id: 2）"_s);
    EXPECT_TRUE(test::isShown(
        u"提案はありません。KESTUの MCP をつないだ Claude に頼むと、ここに承認待ちの提案が届きます（設定 → AI 連携）。"_s));
}

TEST_F(ProjectsScreenTest, CopiesTheRequestAndBeginsAnewWhenShownAgain) {
    open();
    shownButton(u"Claude に頼む文面をコピー"_s)->click();
    EXPECT_TRUE(QApplication::clipboard()->text().contains(u"suggest_rules で提案して。"_s));
    Q_EMIT screen->findChild<SegmentedPicker*>()->chosen(1);
    EXPECT_TRUE(shownButton(u"コピーしました"_s));
    screen->hide();
    screen->show();
    EXPECT_TRUE(shownButton(u"Claude に頼む文面をコピー"_s));
    EXPECT_EQ(screen->findChild<SegmentedPicker*>()->current(), 0);
}

} // namespace
} // namespace kestu
