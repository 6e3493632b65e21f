// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TrackingStatus.h"

#include "app/AppModel.h"
#include "classify/DurationText.h"
#include "ui/controls/Announcing.h"
#include "ui/controls/Surfaces.h"
#include "ui/controls/TextLabel.h"
#include "ui/parts/Texts.h"
#include "ui/theme/Theme.h"

#include <QEvent>
#include <QVBoxLayout>

namespace kestu {

TrackingStatus::TrackingStatus(AppModel& model)
    : m_model(model)
    , m_dot(new ProjectDot({}, 8))
    , m_state(new TextLabel({}, TextStyle::caption))
    , m_total(new TextLabel({}, TextStyle::caption, ink::secondary)) {
    m_state->setFont(semibold(m_state->font()));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    auto* row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(m_dot);
    row->addWidget(m_state, 1);
    layout->addLayout(row);
    layout->addWidget(m_total);

    connect(&m_model, &AppModel::isTrackingChanged, this, &TrackingStatus::refreshState);
    connect(&m_model, &AppModel::whyUnseenChanged, this, &TrackingStatus::refreshState);
    connect(&m_model, &AppModel::abilitiesChanged, this, &TrackingStatus::refreshState);
    connect(&m_model, &AppModel::todayTotalChanged, this, &TrackingStatus::refreshTotal);
    refreshState();
    refreshTotal();
}

void TrackingStatus::setCompact(bool compact) {
    m_state->setVisible(!compact);
    m_total->setVisible(!compact);
    refreshHelp();
}

void TrackingStatus::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) {
        refreshState(); // the dot's colour is a value of the old set
    }
    QWidget::changeEvent(event);
}

void TrackingStatus::refreshState() {
    const Colors& colors = colorsOf(palette());
    const QColor& whileTracking = seesAll(m_model) ? colors.green : colors.orange;
    m_dot->setColor(m_model.isTracking() ? whileTracking : colors.textSecondary);
    const QString state = trackingStateText(m_model);
    if (state != m_state->text()) {
        m_state->setText(state);
        refreshHelp();
        announce(*this, state);
    }
}

void TrackingStatus::refreshTotal() {
    m_total->setText(QStringLiteral("今日 ") + formatDuration(m_model.todayTotal()));
    refreshHelp();
}

/// What cannot be read is told; assistive technology would find nothing here.
void TrackingStatus::refreshHelp() {
    const bool isCompact = m_state->isHidden();
    setToolTip(isCompact ? m_state->text() + u'\n' + m_total->text() : QString());
    setAccessibleName(isCompact ? m_state->text() + QStringLiteral("、") + m_total->text() : QString());
}

} // namespace kestu
