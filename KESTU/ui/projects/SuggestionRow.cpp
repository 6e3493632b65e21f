// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/projects/SuggestionRow.h"

#include "app/AppModel.h"
#include "classify/DurationText.h"
#include "ui/controls/Badge.h"
#include "ui/controls/Painted.h"
#include "ui/controls/Surfaces.h"
#include "ui/parts/Texts.h"
#include "ui/theme/KestuStyle.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>

namespace kestu {
namespace {

constexpr int padding = 11; // the hairline included
constexpr int leastText = 140;

/// However long the other one is.
void keepReadable(QWidget& text) {
    text.setMinimumWidth(std::min(text.sizeHint().width(), leastText));
}

TextLabel* secondary(const QString& text = {}) {
    return new TextLabel(text, TextStyle::callout, ink::secondary);
}

} // namespace

SuggestionRow::SuggestionRow(AppModel& model, const RuleSuggestion& suggestion)
    : m_model(model)
    , m_suggestion(suggestion)
    , m_field(secondary())
    , m_value(new Badge(Badge::Kind::pill, {}))
    , m_op(secondary())
    , m_kind(new IconView({}, metrics::icon, &Colors::textSecondary))
    , m_target(new TextLabel({}, TextStyle::callout, ink::primary, Overflow::elideRight))
    , m_new(new Badge(Badge::Kind::fresh, QStringLiteral("新規")))
    , m_reason(new TextLabel({}, TextStyle::caption, ink::secondary, Overflow::wrap))
    , m_impact(new TextLabel({}, TextStyle::caption2, ink::tertiary))
    , m_dismiss(new QPushButton(QStringLiteral("却下")))
    , m_accept(new QPushButton(QStringLiteral("承認"))) {
    auto* texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addLayout(makeSentence());
    texts->addWidget(m_reason);
    texts->addWidget(m_impact);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(padding, padding, padding, padding);
    row->setSpacing(12);
    row->addLayout(texts, 1);
    row->addLayout(makeButtons());
    m_new->hide();
    m_impact->hide();
    refresh();
    setOnce(m_dismiss);
    setOnce(m_accept);
    connect(m_dismiss, &QPushButton::clicked, this, [this] { m_model.dismissSuggestion(m_suggestion); });
    connect(m_accept, &QPushButton::clicked, this, [this] { m_model.acceptSuggestion(m_suggestion); });
}

QAbstractButton& SuggestionRow::acceptButton() const {
    return *m_accept;
}

QHBoxLayout* SuggestionRow::makeSentence() {
    m_value->setContentsMargins(6, 1, 6, 1);
    m_target->setFont(semibold(m_target->font()));
    m_target->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    auto* sentence = new QHBoxLayout;
    sentence->setSpacing(4);
    sentence->addWidget(m_field);
    sentence->addWidget(secondary(QStringLiteral("が")));
    sentence->addWidget(m_value);
    sentence->addWidget(m_op);
    sentence->addSpacing(2);
    sentence->addWidget(
        new IconView(QStringLiteral("arrow.right"), metrics::iconSmall, &Colors::textTertiary));
    sentence->addSpacing(2);
    sentence->addWidget(m_kind);
    sentence->addWidget(m_target);
    sentence->addSpacing(2);
    sentence->addWidget(m_new);
    sentence->addStretch(1);
    return sentence;
}

QHBoxLayout* SuggestionRow::makeButtons() {
    setSmall(m_dismiss);
    setSmall(m_accept);
    setRole(m_accept, ButtonRole::primary);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addWidget(m_dismiss, 0, Qt::AlignTop);
    buttons->addWidget(m_accept, 0, Qt::AlignTop);
    return buttons;
}

void SuggestionRow::setRecord(const RuleSuggestion& suggestion) {
    if (m_suggestion != suggestion) {
        m_suggestion = suggestion;
        refresh();
    }
}

void SuggestionRow::refresh() {
    m_field->setText(labelOf(m_suggestion.field));
    m_value->setText(m_suggestion.value);
    m_op->setText(labelOf(m_suggestion.op));
    m_kind->setIcon(m_suggestion.kind == CategoryKind::tag ? QStringLiteral("tag") : QStringLiteral("folder"),
                    &Colors::textSecondary);
    m_target->setText(m_suggestion.targetName);
    keepReadable(*m_value);
    keepReadable(*m_target);
    m_reason->setText(m_suggestion.reason);
    m_reason->setVisible(!m_suggestion.reason.isEmpty());
    const QString sentence = sentenceOf(m_suggestion.field, m_suggestion.op, m_suggestion.value) +
                             QStringLiteral(" → ") + m_suggestion.targetName;
    m_dismiss->setAccessibleDescription(sentence);
    m_accept->setAccessibleDescription(sentence);
}

void SuggestionRow::setNew(bool isNew) {
    m_new->setVisible(isNew);
}

void SuggestionRow::setImpact(std::optional<double> seconds) {
    if (seconds) {
        m_impact->setText(QStringLiteral("直近30日で %1 に当たります").arg(formatDuration(*seconds)));
    }
    m_impact->setVisible(seconds.has_value());
}

void SuggestionRow::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsOf(palette());
    QPainter painter(this);
    paintRounded(painter, rect(), metrics::radiusInner, colors.card,
                 {.color = colors.cardBorder, .width = 1});
}

} // namespace kestu
