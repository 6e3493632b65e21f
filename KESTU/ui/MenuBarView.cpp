// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/MenuBarView.h"

#include "app/AppModel.h"
#include "base/WindowRole.h"
#include "classify/DayAggregation.h"
#include "classify/DurationText.h"
#include "ui/Commands.h"
#include "ui/WindowPlace.h"
#include "ui/controls/Announcing.h"
#include "ui/controls/Roles.h"
#include "ui/controls/Surfaces.h"
#include "ui/controls/TextLabel.h"
#include "ui/parts/Texts.h"
#include "ui/theme/Theme.h"

#include <QBitmap>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <chrono>

namespace kestu {
namespace {

using namespace std::chrono_literals;

constexpr int panelWidth = 280;
constexpr int padding = 12;
constexpr int gap = 10;
constexpr size_t mostProjects = 5;

/// A compositor need not give a new window the focus, and what never had it cannot lose it.
constexpr auto longestUnfocused = 10s;

/// Beside the status item; else it is the compositor's to place and to frame, as any window.
Qt::WindowFlags panelFlags() {
    return mayPlaceWindows() ? Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint : Qt::Dialog;
}

QVBoxLayout* column(QWidget* owner, int spacing) {
    auto* layout = new QVBoxLayout(owner);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

QWidget* makeProjectRow(const Project* project, double seconds) {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    auto* name = new TextLabel(project ? project->name : QStringLiteral("未分類"), TextStyle::callout,
                               ink::primary, Overflow::elideRight);
    layout->addWidget(new ProjectDot(project ? colorFromText(project->colorHex) : QColor(), 8));
    layout->addWidget(name, 1);
    layout->addWidget(new TextLabel(formatDuration(seconds), TextStyle::callout, ink::secondary));
    return row;
}

} // namespace

MenuBarView::MenuBarView(AppModel& model, Commands& commands)
    : QWidget(nullptr, panelFlags())
    , m_model(model)
    , m_total(new TextLabel({}, TextStyle::title3))
    , m_now(new QWidget)
    , m_nowApp(new TextLabel({}, TextStyle::callout, ink::primary, Overflow::elideRight))
    , m_nowTitle(new TextLabel({}, TextStyle::caption, ink::primary, Overflow::elideRight))
    , m_projects(new QWidget) {
    reportRole(this, QAccessible::Window);
    setAttribute(Qt::WA_TranslucentBackground, mayPlaceWindows());
    setWindowTitle(statusItemTitle.toString());
    setWindowRole(statusItemRole);
    setAccessibleName(QStringLiteral("今日"));
    auto* content = new QWidget;
    content->setFixedWidth(panelWidth);
    column(this, 0)->addWidget(content);
    layout()->setSizeConstraint(QLayout::SetFixedSize); // the panel is as high as what it holds
    auto* panel = column(content, gap);
    panel->setContentsMargins(padding, padding, padding, padding);

    auto* header = new QHBoxLayout;
    header->addWidget(new TextLabel(QStringLiteral("今日"), TextStyle::headline), 1);
    header->addWidget(m_total);
    panel->addLayout(header);

    auto* now = column(m_now, 2);
    m_nowApp->setFont(semibold(m_nowApp->font()));
    now->addWidget(new TextLabel(QStringLiteral("いま"), TextStyle::caption, ink::secondary));
    now->addWidget(m_nowApp);
    now->addWidget(m_nowTitle);
    panel->addWidget(m_now);

    column(m_projects, 6);
    panel->addWidget(m_projects);
    panel->addWidget(new Divider(Qt::Horizontal));
    panel->addLayout(makeControls(commands));

    m_unfocused.setSingleShot(true);
    connect(&m_unfocused, &QTimer::timeout, this, &QWidget::close);
    connect(&m_model, &AppModel::todayTotalChanged, this, &MenuBarView::refreshTotal);
    for (const auto signal : {&AppModel::currentSampleChanged, &AppModel::whyUnseenChanged,
                              &AppModel::isTrackingChanged, &AppModel::abilitiesChanged}) {
        connect(&m_model, signal, this, &MenuBarView::refreshNow);
    }
    for (const auto signal : {&AppModel::whyUnseenChanged, &AppModel::isTrackingChanged}) {
        connect(&m_model, signal, this, [this] { announce(*this, trackingStateText(m_model)); });
    }
    for (const auto signal :
         {&AppModel::dayItemsChanged, &AppModel::selectedDayChanged, &AppModel::projectsChanged}) {
        connect(&m_model, signal, this, &MenuBarView::refreshProjects);
    }
    refreshTotal();
    refreshNow();
    refreshProjects();
}

QLayout* MenuBarView::makeControls(Commands& commands) {
    auto* toggle = new QPushButton;
    auto* open = new QPushButton(QStringLiteral("開く"));
    auto* quit = new QPushButton(QStringLiteral("終了"));
    auto* controls = new QHBoxLayout;
    controls->setSpacing(8);
    controls->addWidget(toggle);
    controls->addStretch();
    controls->addWidget(open);
    controls->addWidget(quit);
    const auto refresh = [toggle, this] { toggle->setText(trackingCommandText(m_model.isTracking())); };
    connect(&m_model, &AppModel::isTrackingChanged, toggle, refresh);
    refresh();
    connect(toggle, &QPushButton::clicked, &m_model, &AppModel::toggleTracking);
    connect(open, &QPushButton::clicked, &commands, &Commands::open);
    connect(open, &QPushButton::clicked, this, &QWidget::close);
    connect(quit, &QPushButton::clicked, &commands, &Commands::quitRequested);
    return controls;
}

void MenuBarView::refreshTotal() {
    m_total->setText(formatDuration(m_model.todayTotal()));
}

void MenuBarView::refreshNow() {
    const auto& sample = m_model.currentSample();
    const bool isUnseen = m_model.isTracking() && !m_model.whyUnseen().isEmpty();
    m_now->setVisible(sample || isUnseen);
    m_nowApp->setText(sample ? sample->appName : m_model.words().warning);
    m_nowTitle->setText(sample ? sample->title : QString());
    m_nowTitle->setVisible(sample && !sample->title.isEmpty());
}

void MenuBarView::refreshProjects() {
    // Only the loaded day is shown; another day's is not today's.
    const auto totals = m_model.isTodaySelected() ? projectTotals(m_model.dayItems()) : ProjectTotals();
    QLayout* rows = m_projects->layout();
    while (QLayoutItem* item = rows->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    m_projects->setVisible(!totals.empty());
    if (!totals.empty()) {
        rows->addWidget(new Divider(Qt::Horizontal));
        static_cast<QVBoxLayout*>(rows)->addSpacing(gap - 6);
    }
    for (size_t i = 0; i < std::min(totals.size(), mostProjects); ++i) {
        const auto& [projectId, seconds] = totals[i];
        rows->addWidget(makeProjectRow(projectId ? m_model.project(*projectId) : nullptr, seconds));
    }
}

void MenuBarView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isVisible()) {
        m_unfocused.stop();
        if (!isActiveWindow()) {
            close();
        }
    }
    QWidget::changeEvent(event);
}

void MenuBarView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!mayPlaceWindows()) {
        m_unfocused.start(longestUnfocused);
    }
}

