// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/Alert.h"
#include "ui/controls/ColorChoice.h"
#include "ui/controls/Composition.h"
#include "ui/controls/FlowLayout.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/SegmentedPicker.h"
#include "ui/controls/Stepper.h"
#include "ui/controls/SwitchButton.h"
#include "ui/controls/TagChip.h"
#include "ui/controls/TextLabel.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QVBoxLayout>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace kestu {
namespace {

TEST(FlowLayout, BuildsRows) {
    struct Case {
        std::vector<QSize> sizes;
        int maximumWidth;
        std::vector<std::vector<std::size_t>> rows;
        QSize whole;
    };
    const std::vector<Case> cases{
        {{}, 150, {{}}, {0, 0}},
        {{{50, 20}, {50, 30}, {50, 10}}, 150, {{0, 1}, {2}}, {106, 46}},
        {{{50, 20}, {50, 30}, {50, 10}}, 162, {{0, 1, 2}}, {162, 30}},
        {{{300, 20}}, 150, {{0}}, {300, 20}},
        {{{40, 20}, {300, 25}, {40, 20}}, 150, {{0}, {1}, {2}}, {300, 77}},
    };
    for (const Case& expected : cases) {
        const std::vector<FlowRow> rows = flowRows(expected.sizes, expected.maximumWidth, 6);
        std::vector<std::vector<std::size_t>> indices;
        indices.reserve(rows.size());
        for (const FlowRow& row : rows) {
            indices.push_back(row.indices);
        }
        EXPECT_EQ(indices, expected.rows);
        EXPECT_EQ(flowSize(rows), expected.whole);
    }
}

TEST(FlowLayout, PlacesItemsAtTheirNaturalSizes) {
    QWidget box;
    auto* const flow = new FlowLayout(6, &box);
    std::vector<TagChip*> chips;
    for (const QString& name : {u"会議"_s, u"集中"_s, u"とても長い名前のタグ"_s}) {
        chips.push_back(
            new TagChip({.name = name, .color = Qt::red, .on = true, .note = {}}, TagChip::Kind::label));
        flow->addWidget(chips.back());
    }
    box.resize(140, flow->heightForWidth(140));
    flow->setGeometry(box.rect());
    EXPECT_EQ(chips[1]->pos(), QPoint(chips[0]->width() + 6, 0));
    EXPECT_EQ(chips[2]->pos(), QPoint(0, chips[0]->height() + 6));
    EXPECT_EQ(chips[2]->size(), chips[2]->sizeHint());
    EXPECT_EQ(box.height(), 2 * chips[0]->height() + 6);
}

class ControlsOnScreen : public testing::Test {
protected:
    void SetUp() override {
        m_host.resize(700, 500);
        m_host.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_host));
    }

    template<typename Control, typename... Arguments>
    Control* add(Arguments&&... arguments) {
        auto* const control = new Control(std::forward<Arguments>(arguments)..., &m_host);
        control->resize(control->sizeHint());
        control->show();
        return control;
    }

    QWidget m_host;
};

TEST_F(ControlsOnScreen, ClickableChipTogglesAndStaticOneDoesNot) {
    const TagChip::Look look{.name = u"会議"_s, .color = Qt::red, .on = false, .note = u"ルール"_s};
    auto* const chip = add<TagChip>(look, TagChip::Kind::clickable);
    QSignalSpy clicks(chip, &TagChip::clicked);
    QTest::mouseClick(chip, Qt::LeftButton);
    EXPECT_TRUE(chip->isChecked());
    QTest::keyClick(chip, Qt::Key_Space);
    EXPECT_FALSE(chip->isChecked());
    EXPECT_EQ(clicks.count(), 2);

    auto* const label = add<TagChip>(look, TagChip::Kind::label);
    QSignalSpy labelClicks(label, &TagChip::clicked);
    QTest::mouseClick(label, Qt::LeftButton);
    EXPECT_EQ(labelClicks.count(), 0);
    EXPECT_EQ(label->focusPolicy(), Qt::NoFocus);
}

TEST(TagChip, LeavesItsWholeNameRoomAtItsNaturalSize) {
    for (const QString& name : {u"顧客A"_s, u"会議"_s, u"KESTU"_s, u"集中 fi"_s}) {
        const TagChip chip({.name = name, .color = Qt::red, .on = true, .note = u"3時間21分"_s},
                           TagChip::Kind::label);
        const QRectF room = chipParts(chip.sizeHint(), widthOf(u"3時間21分"_s, chip.font())).name;
        EXPECT_EQ(elided(name, chip.font(), Qt::ElideRight, static_cast<int>(room.width())), name);
    }
}

