// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/TimelineScreen.h"

#include "app/AppModel.h"
#include "ui/controls/Surfaces.h"
#include "ui/timeline/DayHeader.h"
#include "ui/timeline/DayNoteCard.h"
#include "ui/timeline/HourBars.h"
#include "ui/timeline/HourRows.h"
#include "ui/timeline/ProjectSummary.h"
#include "ui/timeline/SidePanel.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>

namespace kestu {
namespace {

constexpr int columnPadding = 24;
constexpr int columnGap = 20;
constexpr int emptyHeight = 300;

} // namespace

TimelineScreen::TimelineScreen(AppModel& model)
    : m_model(model)
    , m_header(new DayHeader(model))
    , m_empty(new EmptyState(QStringLiteral("clock"), QStringLiteral("この日の記録はありません"),
                             QStringLiteral("記録中は、使っているアプリとウィンドウが自動で並びます。")))
    , m_summary(new ProjectSummary(model))
    , m_hours(new HourRows(model))
    , m_column(makeColumn()) {
    auto* day = new QVBoxLayout;
    day->setSpacing(0);
    day->addWidget(m_header);
    day->addWidget(new Divider(Qt::Horizontal));
    day->addWidget(m_column, 1);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(day, 1);
    layout->addWidget(new Divider(Qt::Vertical));
    layout->addWidget(new SidePanel(model));
    connect(&m_model, &AppModel::dayItemsChanged, this, &TimelineScreen::refreshContent);
    connect(&m_model, &AppModel::selectedDayChanged, this, &TimelineScreen::refreshDay);
    refreshContent();
    addShortcuts();
}

QScrollArea* TimelineScreen::makeColumn() {
    auto* content = new QWidget;
    auto* parts = new QVBoxLayout(content);
    parts->setContentsMargins(columnPadding, columnPadding, columnPadding, columnPadding);
    parts->setSpacing(columnGap);
    parts->addWidget(new DayNoteCard(m_model));
    m_empty->setMinimumHeight(emptyHeight);
    parts->addWidget(m_empty);
    parts->addWidget(m_summary);
    parts->addWidget(m_hours);
    parts->addStretch(1);
    auto* column = new QScrollArea;
    column->setWidgetResizable(true);
    column->setFrameShape(QFrame::NoFrame);
    column->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    column->setFocusPolicy(Qt::NoFocus);
    column->setWidget(content);
    connect(&m_hours->bars(), &HourBars::revealed, this, [this, column](const QRect& box) {
        const QPoint corner = m_hours->bars().mapTo(column->widget(), box.center());
        column->ensureVisible(corner.x(), corner.y(), 0, box.height() / 2);
    });
    return column;
}

void TimelineScreen::addShortcuts() {
    addShortcut(dayKeys::previous, [this] { m_model.shiftDay(-1); });
    addShortcut(dayKeys::next, [this] {
        if (!m_model.isTodaySelected()) {
            m_model.shiftDay(1);
        }
    });
    addShortcut(Qt::Key_Escape, [this] { m_model.setSelectedActivityId(std::nullopt); });
}

/// Works while the screen is shown, and not beneath a sheet.
void TimelineScreen::addShortcut(const QKeySequence& keys, const std::function<void()>& action) {
    connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
}

void TimelineScreen::refreshContent() {
    const bool isEmpty = m_model.dayItems().empty();
    m_empty->setVisible(isEmpty);
    m_summary->setVisible(!isEmpty);
    m_hours->setVisible(!isEmpty);
}

void TimelineScreen::refreshDay() {
    m_column->verticalScrollBar()->setValue(0);
}

} // namespace kestu
