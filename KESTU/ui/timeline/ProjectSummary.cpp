// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/ProjectSummary.h"

#include "app/AppModel.h"
#include "classify/DurationText.h"
#include "ui/controls/FlowLayout.h"
#include "ui/controls/Painted.h"
#include "ui/controls/Roles.h"
#include "ui/controls/TagChip.h"
#include "ui/parts/Texts.h"
#include "ui/theme/Strokes.h"

#include <QHelpEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>
#include <QVBoxLayout>

#include <algorithm>
#include <numeric>

namespace kestu {
namespace {

constexpr int barHeight = 14;
constexpr double segmentGap = 2;
constexpr double narrowestSegment = 2;
constexpr int columnWidth = 180;
constexpr int gridGap = 6;
constexpr int entryHeight = 19;
constexpr int dotSize = 10;
constexpr int partGap = 6;
constexpr int nameColumn = 84; // times of short names stand below each other
constexpr int sectionGap = 12;

QColor orUnassigned(const QColor& color, const QPalette& palette) {
    return color.isValid() ? color : colorsOf(palette).unassigned;
}

} // namespace

std::vector<std::pair<double, double>> summarySegments(const ProjectTotals& totals, double barWidth) {
    const double sum =
        std::accumulate(totals.begin(), totals.end(), 0.0,
                        [](double seconds, const auto& total) { return seconds + total.second; });
    const double scale = std::max(sum, 1.0);
    std::vector<std::pair<double, double>> segments;
    double left = 0;
    for (const auto& total : totals) {
        const double width = std::max(narrowestSegment, barWidth * total.second / scale);
        segments.emplace_back(left, width);
        left += width + segmentGap;
    }
    return segments;
}

SummaryBar::SummaryBar(AppModel& model)
    : m_model(model) {
    setFixedHeight(barHeight);
}

void SummaryBar::show(const ProjectTotals& totals) {
    m_totals = totals;
    update();
}

void SummaryBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath whole;
    whole.addRoundedRect(rect(), metrics::radiusPill, metrics::radiusPill);
    const auto segments = summarySegments(m_totals, width());
    for (std::size_t index = 0; index < segments.size(); ++index) {
        const QRectF box(segments[index].first, 0, segments[index].second, height());
        QPainterPath part;
        part.addRect(snapped(painter, box));
        painter.fillPath(whole.intersected(part),
                         orUnassigned(projectColor(m_model, m_totals[index].first), palette()));
    }
}

void SummaryEntry::show(const QString& name, const QString& time, const QColor& color) {
    if (name == m_name && time == m_time && color == m_color) {
        return;
    }
    m_name = name;
    m_time = time;
    m_color = color;
    reportRole(this, QAccessible::StaticText);
    setAccessibleName(name + u' ' + time);
    update();
}

int SummaryEntry::nameWidth() const {
    const QFont font = fontOf(TextStyle::callout);
    const int room = width() - dotSize - partGap * 2 - widthOf(m_time, font);
    return std::min(std::max(nameColumn, widthOf(m_name, font)), std::max(room, 0));
}

bool SummaryEntry::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    const bool isWhole = widthOf(m_name, fontOf(TextStyle::callout)) <= nameWidth();
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), isWhole ? QString() : toolTipOf(m_name),
                       this);
    return true;
}

void SummaryEntry::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const Colors& colors = colorsOf(palette());
    const QFont font = fontOf(TextStyle::callout);
    painter.setFont(font);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(orUnassigned(m_color, palette()));
    painter.drawEllipse(QRectF(0, (height() - dotSize) / 2.0, dotSize, dotSize));
    const int nameLeft = dotSize + partGap;
    painter.setPen(colors.textPrimary);
    painter.drawText(QRect(nameLeft, 0, nameWidth(), height()), Qt::AlignLeft | Qt::AlignVCenter,
                     elided(m_name, font, Qt::ElideRight, nameWidth()));
    painter.setPen(colors.textSecondary);
    painter.drawText(QRect(nameLeft + nameWidth() + partGap, 0, widthOf(m_time, font) + 1, height()),
                     Qt::AlignLeft | Qt::AlignVCenter, m_time);
}

SummaryGrid::SummaryGrid(AppModel& model)
    : m_model(model) {}

void SummaryGrid::show(const ProjectTotals& totals) {
    while (m_entries.size() > totals.size()) {
        delete m_entries.back();
        m_entries.pop_back();
    }
    const std::size_t before = m_entries.size();
    for (std::size_t index = 0; index < totals.size(); ++index) {
        if (index >= before) {
            m_entries.push_back(new SummaryEntry(this));
            m_entries.back()->setVisible(true);
        }
        const auto& [project, seconds] = totals[index];
        m_entries[index]->show(projectName(m_model, project), formatDuration(seconds),
                               projectColor(m_model, project));
    }
    place();
}

void SummaryGrid::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    place();
}

void SummaryGrid::place() {
    const int columns = std::max((width() + gridGap) / (columnWidth + gridGap), 1);
    const int cellWidth = (width() - gridGap * (columns - 1)) / columns;
    int row = 0;
    for (std::size_t index = 0; index < m_entries.size(); ++index) {
        row = static_cast<int>(index) / columns;
        const int column = static_cast<int>(index) % columns;
        m_entries[index]->setGeometry(column * (cellWidth + gridGap), row * (entryHeight + gridGap),
                                      cellWidth, entryHeight);
    }
    const int height = m_entries.empty() ? 0 : row * (entryHeight + gridGap) + entryHeight;
    if (height != minimumHeight()) {
        setFixedHeight(height);
    }
}

ProjectSummary::ProjectSummary(AppModel& model)
    : m_model(model)
    , m_bar(new SummaryBar(model))
    , m_grid(new SummaryGrid(model))
    , m_tags(new QWidget)
    , m_flow(new FlowLayout(6, m_tags)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(sectionGap);
    layout->addWidget(m_bar);
    layout->addWidget(m_grid);
    layout->addWidget(m_tags);
    connect(&m_model, &AppModel::dayItemsChanged, this, &ProjectSummary::refresh);
    connect(&m_model, &AppModel::projectsChanged, this, &ProjectSummary::refresh);
    connect(&m_model, &AppModel::tagsChanged, this, &ProjectSummary::refreshTags);
    refresh();
}

void ProjectSummary::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    for (TagChip* chip : m_chips) {
        chip->setMaximumWidth(width());
    }
}

void ProjectSummary::refresh() {
    const ProjectTotals totals = projectTotals(m_model.dayItems());
    m_bar->show(totals);
    m_grid->show(totals);
    refreshTags();
}

void ProjectSummary::refreshTags() {
    const TagTotals totals = tagTotals(m_model.dayItems());
    while (m_chips.size() > totals.size()) {
        delete m_chips.back();
        m_chips.pop_back();
    }
    for (std::size_t index = 0; index < totals.size(); ++index) {
        const auto& [tag, seconds] = totals[index];
        const TagChip::Look look{.name = tagName(m_model, tag),
                                 .color = tagColor(m_model, tag),
                                 .on = true,
                                 .note = formatDuration(seconds)};
        if (index < m_chips.size()) {
            m_chips[index]->setLook(look);
        } else {
            m_chips.push_back(new TagChip(look, TagChip::Kind::label));
            m_chips.back()->setMaximumWidth(width());
            m_flow->addWidget(m_chips.back());
        }
    }
    m_tags->setVisible(!m_chips.empty());
}

} // namespace kestu
