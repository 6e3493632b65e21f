// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/DayHeader.h"

#include "app/AppModel.h"
#include "classify/DurationText.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/Painted.h"
#include "ui/controls/TextLabel.h"
#include "ui/parts/Texts.h"
#include "ui/theme/Icons.h"
#include "ui/timeline/DayDrafts.h"

#include <QHBoxLayout>
#include <QPushButton>

#include <algorithm>
#include <numeric>

namespace kestu {
namespace {

constexpr int narrowColumn = 440;
constexpr int gap = 12;
constexpr int narrowGap = 8;
constexpr int stepGap = 4;
constexpr int buttonPadding = 12;
constexpr int narrowPadding = 8;
constexpr int buttonTop = 1; // their texts stand on the date's line

QString addText() {
    return QStringLiteral("手動で追加");
}

} // namespace

DayHeader::DayHeader(AppModel& model)
    : m_model(model)
    , m_date(new TextLabel({}, TextStyle::title2))
    , m_total(new TextLabel({}, TextStyle::callout, ink::secondary))
    , m_add(new QPushButton(iconOf(u"plus"), addText()))
    , m_previous(
          new IconButton(QStringLiteral("chevron.left"), QStringLiteral("前の日"), IconButton::Kind::framed))
    , m_today(new QPushButton(QStringLiteral("今日")))
    , m_next(
          new IconButton(QStringLiteral("chevron.right"), QStringLiteral("次の日"), IconButton::Kind::framed))
    , m_panel(new IconButton(QStringLiteral("sidebar.right"), {}, IconButton::Kind::framed))
    , m_row(new QHBoxLayout(this))
    , m_controls(new QHBoxLayout) {
    m_row->setContentsMargins(24, 16, 24, 14);
    m_row->addLayout(makeTexts());
    m_row->addStretch(1);
    m_controls->addLayout(makeAdding());
    m_controls->addLayout(makeSteps());
    auto* panel = new QHBoxLayout;
    panel->setContentsMargins(0, buttonTop, 0, 0);
    panel->addWidget(m_panel, 0, Qt::AlignTop);
    m_controls->addLayout(panel);
    m_row->addLayout(m_controls);
    setPanelButton(PanelButton::none);
    m_add->setAccessibleName(addText());
    m_add->setAutoDefault(false);
    m_today->setAutoDefault(false);
    tellKeys(*m_add, addText(), dayKeys::add);
    tellKeys(*m_previous, m_previous->accessibleName(), dayKeys::previous);
    tellKeys(*m_today, m_today->text(), dayKeys::today);
    tellKeys(*m_next, m_next->accessibleName(), dayKeys::next);
    connect(m_add, &QPushButton::clicked, this, [this] { proposeEntry(m_model); });
    connect(m_previous, &QAbstractButton::clicked, this, [this] { m_model.shiftDay(-1); });
    connect(m_today, &QPushButton::clicked, this, [this] { m_model.goToToday(); });
    connect(m_next, &QAbstractButton::clicked, this, [this] { m_model.shiftDay(1); });
    connect(m_panel, &QAbstractButton::clicked, this, &DayHeader::panelAsked);
    connect(&m_model, &AppModel::selectedDayChanged, this, &DayHeader::refreshDay);
    connect(&m_model, &AppModel::revisionChanged, this, &DayHeader::refreshDay); // midnight may have passed
    connect(&m_model, &AppModel::dayItemsChanged, this, &DayHeader::refreshTotal);
    refreshDay();
    refreshTotal();
}

QBoxLayout* DayHeader::makeTexts() {
    auto* texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addWidget(m_date);
    texts->addWidget(m_total);
    return texts;
}

QBoxLayout* DayHeader::makeAdding() {
    auto* adding = new QHBoxLayout;
    adding->setContentsMargins(0, buttonTop, 0, 0);
    adding->addWidget(m_add, 0, Qt::AlignTop);
    return adding;
}

QBoxLayout* DayHeader::makeSteps() {
    auto* steps = new QHBoxLayout;
    steps->setContentsMargins(0, buttonTop, 0, 0);
    steps->setSpacing(stepGap);
    for (QWidget* step :
         {static_cast<QWidget*>(m_previous), static_cast<QWidget*>(m_today), static_cast<QWidget*>(m_next)}) {
        steps->addWidget(step, 0, Qt::AlignTop);
    }
    return steps;
}

void proposeEntry(AppModel& model) {
    model.setManualDraft(defaultDraft(
        {.items = model.dayItems(), .start = model.selectedDay(), .isToday = model.isTodaySelected()},
        model.now()));
}

void DayHeader::setPanelButton(PanelButton button) {
    m_panel->setVisible(button != PanelButton::none);
    const QString name =
        button == PanelButton::closes ? QStringLiteral("詳細を閉じる") : QStringLiteral("詳細を開く");
    m_panel->setAccessibleName(name);
    tellKeys(*m_panel, name, dayKeys::panel);
    arrange();
}

QWidget* DayHeader::panelButton() const {
    return m_panel;
}

void DayHeader::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

/// What gives way in a narrow column: first the texts of the buttons, then their place beside the day.
void DayHeader::arrange() {
    const QMargins margins = m_row->contentsMargins();
    const int room = width() - margins.left() - margins.right();
    setNarrow(width() < narrowColumn);
    if (neededWidth() > room) {
        setNarrow(true);
    }
    const bool isWrapped = neededWidth() > room;
    m_row->setDirection(isWrapped ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    m_row->setAlignment(m_controls, isWrapped ? Qt::AlignLeft : Qt::Alignment());
}

void DayHeader::setNarrow(bool isNarrow) {
    m_row->setSpacing(isNarrow ? narrowGap : gap);
    m_controls->setSpacing(m_row->spacing());
    m_add->setText(isNarrow ? QString() : addText());
    const int padding = isNarrow ? narrowPadding : buttonPadding;
    m_today->setFixedWidth(widthOf(m_today->text(), m_today->font()) + padding * 2);
}

/// Of the widgets: what their layouts know of them may be of before.
int DayHeader::neededWidth() const {
    const int spacing = m_row->spacing();
    const int texts = std::max(m_date->sizeHint().width(), m_total->sizeHint().width());
    const int steps = m_previous->sizeHint().width() + m_today->minimumWidth() + m_next->sizeHint().width();
    const int panel = m_panel->isHidden() ? 0 : spacing + m_panel->sizeHint().width();
    return texts + spacing + m_add->sizeHint().width() + spacing + steps + 2 * stepGap + panel;
}

void DayHeader::refreshDay() {
    const auto local = LocalClock(m_model.calendar()).at(m_model.selectedDay());
    if (const QString date = local ? dateText(local->date) : QString(); date != m_date->text()) {
        m_date->setText(date);
        arrange();
    }
    const bool isToday = m_model.isTodaySelected();
    m_today->setEnabled(!isToday);
    m_next->setEnabled(!isToday);
}

void DayHeader::refreshTotal() {
    const auto& items = m_model.dayItems();
    const double total =
        std::accumulate(items.begin(), items.end(), 0.0,
                        [](double sum, const ResolvedActivity& item) { return sum + secondsOf(item); });
    m_total->setText(QStringLiteral("記録 ") + formatDuration(total));
}

} // namespace kestu
