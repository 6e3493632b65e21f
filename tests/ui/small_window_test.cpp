// SPDX-License-Identifier: GPL-3.0-or-later
//
// The main window on small and scaled screens: nothing is cut off, everything is reached.
#include "app/AppModel.h"
#include "support/FakePlatform.h"
#include "support/SampleDay.h"
#include "support/TemporaryStore.h"
#include "ui/Commands.h"
#include "ui/MainWindow.h"
#include "ui/WindowPlace.h"
#include "ui/controls/Sheet.h"
#include "ui/controls/TextLabel.h"
#include "ui/timeline/HourBars.h"
#include "ui/timeline/SidePanel.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

constexpr QSize smallest{640, 400};

class SmallWindowTest : public testing::Test {
protected:
    SmallWindowTest() {
        test::fillSampleDay(*store.repository);
        test::fillSampleWeek(*store.repository);
        platform.fakeSettings.booleans[u"welcomeShown"_s] = true;
        model = std::make_unique<AppModel>(store.open(), platform,
                                           AppModel::Environment{.clock = [] { return test::sampleNow; },
                                                                 .calendar = test::tokyo,
                                                                 .screen = {}});
        model->loadSettings();
        commands = std::make_unique<Commands>(*model);
    }

    void open(const QSize& size) {
        window = std::make_unique<MainWindow>(*model, *commands);
        window->setMinimumSize(window->minimumSize().boundedTo(size)); // for tiling managers do not ask
        window->resize(size);
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    [[nodiscard]] QAbstractButton* button(const QString& name) const {
        for (auto* candidate : window->findChildren<QAbstractButton*>()) {
            if (candidate->isVisible() &&
                (candidate->text() == name || candidate->accessibleName() == name)) {
                return candidate;
            }
        }
        return nullptr;
    }

    void press(const QString& name) const {
        ASSERT_TRUE(button(name)) << name.toStdString();
        button(name)->click();
        QApplication::processEvents();
    }

    void key(Qt::Key pressed) const {
        QTest::keyClick(window->focusWidget() ? window->focusWidget() : window.get(), pressed);
        QApplication::processEvents();
    }

    /// What is shown of a text or a control is less than it needs, or lies where nobody can scroll to.
    [[nodiscard]] std::string cutOff() const {
        QStringList found;
        for (auto* widget : window->findChildren<QWidget*>()) {
            if (widget->isVisible() && (isCut(*widget) || isOutside(*widget))) {
                const auto* label = qobject_cast<const QLabel*>(widget);
                const auto* control = qobject_cast<const QAbstractButton*>(widget);
                found << QLatin1String(widget->metaObject()->className()) + u' ' +
                             (label     ? label->text()
                              : control ? control->text() + control->accessibleName()
                                        : widget->accessibleName());
            }
        }
        return found.join(u'\n').toStdString();
    }

    bool mayScrollAside = false;
    test::TemporaryStore store;
    test::FakePlatform platform;
    std::unique_ptr<AppModel> model;
    std::unique_ptr<Commands> commands;
    std::unique_ptr<MainWindow> window;

private:
    static bool isCut(const QWidget& widget) {
        if (const auto* label = qobject_cast<const TextLabel*>(&widget)) {
            return label->hasHeightForWidth() && label->heightForWidth(label->width()) > 0
                       ? label->height() < label->heightForWidth(label->width())
                       : label->width() < label->minimumSizeHint().width();
        }
        const auto* control = qobject_cast<const QAbstractButton*>(&widget);
        return control && control->width() < control->fontMetrics().horizontalAdvance(control->text());
    }

    bool isOutside(const QWidget& widget) const {
        const bool isMet = qobject_cast<const QAbstractButton*>(&widget) ||
                           qobject_cast<const QComboBox*>(&widget) ||
                           qobject_cast<const QLineEdit*>(&widget) || qobject_cast<const QLabel*>(&widget);
        if (!isMet || widget.inherits("QTipLabel")) {
            return false;
        }
        const QWidget* room = window.get();
        bool scrolls = false;
        bool scrollsAside = false;
        for (const QWidget* outer = widget.parentWidget(); outer && !scrolls; outer = outer->parentWidget()) {
            if (const auto* area = qobject_cast<const QScrollArea*>(outer)) {
                room = area->viewport();
                scrolls = true;
                scrollsAside = mayScrollAside && area->horizontalScrollBar()->isVisible();
            }
        }
        const QRect place(widget.mapTo(window.get(), QPoint()), widget.size());
        const QRect shown(room->mapTo(window.get(), QPoint()), room->size());
        return (!scrollsAside && (place.left() < shown.left() || place.right() > shown.right())) ||
               (!scrolls && (place.top() < shown.top() || place.bottom() > shown.bottom()));
    }
};

TEST_F(SmallWindowTest, CutsNothingOff) {
    platform.fakeAccessibility.granted = false; // with the banner
    model->refreshAccessibility();
    for (const QSize& size : {smallest, QSize(720, 480), QSize(853, 533), QSize(900, 560), QSize(980, 600)}) {
        for (const SidebarEntry& entry : sidebarEntries) {
            model->setScreen(entry.item);
            open(size);
            EXPECT_EQ(cutOff(), "") << entry.raw.toUtf8().constData() << " at " << size.width();
        }
        model->setScreen(SidebarItem::projects);
        open(size);
        press(u"タグ"_s);
        EXPECT_EQ(cutOff(), "") << "tags at " << size.width();
        model->setScreen(SidebarItem::timeline);
    }
}

TEST_F(SmallWindowTest, ScrollsAsideInATileThatIsNarrowerThanItself) {
    mayScrollAside = true;
    for (const SidebarEntry& entry : sidebarEntries) {
        model->setScreen(entry.item);
        open({340, 700});
        EXPECT_EQ(cutOff(), "") << entry.raw.toUtf8().constData();
    }
    model->setScreen(SidebarItem::timeline);
    open({340, 700});
    press(u"手動で追加"_s);
    EXPECT_EQ(cutOff(), "") << "entry";
}

TEST_F(SmallWindowTest, CutsNoSheetOff) {
    const auto holds = [this](const char* what) {
        EXPECT_EQ(cutOff(), "") << what;
        auto* sheet = window->findChild<Sheet*>();
        ASSERT_TRUE(sheet) << what;
        delete sheet;
    };
    open(smallest);
    press(u"手動で追加"_s);
    holds("entry");
    model->setManualDraft(std::nullopt);
    press(u"編集"_s);
    holds("note");
    press(u"詳細を開く"_s);
    press(u"振り分ける…"_s);
    holds("rule");
    model->setErrorMessage(QString(300, u'長'));
    holds("alert");
    platform.fakeSettings.booleans.clear();
    open(smallest);
    holds("welcome");
}

TEST_F(SmallWindowTest, ShowsTheFieldThatIsWrittenIn) {
    open({1100, 720});
    press(u"手動で追加"_s);
    for (const QSize& size : {QSize(1100, 720), smallest}) {
        window->resize(size);
        QApplication::processEvents();
        QWidget* field = window->focusWidget();
        ASSERT_TRUE(qobject_cast<QLineEdit*>(field));
        EXPECT_EQ(field->visibleRegion().boundingRect(), field->rect()) << size.height();
    }
    window->close();
    model->setManualDraft(std::nullopt);
    open(smallest);
    press(u"手動で追加"_s);
    EXPECT_EQ(window->focusWidget()->visibleRegion().boundingRect(), window->focusWidget()->rect());
}

TEST_F(SmallWindowTest, HasADrawerForWhatStandsBesideTheDay) {
    open(smallest);
    auto* panel = window->findChild<SidePanel*>();
    auto* bars = window->findChild<HourBars*>();
    EXPECT_FALSE(panel->isVisible());
    bars->setFocus();
    key(Qt::Key_Right);
    ASSERT_TRUE(model->selectedActivityId());
    EXPECT_FALSE(panel->isVisible()) << "passing with the keyboard covers nothing";

    key(Qt::Key_F9);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_TRUE(panel->isAncestorOf(window->focusWidget()));
    EXPECT_EQ(panel->mapTo(window.get(), QPoint(panel->width(), 0)).x(), window->width());
    EXPECT_TRUE(button(u"詳細を閉じる"_s));
    key(Qt::Key_Escape);
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(window->focusWidget(), bars) << "where it was";
    EXPECT_TRUE(model->selectedActivityId()) << "one Escape closes one thing";
    key(Qt::Key_Escape);
    EXPECT_FALSE(model->selectedActivityId());

    press(u"詳細を開く"_s);
    EXPECT_TRUE(panel->isVisible());
    press(u"詳細を閉じる"_s);
    EXPECT_FALSE(panel->isVisible());
    QTest::mouseClick(bars, Qt::LeftButton, {}, bars->boxOf(bars->slices().front()).center());
    EXPECT_TRUE(panel->isVisible()) << "who points at a slice wants to see it";
    EXPECT_FALSE(panel->isAncestorOf(window->focusWidget()));

    window->resize(900, 560);
    QApplication::processEvents();
    EXPECT_TRUE(panel->isVisible());
    EXPECT_FALSE(button(u"詳細を閉じる"_s)) << "there is room for both";
    window->resize(smallest);
    QApplication::processEvents();
    EXPECT_FALSE(panel->isVisible());
}

TEST_F(SmallWindowTest, NamesTheScreensThatAreIconsOnly) {
    open(smallest);
    const auto* list = window->findChild<QListWidget*>();
    EXPECT_EQ(list->item(0)->toolTip(), u"タイムライン"_s);
    EXPECT_EQ(list->item(2)->toolTip(), u"分類とルール\n提案 2 件"_s);
    window->resize(900, 560);
    QApplication::processEvents();
    EXPECT_EQ(list->item(2)->toolTip(), QString());
}

TEST(WindowPlaceTest, FitsWhateverScreensThereAre) {
    const QMargins frame(4, 30, 4, 6);
    const QRect left(0, 0, 1920, 1080);
    const QRect right(1920, 0, 1280, 800);
    const QRect tiny(0, 0, 853, 503);
    const struct {
        QRect wanted;
        QList<QRect> screens;
        QRect expected;
    } rows[] = {
        {{100, 100, 1100, 720}, {left}, {100, 100, 1100, 720}},         // as it was
        {{2000, 60, 1100, 720}, {left, right}, {2000, 60, 1100, 720}},  // on the second screen
        {{2000, 60, 1100, 720}, {left}, {816, 60, 1100, 720}},          // which is gone
        {{-5000, -5000, 1100, 720}, {left, right}, {4, 30, 1100, 720}}, // nowhere: on the first
        {{4, 30, 1100, 720}, {tiny}, {4, 30, 845, 467}},                // a smaller one
        {{4, 30, 1100, 720}, {}, {4, 30, 1100, 720}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(fitted(row.wanted, frame, row.screens), row.expected);
    }
}

} // namespace
} // namespace kestu
