// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/report/DayChart.h"

#include "classify/DurationText.h"
#include "ui/controls/Painted.h"
#include "ui/controls/Roles.h"
#include "ui/report/BarShape.h"

#include <QBarCategoryAxis>
#include <QBarSet>
#include <QGraphicsLayout>
#include <QHelpEvent>
#include <QLegend>
#include <QLocale>
#include <QStackedBarSeries>
#include <QToolTip>
#include <QValueAxis>

#include <algorithm>
#include <array>
#include <cmath>

namespace kestu {
namespace {

constexpr int chartHeight = 220;
// A half, so that the lines of the grid fall on whole pixels.
constexpr QMarginsF plotMargins(34, 20.5, 0, 23.5);
constexpr double widestBar = 48;
constexpr double barShare = 0.6; // of a day
constexpr int unitBaseline = 11;
constexpr int labelGap = 4;
constexpr double secondsPerHour = 3600;
constexpr int mostSteps = 4;
constexpr std::array hourSteps{1.0, 2.0, 3.0, 4.0, 6.0, 8.0, 12.0, 24.0};

/// The forms of a day's name, from the longest.
constexpr std::array<QStringView, 3> dayForms{u"d日(ddd)", u"d日", u"d"};

QString dayText(QDate day, QStringView form) {
    return QLocale(QLocale::Japanese, QLocale::Japan).toString(day, form);
}

/// The hours from one line of the grid to the next.
double hourStep(double most) {
    for (const double step : hourSteps) {
        if (most <= step * mostSteps) {
            return step;
        }
    }
    return hourSteps.back() * std::ceil(most / (hourSteps.back() * mostSteps));
}

double secondsOfDay(const DayChart::Data& data, std::size_t day) {
    double seconds = 0;
    for (const DayChart::Part& part : data.parts) {
        seconds += part.seconds[day];
    }
    return seconds;
}

QPen hairline(const QColor& color) {
    return {color, 1};
}

} // namespace

DayChart::DayChart(QWidget* parent)
    : QChartView(parent)
    , m_days(new QBarCategoryAxis)
    , m_hours(new QValueAxis)
    , m_series(new QStackedBarSeries) {
    setFixedHeight(chartHeight);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setFocusPolicy(Qt::NoFocus);
    reportRole(this, QAccessible::Chart);
    setAccessibleName(QStringLiteral("日別の記録"));
    setRenderHint(QPainter::Antialiasing);
    chart()->setMargins({});
    chart()->layout()->setContentsMargins(0, 0, 0, 0);
    chart()->setBackgroundVisible(false);
    chart()->legend()->hide();
    chart()->addSeries(m_series);
    setUpAxes();
    applyColors();
}

void DayChart::setUpAxes() {
    chart()->addAxis(m_days, Qt::AlignBottom);
    chart()->addAxis(m_hours, Qt::AlignLeft);
    m_series->attachAxis(m_days);
    m_series->attachAxis(m_hours);
    m_days->setGridLineVisible(false);
    m_days->setLineVisible(false); // its marks between the days come with it
    m_days->setTruncateLabels(false);
    m_days->setLabelsFont(fontOf(TextStyle::caption));
    m_hours->setLineVisible(false);
    m_hours->setTruncateLabels(false);
    m_hours->setLabelFormat(QStringLiteral("%.0fh"));
    m_hours->setLabelsFont(fontOf(TextStyle::caption2));
}

void DayChart::setData(const Data& content) {
    if (m_data == content) {
        return;
    }
    m_data = content;
    fillSeries();
    scaleHours();
    layOut();
    applyColors();
    setAccessibleDescription(description());
}

void DayChart::fillSeries() {
    m_series->clear();
    for (const Part& part : m_data.parts) {
        auto* set = new QBarSet(part.name);
        for (const double seconds : part.seconds) {
            set->append(seconds / secondsPerHour);
        }
        set->setPen(Qt::NoPen);
        m_series->append(set);
    }
}

void DayChart::scaleHours() {
    double most = 0;
    for (std::size_t day = 0; day < m_data.days.size(); ++day) {
        most = std::max(most, secondsOfDay(m_data, day) / secondsPerHour);
    }
    const double step = hourStep(most);
    const double steps = std::max(1.0, std::ceil(most / step));
    m_hours->setRange(0, steps * step);
    m_hours->setTickCount(static_cast<int>(steps) + 1);
}

void DayChart::layOut() {
    if (m_data.days.empty()) {
        return;
    }
    chart()->setPlotArea(QRectF(QPointF(), viewport()->size()).marginsRemoved(plotMargins));
    m_series->setBarWidth(barWidth() / dayWidth());
    labelDays();
}

/// Every day has its label, in the longest form for which there is room.
void DayChart::labelDays() {
    const QFont font = fontOf(TextStyle::caption);
    for (const QStringView form : dayForms) {
        QStringList labels;
        int widest = 0;
        for (const QDate& day : m_data.days) {
            labels << dayText(day, form);
            widest = std::max(widest, widthOf(labels.last(), font));
        }
        if (widest + labelGap <= dayWidth() || form == dayForms.back()) {
            if (m_days->categories() != labels) {
                m_days->setCategories(labels);
            }
            return;
        }
    }
}

double DayChart::dayWidth() const {
    return chart()->plotArea().width() / static_cast<double>(m_data.days.size());
}

double DayChart::barWidth() const {
    return std::min(widestBar, barShare * dayWidth());
}

std::vector<DayChart::Piece> DayChart::pieces() const {
    std::vector<Piece> pieces;
    const QRectF plot = chart()->plotArea();
    for (std::size_t day = 0; day < m_data.days.size(); ++day) {
        const double left = plot.left() + (static_cast<double>(day) + 0.5) * dayWidth() - barWidth() / 2;
        const auto first = pieces.size();
        double bottom = plot.bottom();
        for (std::size_t part = 0; part < m_data.parts.size(); ++part) {
            const double hours = m_data.parts[part].seconds[day] / secondsPerHour;
            const double height = plot.height() * hours / m_hours->max();
            if (height > 0) {
                pieces.push_back({.box = {left, bottom - height, barWidth(), height},
                                  .day = day,
                                  .part = part,
                                  .isTop = false});
            }
            bottom -= height;
        }
        if (pieces.size() > first) {
            pieces.back().isTop = true;
        }
    }
    return pieces;
}

const DayChart::Piece* DayChart::pieceAt(const std::vector<Piece>& pieces, QPointF point) const {
    const auto found = std::ranges::find_if(pieces, [&](const Piece& p) { return p.box.contains(point); });
    return found == pieces.end() ? nullptr : &*found;
}

QString DayChart::textOf(const Piece& piece) const {
    const Part& part = m_data.parts[piece.part];
    return part.name + u'\n' + dayText(m_data.days[piece.day], dayForms.front()) + u'　' +
           formatDuration(part.seconds[piece.day]);
}

QString DayChart::textAt(QPointF point) const {
    const auto all = pieces();
    const Piece* piece = pieceAt(all, point);
    return piece ? textOf(*piece) : QString();
}

/// All that the chart shows, a line for each day.
QString DayChart::description() const {
    QStringList lines;
    for (std::size_t day = 0; day < m_data.days.size(); ++day) {
        QStringList parts;
        for (const Part& part : m_data.parts) {
            if (part.seconds[day] > 0) {
                parts << part.name + u' ' + formatDuration(part.seconds[day]);
            }
        }
        if (!parts.isEmpty()) {
            lines << dayText(m_data.days[day], dayForms.front()) + u'：' + parts.join(QStringLiteral("、"));
        }
    }
    return lines.join(u'\n');
}

void DayChart::applyColors() {
    const Colors& colors = colorsOf(palette());
    setBackgroundBrush(colors.window);
    m_hours->setGridLinePen(hairline(colors.chartGrid));
    m_hours->setLabelsColor(colors.textTertiary);
    m_days->setLabelsColor(colors.textSecondary);
    const auto sets = m_series->barSets();
    for (qsizetype place = 0; place < sets.size(); ++place) {
        const QColor& color = m_data.parts[static_cast<std::size_t>(place)].color;
        sets[place]->setBrush(color.isValid() ? color : colors.unassigned);
    }
}

void DayChart::changeEvent(QEvent* event) {
    QChartView::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        applyColors();
    }
}

