// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the screens cost in a window of the common size, on a file of ten years of full days, with twenty
// projects and a hundred rules: from the model's change until everything is painted. The medians are what
// counts.
#include "RecordedYears.h"
#include "app/AppModel.h"
#include "support/FakePlatform.h"
#include "support/SampleDay.h"
#include "ui/Commands.h"
#include "ui/MainWindow.h"
#include "ui/projects/ProjectsScreen.h"
#include "ui/report/ReportScreen.h"
#include "ui/theme/KestuStyle.h"
#include "ui/timeline/HourBars.h"

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollArea>

#include <benchmark/benchmark.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

constexpr int years = 10;
constexpr int projectCount = 20;
constexpr int ruleCount = 100;
constexpr int manyCategories = 200;
constexpr int manyRules = 1000;
constexpr int suggestionCount = 20;

void addCategories(Repository& repository) {
    for (int index = 0; index < projectCount; ++index) {
        repository.insertCategory(CategoryKind::project, u"案件 %1"_s.arg(index),
                                  categoryPalette[static_cast<std::size_t>(index) % 8].toString());
    }
    for (int index = 0; index < ruleCount; ++index) {
        repository.insertRule({.kind = CategoryKind::project, .id = index % projectCount + 1},
                              RuleField::title, RuleOperator::contains, u"その %1"_s.arg(index + 11));
    }
}

void addManyCategories(Repository& repository) {
    for (int index = projectCount; index < manyCategories; ++index) {
        repository.insertCategory(CategoryKind::project, u"案件 %1"_s.arg(index), u"#27AE60"_s);
    }
    for (int index = ruleCount; index < manyRules; ++index) {
        repository.insertRule({.kind = CategoryKind::project, .id = index % manyCategories + 1},
                              RuleField::title, RuleOperator::contains, u"その %1"_s.arg(index + 11));
    }
    for (int index = 0; index < suggestionCount; ++index) {
        repository.database().run(u"INSERT INTO rule_suggestion (target_kind, target_name, field, op, value, "
                                  "created_at) VALUES ('project', '案件 1', 'title', 'contains', ?, 0)"_s,
                                  {u"月の定例 %1"_s.arg(index)});
    }
}

/// Runs the event loop until a widget has been drawn once more.
class Frame final : public QObject {
public:
    explicit Frame(QWidget& widget) { widget.installEventFilter(this); }

    void wait() {
        for (m_isDrawn = false; !m_isDrawn;) {
            QApplication::processEvents();
        }
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        m_isDrawn = m_isDrawn || event->type() == QEvent::Paint;
        return false;
    }

private:
    bool m_isDrawn = false;
};

class Desk final {
public:
    Desk() {
        addCategories(*m_file.open());
        m_platform.fakeSettings.booleans[u"welcomeShown"_s] = true;
        m_model = std::make_unique<AppModel>(m_file.open(), m_platform,
                                             AppModel::Environment{.clock = [this] { return now(); },
                                                                   .calendar = test::tokyo,
                                                                   .screen = {},
                                                                   .watchInterval = std::chrono::hours(1)});
        m_commands = std::make_unique<Commands>(*m_model);
        m_window = std::make_unique<MainWindow>(*m_model, *m_commands);
        m_window->show();
        QApplication::processEvents();
    }

    [[nodiscard]] AppModel& model() { return *m_model; }
    [[nodiscard]] MainWindow& window() { return *m_window; }
    [[nodiscard]] bench::RecordedYears& file() { return m_file; }
    [[nodiscard]] HourBars& bars() { return *m_window->findChild<HourBars*>(); }

private:
    [[nodiscard]] Instant now() const { return m_file.midnight(0) + std::chrono::hours(23); }

    bench::RecordedYears m_file{years};
    test::FakePlatform m_platform;
    std::unique_ptr<AppModel> m_model;
    std::unique_ptr<Commands> m_commands;
    std::unique_ptr<MainWindow> m_window;
};

void paintDay(benchmark::State& state, Desk& desk) {
    QImage frame(desk.bars().size(), QImage::Format_ARGB32_Premultiplied);
    for ([[maybe_unused]] auto iteration : state) {
        desk.bars().render(&frame);
    }
    state.counters["slices"] = static_cast<double>(desk.bars().slices().size());
}

