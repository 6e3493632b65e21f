// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/report/StatCards.h"

#include "classify/DurationText.h"
#include "ui/controls/Surfaces.h"
#include "ui/controls/TextLabel.h"
#include "ui/report/ReportFigures.h"

#include <QVBoxLayout>

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
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(gap);
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
        row->addWidget(card, 1);
    }
}

void StatCards::display(const ReportFigures& figures) {
    m_values[total].figure->setText(formatDuration(figures.total));
    m_values[average].figure->setText(formatDuration(figures.dailyAverage()));
    m_values[unassigned].figure->setText(formatDuration(figures.unassigned));
    m_values[unassigned].note->setText(shareText(figures.unassigned, figures.total));
    m_values[manual].figure->setText(formatDuration(figures.manual));
}

} // namespace kestu
