// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/HourBars.h"

#include "app/AppModel.h"
#include "ui/controls/Painted.h"
#include "ui/parts/Texts.h"
#include "ui/theme/Strokes.h"
#include "ui/timeline/DayDrafts.h"
#include "ui/timeline/DeleteQuestion.h"
#include "ui/timeline/HourBarsAccess.h"
#include "ui/timeline/SliceTexts.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace kestu {
namespace {

constexpr float manualOpacity = 0.55F;
constexpr qreal selectionWidth = 2;
constexpr qreal ringWidth = 2;
constexpr int revealMargin = 24;

void paintDashes(QPainter& painter, const QRectF& box, const QColor& color) {
    const qreal half = crispWidth(painter, 1) / 2;
    QPen pen(color, half * 2);
    pen.setDashPattern({3, 2}); // in pen widths
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box.adjusted(half, half, -half, -half), metrics::radiusSlice - half,
                            metrics::radiusSlice - half);
    painter.setPen(Qt::NoPen);
}

} // namespace

HourBars::HourBars(AppModel& model)
    : m_model(model) {
    installHourBarsAccess();
    setAccessibleName(QStringLiteral("1日の帯"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(&m_model, &AppModel::dayItemsChanged, this, &HourBars::refresh);
    connect(&m_model, &AppModel::selectedDayChanged, this, &HourBars::refresh); // also in another time zone
    connect(&m_model, &AppModel::projectsChanged, this, &HourBars::refreshColors);
    connect(&m_model, &AppModel::selectedActivityIdChanged, this, &HourBars::refreshSelection);
    refreshColors();
    refresh();
    refreshSelection();
}

void HourBars::refresh() {
    const Items items = m_model.dayItems();
    const std::size_t rowsBefore = m_rows.size();
    const std::size_t slicesBefore = m_slices.size();
    m_rows = hourRowsOf(items, m_model.calendar());
    m_stops = firstSlices(m_rows);
    m_slices.clear();
    for (std::size_t row = 0; row < m_rows.size(); ++row) {
        for (std::size_t slice = 0; slice < m_rows[row].slices.size(); ++slice) {
            m_slices.push_back({.row = row, .slice = slice});
        }
    }
    m_itemsOf.clear();
    for (std::size_t index = 0; index < items.size(); ++index) {
        m_itemsOf.insert(items[index].activity.id, index);
    }
    m_row = std::min(m_row, m_rows.empty() ? 0 : m_rows.size() - 1);
    if (m_rows.size() != rowsBefore) {
        updateGeometry();
    }
    if (m_slices.size() != slicesBefore) {
        reportRearranged(*this);
    }
    update();
}

void HourBars::refreshColors() {
    m_colors.clear();
    for (const Project& project : m_model.projects()) {
        m_colors.insert(project.id, colorFromText(project.colorHex));
    }
    update();
}

/// Only the rows that the old and the new selection touch are drawn again.
void HourBars::refreshSelection() {
    const auto updateSlicesOf = [this](std::optional<ActivityId> id) {
        for (const SlicePlace& place : m_slices) {
            if (at(place).activityId == id) {
                update(boxOf(place));
            }
        }
    };
    updateSlicesOf(m_selected);
    m_selected = m_model.selectedActivityId();
    updateSlicesOf(m_selected);
    if (const auto place = selectedPlace()) {
        m_row = place->row;
        reportSelected(*this, *place);
    }
    if (m_ringShown) {
        update();
    }
}

const HourSlice& HourBars::at(SlicePlace place) const {
    return m_rows[place.row].slices[place.slice];
}

QRect HourBars::boxOf(SlicePlace place) const {
    return sliceBox(at(place), barBox(place.row, width())).toAlignedRect();
}

bool HourBars::isSelected(SlicePlace place) const {
    return at(place).activityId == m_selected;
}

const ResolvedActivity* HourBars::itemOf(SlicePlace place) const {
    const auto& items = m_model.dayItems();
    const HourSlice& slice = at(place);
    const Instant start = m_rows[place.row].hour + Seconds{slice.offset};
    const auto [first, end] = m_itemsOf.equal_range(slice.activityId);
    const auto found = std::find_if(first, end, [&](std::size_t index) {
        // The model may hold another day already while its signals are still on their way.
        return index < items.size() && items[index].activity.start <= start &&
               start < items[index].activity.end;
    });
    return found == end ? nullptr : &items[*found];
}

QString HourBars::helpOf(SlicePlace place) const {
    const ResolvedActivity* item = itemOf(place);
    return item ? sliceHelp(*item, m_model) : QString();
}

QString HourBars::nameOf(SlicePlace place) const {
    const ResolvedActivity* item = itemOf(place);
    return item ? sliceName(*item, m_model) : QString();
}

void HourBars::select(SlicePlace place) {
    m_model.setSelectedActivityId(at(place).activityId);
}

void HourBars::choose(SlicePlace place) {
    select(place);
    Q_EMIT chosen();
}

QSize HourBars::sizeHint() const {
    return {hourMetrics::labelWidth + 300, hourRowsHeight(m_rows.size())};
}

std::optional<SlicePlace> HourBars::sliceUnder(QPointF point) const {
    const auto row = rowAt(m_rows.size(), point, width());
    const auto slice = row ? sliceAt(m_rows[*row], point.x(), barBox(*row, width())) : std::nullopt;
    return slice ? std::optional(SlicePlace{.row = *row, .slice = *slice}) : std::nullopt;
}

std::optional<SlicePlace> HourBars::selectedPlace() const {
    const auto found = std::find_if(m_slices.begin(), m_slices.end(),
                                    [this](const SlicePlace& place) { return isSelected(place); });
    return found == m_slices.end() ? std::nullopt : std::optional(*found);
}

bool HourBars::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    const auto* help = dynamic_cast<QHelpEvent*>(event);
    const auto place = sliceUnder(help->pos() + QPointF(0.5, 0.5));
    if (place) {
        QToolTip::showText(help->globalPos(), toolTipOf(helpOf(*place)), this, boxOf(*place));
    } else {
        QToolTip::hideText();
    }
    return true;
}

void HourBars::mouseMoveEvent(QMouseEvent* event) {
    setCursor(rowAt(m_rows.size(), event->position(), width()) ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

void HourBars::mousePressEvent(QMouseEvent* event) {
    const QPointF point = event->position() + QPointF(0.5, 0.5); // the middle of that pixel
    const auto row = rowAt(m_rows.size(), point, width());
    if (event->button() != Qt::LeftButton || !row) {
        QWidget::mousePressEvent(event);
        return;
    }
    m_row = *row;
    if (const auto place = sliceUnder(point)) {
        choose(*place);
        return;
    }
    const QRectF bar = barBox(*row, width());
    m_model.setManualDraft(clickedDraft(m_model.dayItems(), m_rows[*row].hour,
                                        event->position().x() - bar.left(), bar.width(), m_model.now(),
                                        m_model.calendar()));
}

void HourBars::keyPressEvent(QKeyEvent* event) {
    const auto modifiers = event->modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
    if (modifiers != Qt::NoModifier || m_rows.empty() || !move(event->key())) {
        QWidget::keyPressEvent(event);
    }
}

bool HourBars::move(int key) {
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Home:
    case Qt::Key_End: {
        const auto place = key == Qt::Key_Home  ? std::optional(m_stops.front())
                           : key == Qt::Key_End ? std::optional(m_stops.back())
                                                : neighbour(key == Qt::Key_Left ? -1 : 1);
        if (place) {
            select(*place);
            reveal(boxOf(*place));
        }
        return true;
    }
    case Qt::Key_Up:
    case Qt::Key_Down:
        moveRow(key == Qt::Key_Up ? -1 : 1);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        addInRow();
        return true;
    case Qt::Key_Delete:
        askToDelete();
        return true;
    default:
        return false;
    }
}

/// From the selection, or from the chosen row where nothing in it is selected.
std::optional<SlicePlace> HourBars::neighbour(int direction) const {
    const auto selected = std::find_if(m_stops.begin(), m_stops.end(),
                                       [this](const SlicePlace& place) { return isSelected(place); });
    if (selected != m_stops.end() && selectedPlace()->row == m_row) {
        const bool isLast = direction < 0 ? selected == m_stops.begin() : selected + 1 == m_stops.end();
        return isLast ? std::nullopt : std::optional(*(selected + direction));
    }
    const auto behind = std::find_if(m_stops.begin(), m_stops.end(), [&](const SlicePlace& place) {
        return direction > 0 ? place.row >= m_row : place.row > m_row;
    });
    if (direction > 0) {
        return behind == m_stops.end() ? std::nullopt : std::optional(*behind);
    }
    return behind == m_stops.begin() ? std::nullopt : std::optional(*(behind - 1));
}

void HourBars::moveRow(int by) {
    const std::size_t last = m_rows.size() - 1;
    m_row = by < 0 ? m_row - std::min<std::size_t>(m_row, 1) : std::min(m_row + 1, last);
    m_ringShown = true;
    reveal(barBox(m_row, width()));
    update();
}

void HourBars::addInRow() {
    const HourRow& row = m_rows[m_row];
    double from = 0;
    for (const HourSlice& slice : row.slices) {
        if (slice.activityId == m_selected) {
            from = slice.offset + slice.length;
        }
    }
    if (const auto second = emptySecond(row, from)) {
        m_model.setManualDraft(
            clickedDraft(m_model.dayItems(), row.hour, *second, 3600, m_model.now(), m_model.calendar()));
    }
}

void HourBars::askToDelete() {
    const auto place = selectedPlace();
    if (const ResolvedActivity* item = place ? itemOf(*place) : nullptr) {
        kestu::askToDelete(*window(), m_model, *item);
    }
}

void HourBars::reveal(const QRectF& box) {
    Q_EMIT revealed(box.toAlignedRect().adjusted(0, -revealMargin, 0, revealMargin));
}

void HourBars::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    m_ringShown = event->reason() != Qt::MouseFocusReason;
    update();
    // Later: Qt reports the whole behind this event.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (const auto place = selectedPlace()) {
                reportSelected(*this, *place);
            }
        },
        Qt::QueuedConnection);
}