void MenuBarView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void MenuBarView::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsOf(palette());
    QPainter painter(this);
    if (!mayPlaceWindows()) {
        painter.fillRect(rect(), colors.sheet);
        return;
    }
    painter.fillRect(rect(), colors.sheetBorder); // what the shape leaves of the corners
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colors.sheetBorder);
    painter.setBrush(colors.sheet);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), metrics::radiusCard,
                            metrics::radiusCard);
}

void MenuBarView::resizeEvent(QResizeEvent* event) {
    if (mayPlaceWindows()) {
        // Where nothing composes the screen a translucent corner would be black.
        QBitmap shape(size());
        shape.fill(Qt::color0);
        QPainter painter(&shape);
        painter.setPen(Qt::color1);
        painter.setBrush(Qt::color1);
        painter.drawRoundedRect(rect().adjusted(0, 0, -1, -1), metrics::radiusCard, metrics::radiusCard);
        setMask(shape);
    }
    QWidget::resizeEvent(event);
    Q_EMIT resized();
}

void MenuBarView::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    Q_EMIT moved();
}

QPoint panelPosition(const QSize& panel, const QRect& anchor, const QRect& room) {
    constexpr int distance = 6;
    constexpr int edge = 100; // what is nearer to an edge than that is in a row or column along it
    const QRect inner = room.adjusted(distance, distance, -distance, -distance);
    const auto inside = [&](QPoint corner) {
        return QPoint(
            std::clamp(corner.x(), inner.left(), std::max(inner.left(), inner.right() + 1 - panel.width())),
            std::clamp(corner.y(), inner.top(), std::max(inner.top(), inner.bottom() + 1 - panel.height())));
    };
    const QPoint middle = anchor.center() - QPoint(panel.width() / 2, panel.height() / 2);
    std::array sides{QPoint(middle.x(), anchor.bottom() + 1 + distance),
                     QPoint(middle.x(), anchor.top() - distance - panel.height()),
                     QPoint(anchor.right() + 1 + distance, middle.y()),
                     QPoint(anchor.left() - distance - panel.width(), middle.y())};
    const auto isNear = [&](int at, int first, int last) { return at - first < edge || last - at < edge; };
    if (isNear(anchor.center().x(), room.left(), room.right()) &&
        !isNear(anchor.center().y(), room.top(), room.bottom())) {
        std::rotate(sides.begin(), sides.begin() + 2, sides.end());
    }
    const QRect around = anchor.adjusted(-distance, -distance, distance, distance);
    const auto isFree = [&](QPoint corner) { return !QRect(inside(corner), panel).intersects(around); };
    const auto* side = std::find_if(sides.begin(), sides.end(), isFree);
    return inside(side == sides.end() ? sides.front() : *side);
}

} // namespace kestu
