// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the selected day went to: a stacked bar, an entry for each project and a chip for each tag. It belongs
// to its parent widget.
#pragma once

#include "classify/DayAggregation.h"

#include <QWidget>

#include <vector>

namespace kestu {

class AppModel;
class FlowLayout;
class TagChip;

/// Where the parts of the bar lie: left edge and width, in pixels from the bar's left edge. They keep their
/// shares beside the gaps between them, so the last ones may leave the bar, which clips them.
[[nodiscard]] std::vector<std::pair<double, double>> summarySegments(const ProjectTotals& totals,
                                                                     double barWidth);

class SummaryBar final : public QWidget {
    Q_OBJECT

public:
    explicit SummaryBar(AppModel& model);

    void show(const ProjectTotals& totals);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    AppModel& m_model;
    ProjectTotals m_totals;
};

/// A project's dot, name and time; the name gives way.
class SummaryEntry final : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// An invalid colour is that of unassigned time.
    void show(const QString& name, const QString& time, const QColor& color);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int nameWidth() const;

    QString m_name;
    QString m_time;
    QColor m_color;
};

/// The entries in as many columns as fit.
class SummaryGrid final : public QWidget {
    Q_OBJECT

public:
    explicit SummaryGrid(AppModel& model);

    void show(const ProjectTotals& totals);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void place();

    AppModel& m_model;
    std::vector<SummaryEntry*> m_entries;
};

class ProjectSummary final : public QWidget {
    Q_OBJECT

public:
    explicit ProjectSummary(AppModel& model);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();
    void refreshTags();

    AppModel& m_model;
    SummaryBar* m_bar;
    SummaryGrid* m_grid;
    QWidget* m_tags;
    FlowLayout* m_flow;
    std::vector<TagChip*> m_chips;
};

} // namespace kestu
