// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/report/ReportView.h"

#include "app/AppModel.h"
#include "base/LocalClock.h"
#include "classify/DurationText.h"
#include "ui/controls/Surfaces.h"
#include "ui/controls/TextLabel.h"
#include "ui/parts/Texts.h"
#include "ui/report/ChartLegend.h"
#include "ui/report/DayChart.h"
#include "ui/report/ReportFigures.h"
#include "ui/report/StatCards.h"

#include <QHBoxLayout>

#include <algorithm>
#include <span>

namespace kestu {
namespace {

constexpr int sectionGap = 24;
constexpr int headingGap = 8;
constexpr int columnGap = 32;
constexpr std::size_t mostRanked = 8;

QVBoxLayout* columnOf(QWidget* owner, int spacing) {
    auto* column = new QVBoxLayout(owner);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(spacing);
    return column;
}

QWidget* section(const QString& title, std::initializer_list<QWidget*> contents) {
    auto* made = new QWidget;
    auto* column = columnOf(made, headingGap);
    column->addWidget(new TextLabel(title, TextStyle::headline));
    for (QWidget* content : contents) {
        column->addWidget(content);
    }
    return made;
}

TextLabel* noneLabel(const QString& text) {
    return new TextLabel(text, TextStyle::callout, ink::secondary);
}

/// The rows of one list of shares; `look` gives the name and colour of a key.
template<typename Totals, typename Look>
std::vector<ShareRow::Content> shares(const Totals& totals, double total, Look look) {
    std::vector<ShareRow::Content> rows;
    for (const auto& [key, seconds] : totals) {
        const auto [name, color] = look(key);
        const double largest = totals.front().second;
        rows.push_back({.name = name,
                        .color = color,
                        .duration = formatDuration(seconds),
                        .share = shareText(seconds, total),
                        .bar = largest > 0 ? seconds / largest : 0});
    }
    return rows;
}

void showRanking(const NamedTotals& totals, RowList<RankRow>& list, TextLabel& none) {
    std::vector<RankRow::Content> rows;
    for (const auto& [name, seconds] : std::span(totals).first(std::min(totals.size(), mostRanked))) {
        rows.push_back(
            {.rank = static_cast<int>(rows.size()) + 1, .name = name, .duration = formatDuration(seconds)});
    }
    none.setVisible(rows.empty());
    list.parentWidget()->setVisible(!rows.empty());
    list.setContents(rows);
}

/// A list with the hairline under its last row.
QWidget* underlined(QWidget* list) {
    auto* made = new QWidget;
    auto* column = columnOf(made, 0);
    column->addWidget(list);
    column->addWidget(new Divider);
    return made;
}

/// In the order of the projects, with the time of none on top.
std::vector<std::optional<ProjectId>> stackOrder(const AppModel& model, const ProjectTotals& totals) {
    std::vector<std::optional<ProjectId>> order;
    const auto occurs = [&](const std::optional<ProjectId>& id) {
        return std::ranges::find(totals, id, &ProjectTotals::value_type::first) != totals.end();
    };
    for (const Project& project : model.projects()) {
        if (occurs(project.id)) {
            order.emplace_back(project.id);
        }
    }
    for (const auto& [id, seconds] : totals) { // one that is gone shows as unassigned, as in the list
        if (id && !model.project(*id)) {
            order.emplace_back(id);
        }
    }
    if (occurs(std::nullopt)) {
        order.emplace_back(std::nullopt);
    }
    return order;
}

DayChart::Data chartData(const AppModel& model, const ReportFigures& figures, const Calendar& calendar) {
    DayChart::Data data{.days = daysOf(figures.range, calendar), .parts = {}};
    const auto order = stackOrder(model, figures.projects);
    for (const auto& id : order) {
        data.parts.push_back({.name = projectName(model, id),
                              .color = projectColor(model, id),
                              .seconds = std::vector<double>(data.days.size())});
    }
    LocalClock clock(calendar);
    for (const DailyTotal& total : figures.days) {
        const auto local = clock.at(total.day);
        const auto day = local ? std::ranges::find(data.days, local->date) : data.days.end();
        const auto part = std::ranges::find(order, total.projectId);
        if (day != data.days.end() && part != order.end()) {
            data.parts[static_cast<std::size_t>(part - order.begin())]
                .seconds[static_cast<std::size_t>(day - data.days.begin())] += total.seconds;
        }
    }
    return data;
}

} // namespace

ReportView::ReportView(const AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_empty(new EmptyState(QStringLiteral("chart.bar"), QStringLiteral("この期間の記録はありません")))
    , m_cards(new StatCards)
    , m_legend(new ChartLegend)
    , m_chart(new DayChart)
    , m_projects(new RowList<ShareRow>)
    , m_tags(new RowList<ShareRow>)
    , m_noTags(noneLabel(QStringLiteral("タグの付いた記録はありません。")))
    , m_apps(new RowList<RankRow>)
    , m_domains(new RowList<RankRow>)
    , m_noApps(noneLabel(QStringLiteral("なし")))
    , m_noDomains(noneLabel(QStringLiteral("なし")))
    , m_figures(makeFigures()) {
    auto* column = columnOf(this, 0);
    column->addWidget(m_empty);
    column->addWidget(m_figures);
    m_figures->hide();
}

QWidget* ReportView::makeFigures() {
    auto* figures = new QWidget;
    auto* column = columnOf(figures, sectionGap);
    m_chartSection = makeChart();
    column->addWidget(m_cards);
    column->addWidget(m_chartSection);
    column->addWidget(section(QStringLiteral("プロジェクト別"), {m_projects}));
    column->addWidget(section(QStringLiteral("タグ別"), {m_tags, m_noTags}));
    column->addWidget(makeRankings());
    return figures;
}

QWidget* ReportView::makeChart() {
    auto* made = new QWidget;
    auto* column = columnOf(made, headingGap);
    auto* heading = new QHBoxLayout;
    heading->setSpacing(columnGap);
    heading->addWidget(new TextLabel(QStringLiteral("日別"), TextStyle::headline));
    heading->addWidget(m_legend, 1);
    column->addLayout(heading);
    column->addWidget(m_chart);
    return made;
}

QWidget* ReportView::makeRankings() {
    auto* made = new QWidget;
    auto* row = new QHBoxLayout(made);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(columnGap);
    auto* apps = section(QStringLiteral("よく使ったアプリ"), {underlined(m_apps), m_noApps});
    auto* domains = section(QStringLiteral("よく見たサイト"), {underlined(m_domains), m_noDomains});
    for (QWidget* half : {apps, domains}) {
        half->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // halves, whatever the names
        row->addWidget(half, 1, Qt::AlignTop);
    }
    return made;
}

void ReportView::display(ReportPeriod period, const ReportFigures& figures, const Calendar& calendar) {
    const bool isEmpty = figures.projects.empty();
    m_empty->setVisible(isEmpty);
    m_figures->setVisible(!isEmpty);
    if (isEmpty) {
        return;
    }
    m_cards->display(figures);
    m_chartSection->setVisible(period != ReportPeriod::day);
    if (period != ReportPeriod::day) {
        showChart(figures, calendar);
    }
    showShares(figures);
    showRanking(figures.apps, *m_apps, *m_noApps);
    showRanking(figures.domains, *m_domains, *m_noDomains);
}

void ReportView::showChart(const ReportFigures& figures, const Calendar& calendar) {
    const DayChart::Data content = chartData(m_model, figures, calendar);
    std::vector<ChartLegend::Entry> entries;
    for (const DayChart::Part& part : content.parts) {
        entries.push_back({.name = part.name, .color = part.color});
    }
    m_legend->setEntries(entries);
    m_chart->setData(content);
}

void ReportView::showShares(const ReportFigures& figures) {
    m_projects->setContents(shares(figures.projects, figures.total, [this](const auto& id) {
        return std::pair(projectName(m_model, id), projectColor(m_model, id));
    }));
    m_tags->setContents(shares(figures.tags, figures.total, [this](TagId id) {
        return std::pair(tagName(m_model, id), tagColor(m_model, id));
    }));
    m_tags->setVisible(!figures.tags.empty());
    m_noTags->setVisible(figures.tags.empty());
}

} // namespace kestu