void selectSlice(benchmark::State& state, Desk& desk) {
    Frame frame(desk.bars());
    std::size_t index = 100;
    for ([[maybe_unused]] auto iteration : state) {
        desk.model().setSelectedActivityId(desk.model().dayItems()[++index].activity.id);
        frame.wait();
    }
}

void switchDay(benchmark::State& state, Desk& desk) {
    Frame frame(desk.bars());
    for ([[maybe_unused]] auto iteration : state) {
        desk.model().shiftDay(-1);
        frame.wait();
    }
    state.counters["items"] = static_cast<double>(desk.model().dayItems().size());
    desk.model().goToToday();
}

void press(const QWidget& window, const QString& text) {
    for (auto* button : window.findChildren<QAbstractButton*>()) {
        if (button->isVisible() && (button->text() == text || button->accessibleName() == text)) {
            button->click();
            return;
        }
    }
}

/// A whole month of 46,500 activities, from the press of the button on.
void openMonth(benchmark::State& state, Desk& desk) {
    AppModel& model = desk.model();
    model.setScreen(SidebarItem::report);
    QApplication::processEvents();
    auto& report = *desk.window().findChild<ReportScreen*>();
    bool isLoaded = false;
    const auto connection =
        QObject::connect(&report, &ReportScreen::loaded, &report, [&isLoaded] { isLoaded = true; });
    Frame frame(report);
    for ([[maybe_unused]] auto iteration : state) {
        state.PauseTiming();
        model.setScreen(SidebarItem::timeline); // from where it begins anew
        model.setScreen(SidebarItem::report);
        press(report, u"月"_s);
        QApplication::processEvents();
        isLoaded = false;
        state.ResumeTiming();
        press(report, u"前の月"_s);
        while (!isLoaded) {
            QApplication::processEvents();
        }
        frame.wait();
    }
    QObject::disconnect(connection);
    model.setScreen(SidebarItem::timeline);
}

void openCategories(benchmark::State& state, Desk& desk) {
    addManyCategories(*desk.file().open());
    desk.model().deleteRule(-1);
    for ([[maybe_unused]] auto iteration : state) {
        desk.model().setScreen(SidebarItem::projects);
        Frame(*desk.window().findChild<ProjectsScreen*>()).wait();
    }
}

void typeInName(benchmark::State& state, Desk& desk) {
    desk.model().setScreen(SidebarItem::projects);
    QApplication::processEvents();
    auto& screen = *desk.window().findChild<ProjectsScreen*>();
    QLineEdit* name = nullptr;
    for (auto* field : screen.findChildren<QLineEdit*>()) {
        name = field->text().startsWith(u"案件 0"_s) ? field : name;
    }
    screen.findChild<QScrollArea*>()->ensureWidgetVisible(name); // below the suggestions
    QApplication::processEvents();
    Frame frame(*name);
    for ([[maybe_unused]] auto iteration : state) {
        QKeyEvent key(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, u"x"_s);
        QApplication::sendEvent(name, &key);
        frame.wait();
    }
    state.counters["categories"] = static_cast<double>(desk.model().projects().size());
    state.counters["rules"] = static_cast<double>(desk.model().rules().size());
}

void registerAll(Desk& desk) {
    const auto add = [&desk](const char* name, auto measure) {
        benchmark::RegisterBenchmark(name,
                                     [measure, &desk](benchmark::State& state) { measure(state, desk); })
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime()
            ->Iterations(5)
            ->Repetitions(21)
            ->ReportAggregatesOnly();
    };
    add("timeline/paint the hours", paintDay);
    add("timeline/paint the hours, wide", [](benchmark::State& state, Desk& shown) {
        const QSize before = shown.window().size();
        shown.window().resize(1920, 1200);
        QApplication::processEvents();
        paintDay(state, shown);
        shown.window().resize(before);
        QApplication::processEvents();
    });
    add("timeline/select a slice", selectSlice);
    add("timeline/switch the day", switchDay);
    add("report/open a month", openMonth);
    benchmark::RegisterBenchmark("categories/open",
                                 [&desk](benchmark::State& state) { openCategories(state, desk); })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(1); // which makes the screen
    add("categories/type in a name", typeInName);
}

} // namespace
} // namespace kestu

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    kestu::installStyle(application);
    kestu::Desk desk;
    kestu::registerAll(desk);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