TEST_F(ControlsOnScreen, ColorChoiceRingsOnlyTheExactText) {
    auto* const choice = add<ColorChoice>(QStringList{u"#4F7CF7"_s, u"#F2994A"_s});
    const auto swatches = choice->findChildren<QAbstractButton*>();
    choice->setHex(u"#F2994A"_s);
    EXPECT_FALSE(swatches[0]->isChecked());
    EXPECT_TRUE(swatches[1]->isChecked());
    choice->setHex(u"#f2994a"_s);
    EXPECT_FALSE(swatches[1]->isChecked());
    QSignalSpy chosen(choice, &ColorChoice::hexChosen);
    QTest::mouseClick(swatches[0], Qt::LeftButton);
    QTest::mouseClick(swatches[0], Qt::LeftButton);
    EXPECT_TRUE(swatches[0]->isChecked());
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(chosen.at(0).at(0).toString(), u"#4F7CF7"_s);
    for (int press = 0; press < 3; ++press) {
        QTest::keyClick(m_host.focusWidget(), Qt::Key_Right);
    }
    EXPECT_EQ(chosen.count(), 2);
    EXPECT_TRUE(swatches[1]->isChecked());
    EXPECT_EQ(m_host.focusWidget(), swatches[1]);
}

TEST_F(ControlsOnScreen, SegmentsAndStepperStayWithinTheirEnds) {
    auto* const picker = add<SegmentedPicker>(u"期間"_s, QStringList{u"日"_s, u"週"_s, u"月"_s});
    QSignalSpy chosen(picker, &SegmentedPicker::chosen);
    picker->setCurrent(1);
    const auto segments = picker->findChildren<Segment*>();
    segments[1]->setFocus();
    for (int press = 0; press < 3; ++press) {
        QTest::keyClick(m_host.focusWidget(), Qt::Key_Right);
    }
    EXPECT_EQ(picker->current(), 2);
    EXPECT_EQ(chosen.count(), 1);
    EXPECT_EQ(m_host.focusWidget(), segments[2]);

    auto* const stepper = add<Stepper>(u"休み"_s, u"分"_s, 1, 2);
    const auto halves = stepper->findChildren<StepperHalf*>();
    EXPECT_FALSE(halves[0]->isEnabled());
    QTest::mouseClick(halves[1], Qt::LeftButton);
    EXPECT_EQ(stepper->value(), 2);
    EXPECT_EQ(halves[0]->accessibleName(), u"休みを減らす"_s);
    EXPECT_EQ(halves[0]->accessibleDescription(), u"2分"_s);
    EXPECT_FALSE(halves[1]->isEnabled());
}

TEST_F(ControlsOnScreen, SwitchIsSwitchedByItsLabel) {
    auto* const label =
        add<TextLabel>(u"自動で振り分ける"_s, TextStyle::callout, ink::primary, Overflow::whole);
    auto* const toggle = add<SwitchButton>(QString());
    toggle->setLabel(label);
    QTest::mouseClick(label, Qt::LeftButton);
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_EQ(toggle->accessibleName(), label->text());
}

