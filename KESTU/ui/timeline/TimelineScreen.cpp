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

#include <QEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>

namespace kestu {
namespace {

constexpr int columnPadding = 24;
constexpr int columnGap = 20;
constexpr int emptyHeight = 300;
constexpr int narrowestDay = 398; // beside the panel
constexpr int edge = 1;
constexpr int shadowWidth = 16;

/// The line before the side panel, and the shadow that it casts as a drawer.
class PanelEdge final : public QWidget {
public:
    PanelEdge() { setAttribute(Qt::WA_TransparentForMouseEvents); }

protected:
    void paintEvent(QPaintEvent*) override {
        const Colors& colors = colorsOf(palette());
        const QRect line(width() - edge, 0, edge, height());
        QPainter painter(this);
        QLinearGradient shadow(0, 0, line.left(), 0);
        shadow.setColorAt(0, Qt::transparent);
        shadow.setColorAt(1, colors.menuShadow);
        painter.fillRect(rect().adjusted(0, 0, -edge, 0), shadow);
        painter.fillRect(line, colors.divider);
    }
};

} // namespace

TimelineScreen::TimelineScreen(AppModel& model)
    : m_model(model)
    , m_header(new DayHeader(model))
    , m_empty(new EmptyState(QStringLiteral("clock"), QStringLiteral("この日の記録はありません"),
                             QStringLiteral("記録中は、使っているアプリとウィンドウが自動で並びます。")))
    , m_summary(new ProjectSummary(model))
    , m_hours(new HourRows(model))
    , m_column(makeColumn())
    , m_panel(new SidePanel(model))
    , m_panelEdge(new PanelEdge)
    , m_columns(new QHBoxLayout(this)) {
    auto* day = new QVBoxLayout;
    day->setSpacing(0);
    day->addWidget(m_header);
    day->addWidget(new Divider(Qt::Horizontal));
    day->addWidget(m_column, 1);
    m_panelEdge->setFixedWidth(edge);
    m_column->installEventFilter(this);
    m_columns->setContentsMargins(0, 0, 0, 0);
    m_columns->setSpacing(0);
    m_columns->addLayout(day, 1);
    m_columns->addWidget(m_panelEdge);
    m_columns->addWidget(m_panel);
    connect(m_header, &DayHeader::panelAsked, this, &TimelineScreen::togglePanel);
    connect(&m_hours->bars(), &HourBars::chosen, this, [this] {
        if (m_isDrawer) {
            m_isOpen = true; // the bars keep the focus
            placePanel();
        }
    });
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
    addShortcut(dayKeys::panel, [this] { togglePanel(); });
    addShortcut(Qt::Key_Escape, [this] {
        if (m_isDrawer && m_isOpen) {
            closePanel();
        } else {
            m_model.setSelectedActivityId(std::nullopt);
        }
    });
}

/// Works while the screen is shown, and not beneath a sheet.
void TimelineScreen::addShortcut(const QKeySequence& keys, const std::function<void()>& action) {
    connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
}

void TimelineScreen::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

/// The drawer begins where the column does.
bool TimelineScreen::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_column && (event->type() == QEvent::Move || event->type() == QEvent::Resize)) {
        placePanel();
    }
    return QWidget::eventFilter(watched, event);
}

void TimelineScreen::arrange() {
    const bool isDrawer = width() < narrowestDay + edge + SidePanel::preferredWidth;
    if (m_isDrawer != isDrawer) {
        m_isDrawer = isDrawer;
        m_isOpen = false;
        for (QWidget* part : {m_panelEdge, static_cast<QWidget*>(m_panel)}) {
            if (isDrawer) {
                m_columns->removeWidget(part);
                part->raise();
            } else {
                m_columns->addWidget(part);
            }
        }
        m_panel->setAutoFillBackground(isDrawer);
        m_panelEdge->setFixedWidth(isDrawer ? shadowWidth + edge : edge);
    }
    placePanel();
}

void TimelineScreen::placePanel() {
    const bool isShown = !m_isDrawer || m_isOpen;
    m_panel->setFixedWidth(m_isDrawer ? std::min(SidePanel::preferredWidth, width())
                                      : SidePanel::preferredWidth);
    if (m_isDrawer) {
        const int top = m_column->y(); // below the header, which holds the button
        const int left = width() - m_panel->width();
        m_panel->setGeometry(left, top, m_panel->width(), height() - top);
        m_panelEdge->setGeometry(left - m_panelEdge->width(), top, m_panelEdge->width(), height() - top);
    }
    m_panel->setVisible(isShown);
    m_panelEdge->setVisible(isShown);
    m_header->setPanelButton(!m_isDrawer ? DayHeader::PanelButton::none
                             : m_isOpen  ? DayHeader::PanelButton::closes
                                         : DayHeader::PanelButton::opens);
}

void TimelineScreen::openPanel() {
    m_focusBefore = window()->focusWidget();
    m_isOpen = true;
    placePanel();
    if (QWidget* stop = m_panel->firstStop()) {
        stop->setFocus(Qt::ShortcutFocusReason);
    }
}

void TimelineScreen::closePanel() {
    const bool hadFocus = m_panel->isAncestorOf(window()->focusWidget());
    QWidget* next = m_focusBefore && m_focusBefore->isVisible() && !m_panel->isAncestorOf(m_focusBefore)
                        ? m_focusBefore.data()
                        : m_header->panelButton();
    if (hadFocus) {
        next->setFocus(Qt::ShortcutFocusReason);
    }
    m_isOpen = false;
    placePanel();
}

void TimelineScreen::togglePanel() {
    if (m_isDrawer) {
        m_isOpen ? closePanel() : openPanel();
    }
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
