// SPDX-License-Identifier: GPL-3.0-or-later
//
// Everything on the report screen between its header and the export section: the cards, the chart and the
// lists, or that there is nothing. It only shows; owned by the report screen.
#pragma once

#include "reports/ReportPeriod.h"
#include "ui/report/ReportRows.h"

#include <QWidget>

namespace kestu {

class AppModel;
class ChartLegend;
class DayChart;
class StatCards;
class TextLabel;
struct ReportFigures;

class ReportView final : public QWidget {
    Q_OBJECT

public:
    explicit ReportView(const AppModel& model, QWidget* parent = nullptr);

    /// `calendar` is the report's.
    void display(ReportPeriod period, const ReportFigures& figures, const Calendar& calendar);

private:
    [[nodiscard]] QWidget* makeFigures();
    [[nodiscard]] QWidget* makeChart();
    [[nodiscard]] QWidget* makeRankings();
    void showChart(const ReportFigures& figures, const Calendar& calendar);
    void showShares(const ReportFigures& figures);

    const AppModel& m_model;
    QWidget* m_empty;
    StatCards* m_cards;
    QWidget* m_chartSection = nullptr;
    ChartLegend* m_legend;
    DayChart* m_chart;
    RowList<ShareRow>* m_projects;
    RowList<ShareRow>* m_tags;
    TextLabel* m_noTags;
    RowList<RankRow>* m_apps;
    RowList<RankRow>* m_domains;
    TextLabel* m_noApps;
    TextLabel* m_noDomains;
    QWidget* m_figures; // all but the empty state
};

} // namespace kestu