TEST_F(ControlsOnScreen, ElidedTextIsShownWholeAndPlainInItsTooltip) {
    auto* const label = add<TextLabel>(u"<b>太字</b> & とても長い名前のウィンドウ"_s, TextStyle::callout,
                                       ink::primary, Overflow::elideRight);
    EXPECT_FALSE(label->isElided());
    label->resize(60, label->height());
    ASSERT_TRUE(label->isElided());
    QHelpEvent help(QEvent::ToolTip, QPoint(5, 5), label->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(label, &help);
    EXPECT_TRUE(QToolTip::text().contains(u"&lt;b&gt;太字&lt;/b&gt; &amp; とても長い"_s))
        << QToolTip::text().toStdString();
}

TEST(TextLabel, WrapsWordsThatAreLongerThanItsLine) {
    const TextLabel label(u"/home/someone/"_s + QString(80, u'x'), TextStyle::callout, ink::primary,
                          Overflow::wrap);
    EXPECT_GT(label.heightForWidth(100), 3 * label.fontMetrics().height());
    EXPECT_LE(label.minimumSizeHint().width(), 40);
}

TEST_F(ControlsOnScreen, ReportNamesAndRoles) {
    const auto chip = [this](TagChip::Kind kind) {
        return add<TagChip>(TagChip::Look{.name = u"会議"_s, .color = Qt::red, .on = true, .note = u"2分"_s},
                            kind);
    };
    auto* const choice = add<ColorChoice>(QStringList{u"#4F7CF7"_s});
    auto* const picker = add<SegmentedPicker>(u"期間"_s, QStringList{u"日"_s});
    struct Case {
        QWidget* widget;
        QAccessible::Role role;
        QString name;
    };
    const std::vector<Case> cases{
        {chip(TagChip::Kind::clickable), QAccessible::CheckBox, u"会議 2分"_s},
        {chip(TagChip::Kind::label), QAccessible::StaticText, u"会議 2分"_s},
        {add<SwitchButton>(u"自動"_s), QAccessible::CheckBox, u"自動"_s},
        {add<IconButton>(u"trash"_s, u"削除"_s, IconButton::Kind::framed), QAccessible::Button, u"削除"_s},
        {choice->findChild<QAbstractButton*>(), QAccessible::RadioButton, u"青"_s},
        {picker, QAccessible::Grouping, u"期間"_s},
        {picker->findChild<Segment*>(), QAccessible::RadioButton, u"日"_s},
        {Alert::tell(&m_host, u"エラー"_s, u"理由"_s), QAccessible::Dialog, u"エラー"_s},
    };
    for (const Case& expected : cases) {
        QAccessibleInterface* const reported = QAccessible::queryAccessibleInterface(expected.widget);
        ASSERT_NE(reported, nullptr);
        EXPECT_EQ(reported->role(), expected.role) << expected.name.toStdString();
        EXPECT_EQ(reported->text(QAccessible::Name), expected.name);
    }
}

class SheetOverHost : public ControlsOnScreen {
protected:
    void SetUp() override {
        ControlsOnScreen::SetUp();
        m_page = add<QWidget>();
        m_name = new QLineEdit(m_page);
        m_name->show();
        m_off = add<QWidget>();
        m_off->setEnabled(false);
        m_name->setFocus();
    }

    QWidget* m_page = nullptr;
    QLineEdit* m_name = nullptr;
    QWidget* m_off = nullptr;
};

TEST_F(SheetOverHost, DisablesTheRestAndGivesItBackInWhateverOrderSheetsClose) {
    auto* const sheet = new Sheet(&m_host, 300);
    sheet->addButton(u"保存"_s, true);
    auto* const field = new QLineEdit;
    sheet->content()->addWidget(field);
    sheet->present();
    EXPECT_FALSE(m_name->isEnabled());
    EXPECT_TRUE(looksEnabled(m_name));
    EXPECT_FALSE(looksEnabled(m_off));
    EXPECT_EQ(m_host.focusWidget(), field);
    m_host.resize(800, 600);
    EXPECT_EQ(sheet->size(), QSize(800, 600));

    auto* const alert = Alert::tell(&m_host, u"エラー"_s, u"理由"_s);
    EXPECT_FALSE(field->isEnabled());
    sheet->close();
    EXPECT_FALSE(m_name->isEnabled()); // the alert is still above it
    alert->close();
    EXPECT_TRUE(m_name->isEnabled());
    EXPECT_FALSE(m_off->isEnabled());
    EXPECT_FALSE(m_page->property(coveredProperty).toBool());
}

TEST_F(SheetOverHost, KeepsTabInsideAndRestoresTheFocus) {
    auto* const sheet = new Sheet(&m_host, 300);
    QPushButton* const save = sheet->addButton(u"保存"_s, true);
    auto* const field = new QLineEdit;
    sheet->content()->addWidget(field);
    sheet->present();
    QTest::keyClick(m_host.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(m_host.focusWidget(), save);
    QTest::keyClick(m_host.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(m_host.focusWidget(), field);
    QTest::keyClick(m_host.focusWidget(), Qt::Key_Backtab);
    EXPECT_EQ(m_host.focusWidget(), save);

    QSignalSpy saved(save, &QPushButton::clicked);
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(saved.count(), 1);
    sheet->setDismissable(false);
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_TRUE(sheet->isPresented());
    sheet->setDismissable(true);
    QSignalSpy closed(sheet, &Sheet::closed);
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_EQ(closed.count(), 1);
    EXPECT_EQ(m_host.focusWidget(), m_name);
}

/// Holds a draft while its field is not empty.
class WritingSheet final : public Sheet {
public:
    explicit WritingSheet(QWidget* host)
        : Sheet(host, 300)
        , field(new QLineEdit)
        , composition(new Composition(field)) {
        content()->addWidget(field);
        present();
    }
    [[nodiscard]] bool holdsDraft() const override {
        return !field->text().isEmpty() || !composition->text().isEmpty();
    }

    QLineEdit* field;
    Composition* composition;
};

TEST_F(SheetOverHost, AsksOnceBeforeItLosesWhatWasTyped) {
    const auto sheet = QPointer(new WritingSheet(&m_host));
    const auto settle = [] { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); };
    const auto alert = [this] {
        const auto alerts = m_host.findChildren<Alert*>();
        return alerts.isEmpty() ? nullptr : alerts.back();
    };
    const auto compose = [&](const QString& preedit, const QString& commit = {}) {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(commit);
        QApplication::sendEvent(sheet->field, &event);
    };
    compose(u"かい"_s);
    QTest::keyClick(sheet->field, Qt::Key_Escape);
    ASSERT_TRUE(sheet);
    EXPECT_FALSE(alert()) << "the key was for the composition";
    EXPECT_EQ(sheet->composition->text(), QString());
    compose({}, u"会"_s);
    sheet->cancel();
    ASSERT_TRUE(alert());
    sheet->cancel();
    EXPECT_EQ(m_host.findChildren<Alert*>().size(), 1);
    QTest::keyClick(m_host.focusWidget(), Qt::Key_Return);
    settle();
    ASSERT_TRUE(sheet) << "without a choice nothing is lost";
    EXPECT_EQ(m_host.focusWidget(), sheet->field);
    sheet->cancel();
    QTest::keyClick(m_host.focusWidget(), Qt::Key_Tab);
    QTest::keyClick(m_host.focusWidget(), Qt::Key_Return);
    settle();
    EXPECT_FALSE(sheet);
    EXPECT_EQ(m_host.focusWidget(), m_name);

    const auto untouched = QPointer(new WritingSheet(&m_host));
    QTest::keyClick(untouched->field, Qt::Key_Escape);
    settle();
    EXPECT_FALSE(untouched);
}

TEST_F(ControlsOnScreen, CopyableTextIsCopiedWithTheKeyboard) {
    auto* const label =
        add<TextLabel>(u"/usr/bin/kestu-mcp"_s, TextStyle::callout, ink::primary, Overflow::elideMiddle);
    EXPECT_EQ(label->focusPolicy(), Qt::NoFocus);
    label->setCopyable(true);
    label->resize(40, label->height());
    label->setFocus(Qt::TabFocusReason);
    QTest::keyClick(m_host.focusWidget(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(m_host.focusWidget(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), u"/usr/bin/kestu-mcp"_s);
}

TEST_F(SheetOverHost, ScrollsWhatIsHigherThanTheHost) {
    auto* const sheet = new Sheet(&m_host, 300);
    QPushButton* const save = sheet->addButton(u"保存"_s, true);
    auto* const high = new QWidget;
    high->setFixedHeight(2000);
    sheet->content()->addWidget(high);
    sheet->present();
    const QRect card(save->parentWidget()->parentWidget()->geometry());
    EXPECT_EQ(card.height(), m_host.height() - 48);
    EXPECT_TRUE(m_host.rect().contains(QRect(save->mapTo(&m_host, QPoint(0, 0)), save->size())));
}

TEST_F(SheetOverHost, AlertAnswersByKeys) {
    const std::vector<AlertButton> buttons{
        {.text = u"キャンセル"_s, .part = AlertButton::Part::cancel, .role = ButtonRole::standard},
        {.text = u"続ける"_s, .part = AlertButton::Part::standard, .role = ButtonRole::standard}};
    std::vector<AlertButton> destructive = buttons;
    destructive[1] = {
        .text = u"削除"_s, .part = AlertButton::Part::other, .role = ButtonRole::destructiveFilled};
    struct Case {
        std::vector<AlertButton> buttons;
        Qt::Key key;
        int answer;
    };
    for (const Case& expected :
         {Case{buttons, Qt::Key_Return, 1}, Case{buttons, Qt::Key_Escape, 0},
          Case{destructive, Qt::Key_Return, 0}, Case{{buttons[1]}, Qt::Key_Escape, 0}}) {
        auto* const alert = Alert::ask(&m_host, u"確認"_s, u"理由"_s, expected.buttons);
        QSignalSpy answers(alert, &Alert::answered);
        QTest::keyClick(m_host.focusWidget(), expected.key);
        ASSERT_EQ(answers.count(), 1);
        EXPECT_EQ(answers.at(0).at(0).toInt(), expected.answer);
        EXPECT_EQ(m_host.focusWidget(), m_name);
    }
}

} // namespace
} // namespace kestu

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
