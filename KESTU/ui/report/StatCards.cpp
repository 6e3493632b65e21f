// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/report/StatCards.h"

#include "classify/DurationText.h"
#include "ui/controls/Surfaces.h"
#include "ui/controls/TextLabel.h"
#include "ui/report/ReportFigures.h"

#include <QVBoxLayout>

#include <algorithm>

namespace kestu {
namespace {

enum Place : std::size_t { total, average, unassigned, manual };

const std::array<QString, 4> captions{QStringLiteral("記録の合計"), QStringLiteral("1日平均（記録のある日）"),
                                      QStringLiteral("未分類"), QStringLiteral("手動で登録")};
constexpr int gap = 12;
constexpr int noteRise = 2; // puts the small note on the figure's baseline

} // namespace

StatCards::StatCards(QWidget* parent)
    : QWidget(parent) {
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(gap);
    for (QHBoxLayout*& row : m_rows) {
        row = new QHBoxLayout;
        row->setSpacing(gap);
        rows->addLayout(row);
    }
    for (std::size_t place = 0; place < m_values.size(); ++place) {
        auto* card = new Card;
        auto* column = new QVBoxLayout(card);
        column->setContentsMargins(15, 12, 15, 13);
        column->setSpacing(4);
        column->addWidget(new TextLabel(captions[place], TextStyle::caption, ink::secondary));
        auto* value = new QHBoxLayout;
        value->setSpacing(8);
        m_values[place] = {.figure = new TextLabel({}, TextStyle::title2),
                           .note = new TextLabel({}, TextStyle::callout, ink::secondary)};
        m_values[place].note->setVisible(place == unassigned);
        value->addWidget(m_values[place].figure);
        auto* note = new QVBoxLayout;
        note->setSpacing(0);
        note->addStretch();
        note->addWidget(m_values[place].note);
        note->addSpacing(noteRise);
        value->addLayout(note);
        value->addStretch();
        column->addLayout(value);
        m_cards[place] = card;
        m_rows[0]->addWidget(card, 1);
    }
}

void StatCards::arrange() {
    int needed = -gap;
    for (const QWidget* card : m_cards) {
        needed += card->minimumSizeHint().width() + gap;
    }
    const int inSecondRow = needed > width() ? 2 : 0;
    if (m_rows[1]->count() == inSecondRow) {
        return;
    }
    for (const std::size_t place : {unassigned, manual}) {
        m_rows[inSecondRow ? 0 : 1]->removeWidget(m_cards[place]);
        m_rows[inSecondRow ? 1 : 0]->addWidget(m_cards[place], 1);
    }
}

/// Two beside each other, so that nobody is asked for more.
QSize StatCards::minimumSizeHint() const {
    int widest = 0;
    for (const QWidget* card : m_cards) {
        widest = std::max(widest, card->minimumSizeHint().width());
    }
    return {2 * widest + gap, QWidget::minimumSizeHint().height()};
}

void StatCards::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

void StatCards::display(const ReportFigures& figures) {
    m_values[total].figure->setText(formatDuration(figures.total));
    m_values[average].figure->setText(formatDuration(figures.dailyAverage()));
    m_values[unassigned].figure->setText(formatDuration(figures.unassigned));
    m_values[unassigned].note->setText(shareText(figures.unassigned, figures.total));
    m_values[manual].figure->setText(formatDuration(figures.manual));
    arrange();
}

} // namespace kestu