void HourBars::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    m_ringShown = false;
    update();
}

QColor HourBars::colorOf(const HourSlice& slice) const {
    return slice.projectId ? m_colors.value(*slice.projectId, colorsOf(palette()).unassigned)
                           : colorsOf(palette()).unassigned;
}

void HourBars::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setFont(fontOf(TextStyle::caption2));
    painter.setPen(colorsOf(palette()).textTertiary);
    const QRectF scale = barBox(0, width());
    for (int quarter = 0; quarter < 4; ++quarter) {
        const QRectF box(scale.left() + scale.width() * quarter / 4, 0, scale.width() / 4,
                         hourMetrics::scaleHeight);
        painter.drawText(box, Qt::AlignLeft | Qt::AlignVCenter,
                         QStringLiteral(":%1").arg(quarter * 15, 2, 10, QLatin1Char('0')));
    }
    painter.setRenderHint(QPainter::Antialiasing);
    for (std::size_t row = 0; row < m_rows.size(); ++row) {
        const QRect box = barBox(row, width()).toAlignedRect();
        if (event->region().intersects(box.adjusted(-hourMetrics::labelWidth, 0, 0, 0))) {
            paintRow(painter, row);
        }
    }
}

void HourBars::paintRow(QPainter& painter, std::size_t row) const {
    const Colors& colors = colorsOf(palette());
    const QRectF bar = barBox(row, width());
    painter.setFont(fontOf(TextStyle::caption));
    painter.setPen(colors.textSecondary);
    painter.drawText(QRectF(0, bar.top(), hourMetrics::labelWidth, bar.height()),
                     Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("%1時").arg(m_rows[row].number));
    drawPanel(painter, bar, metrics::radiusSlice, colors.hourTrack);
    painter.setPen(Qt::NoPen);
    for (const HourSlice& slice : m_rows[row].slices) {
        paintSlice(painter, slice, bar);
    }
    if (m_ringShown && hasFocus() && row == m_row) {
        drawRing(painter, bar, metrics::radiusSlice, colors.focus, ringWidth);
    }
    for (const HourSlice& slice : m_rows[row].slices) {
        if (slice.activityId == m_selected) {
            drawRing(painter, sliceBox(slice, bar), metrics::radiusSlice, colors.sliceOutline,
                     selectionWidth);
        }
    }
}

void HourBars::paintSlice(QPainter& painter, const HourSlice& slice, const QRectF& bar) const {
    const QColor color = colorOf(slice);
    QColor fill = color;
    if (slice.isManual) {
        fill.setAlphaF(color.alphaF() * manualOpacity);
    }
    const QRectF box = snapped(painter, sliceBox(slice, bar));
    if (box.width() <= 2 * metrics::radiusSlice) {
        painter.fillRect(box.width() > 0 ? box : sliceBox(slice, bar), fill); // too narrow for corners
    } else {
        painter.setBrush(fill);
        painter.drawRoundedRect(box, metrics::radiusSlice, metrics::radiusSlice);
    }
    if (slice.isManual && slice.activityId != m_selected && box.width() > 2) {
        paintDashes(painter, box, color);
    }
}

} // namespace kestu