/// What the library lacks: the base line without marks, the unit above the hours, and the shape of the bars.
void DayChart::drawForeground(QPainter* painter, const QRectF&) {
    const Colors& colors = colorsOf(palette());
    const QRectF plot = chart()->plotArea();
    painter->save();
    for (const Piece& piece : pieces()) {
        cutGap(*painter, piece.box, plot.bottom(), colors.window);
        if (piece.isTop) {
            cutUpperCorners(*painter, piece.box, colors.window);
        }
    }
    painter->fillRect(QRectF(plot.left(), plot.bottom() - 0.5, plot.width(), 1), colors.divider);
    painter->setFont(fontOf(TextStyle::caption2));
    painter->setPen(colors.textTertiary);
    painter->drawText(QPointF(0, unitBaseline), QStringLiteral("時間"));
    painter->restore();
}

/// In this order: the axes take their place from the plot area only when the chart itself is resized.
void DayChart::resizeEvent(QResizeEvent* event) {
    layOut();
    QChartView::resizeEvent(event);
}

bool DayChart::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QChartView::viewportEvent(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    const auto all = pieces();
    if (const Piece* piece = pieceAt(all, help->pos())) {
        QToolTip::showText(help->globalPos(), toolTipOf(textOf(*piece)), viewport(),
                           piece->box.toAlignedRect());
    } else {
        QToolTip::hideText();
        event->ignore();
    }
    return true;
}

/// The wheel scrolls the report, also over the chart.
void DayChart::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace kestu
