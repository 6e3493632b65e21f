// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/SidePanel.h"

#include "app/AppModel.h"
#include "ui/controls/Surfaces.h"
#include "ui/timeline/ActivityDetail.h"
#include "ui/timeline/GapList.h"
#include "ui/timeline/SliceTexts.h"
#include "ui/timeline/UnassignedList.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace kestu {
namespace {

constexpr int padding = 16;
constexpr int partGap = 20;

/// The order of the layouts, whatever was made first.
void chainTabs(const QLayout& layout, QWidget*& last) {
    for (int index = 0; index < layout.count(); ++index) {
        QLayoutItem* item = layout.itemAt(index);
        QWidget* widget = item->widget();
        if (const QLayout* inner = widget ? widget->layout() : item->layout()) {
            chainTabs(*inner, last);
        } else if (widget && (widget->focusPolicy() & Qt::TabFocus)) {
            QWidget::setTabOrder(last, widget);
            last = widget;
        }
    }
}

} // namespace

SidePanel::SidePanel(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_scroll(new QScrollArea)
    , m_detail(new ActivityDetail(model))
    , m_belowDetail(new Divider)
    , m_gaps(new GapList(model))
    , m_belowGaps(new Divider)
    , m_unassigned(new UnassignedList(model)) {
    setFixedWidth(preferredWidth);
    QVBoxLayout* column = makeColumn();
    for (QWidget* part :
         std::initializer_list<QWidget*>{m_detail, m_belowDetail, m_gaps, m_belowGaps, m_unassigned}) {
        if (part != m_detail) {
            part->setContentsMargins(sideRoom);
        }
        column->addWidget(part);
    }
    column->addStretch();
    connect(m_detail, &ActivityDetail::rearranged, this, &SidePanel::orderTabs);
    connect(m_gaps, &GapList::rearranged, this, &SidePanel::orderTabs);
    connect(m_gaps, &GapList::rearranged, this, &SidePanel::showDividers);
    connect(m_unassigned, &UnassignedList::rearranged, this, &SidePanel::orderTabs);
    connect(&m_model, &AppModel::dayItemsChanged, this, &SidePanel::showSelected);
    connect(&m_model, &AppModel::selectedActivityIdChanged, this, &SidePanel::showSelected);
    connect(&m_model, &AppModel::selectedActivityIdChanged, this, &SidePanel::scrollToTop);
    connect(&m_model, &AppModel::selectedDayChanged, this, &SidePanel::scrollToTop);
    showSelected();
    showDividers();
    orderTabs();
}

QVBoxLayout* SidePanel::makeColumn() {
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(padding - sideRoom.left(), padding, padding - sideRoom.right(), padding);
    column->setSpacing(partGap);
    m_scroll->setWidget(content);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setFocusPolicy(Qt::NoFocus); // its buttons scroll it
    m_scroll->viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(m_scroll);
    return column;
}

void SidePanel::showSelected() {
    const auto selected = m_model.selectedActivityId();
    const auto pieces = selected ? piecesOf(*selected, m_model) : std::vector<ResolvedActivity>();
    const bool isShown = !pieces.empty();
    if (isShown) {
        m_detail->setPieces(pieces);
    }
    m_detail->setVisible(isShown);
    m_belowDetail->setVisible(isShown);
}

/// Without gaps, the one below the detail is all there is to divide.
void SidePanel::showDividers() {
    m_gaps->setVisible(!m_gaps->isEmpty());
    m_belowGaps->setVisible(!m_gaps->isEmpty());
}

void SidePanel::orderTabs() {
    QWidget* last = m_scroll;
    chainTabs(*m_scroll->widget()->layout(), last);
}

QWidget* SidePanel::firstStop() const {
    for (QWidget* stop = nextInFocusChain(); stop != this; stop = stop->nextInFocusChain()) {
        if (isAncestorOf(stop) && (stop->focusPolicy() & Qt::TabFocus) && stop->isVisibleTo(this) &&
            stop->isEnabled()) {
            return stop;
        }
    }
    return nullptr;
}

void SidePanel::scrollToTop() {
    m_scroll->verticalScrollBar()->setValue(0);
}

} // namespace kestu
