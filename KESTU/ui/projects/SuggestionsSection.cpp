// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/projects/SuggestionsSection.h"

#include "app/AppModel.h"
#include "base/Text.h"
#include "ui/controls/Badge.h"
#include "ui/controls/Painted.h"
#include "ui/controls/Surfaces.h"
#include "ui/projects/RowSync.h"
#include "ui/projects/SuggestionRow.h"
#include "ui/theme/KestuStyle.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPainter>
#include <QPushButton>

namespace kestu {
namespace {

constexpr int padding = 15; // the hairline included
constexpr int gap = 10;

template<typename Records>
QSet<QString> keysOf(const Records& records) {
    QSet<QString> keys;
    for (const auto& record : records) {
        keys.insert(matchingKey(record.name));
    }
    return keys;
}

} // namespace

SuggestionsSection::SuggestionsSection(AppModel& model)
    : m_model(model)
    , m_count(new CountBadge(0))
    , m_copy(new QPushButton)
    , m_none(new TextLabel(QStringLiteral("提案はありません。KESTUの MCP をつないだ Claude "
                                          "に頼むと、ここに承認待ちの提案が届きます（設定 → AI 連携）。"),
                           TextStyle::caption, ink::secondary, Overflow::wrap)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(gap);
    layout->addLayout(makeHeader());
    layout->addWidget(m_none);
    m_column = new QVBoxLayout;
    m_column->setSpacing(gap);
    layout->addLayout(m_column);
    reset();
    refresh();
    connect(m_copy, &QPushButton::clicked, this, &SuggestionsSection::copyRequest);
    connect(&m_model, &AppModel::suggestionsChanged, this, &SuggestionsSection::refresh);
    connect(&m_model, &AppModel::suggestionImpactsChanged, this, &SuggestionsSection::refreshImpacts);
    connect(&m_model, &AppModel::projectsChanged, this, &SuggestionsSection::refreshTargets);
    connect(&m_model, &AppModel::tagsChanged, this, &SuggestionsSection::refreshTargets);
}

QHBoxLayout* SuggestionsSection::makeHeader() {
    setSmall(m_copy);
    setHelp(*m_copy, QStringLiteral("KESTUの MCP をつないだ Claude に貼り付けると、未分類の時間"
                                    "を見てルールを提案してくれます"));
    auto* header = new QHBoxLayout;
    header->setSpacing(8);
    header->addWidget(new IconView(QStringLiteral("sparkles"), metrics::iconSidebar, &Colors::accentText));
    header->addSpacing(-2);
    header->addWidget(new TextLabel(QStringLiteral("AI からの提案"), TextStyle::headline));
    header->addWidget(m_count);
    header->addStretch(1);
    header->addWidget(m_copy);
    return header;
}

void SuggestionsSection::reset() {
    m_copy->setText(QStringLiteral("Claude に頼む文面をコピー"));
}

void SuggestionsSection::copyRequest() {
    QGuiApplication::clipboard()->setText(QStringLiteral(
        "KESTUの MCP で直近7日の未分類の時間を見て、振り分けルールを suggest_rules で提案して。"
        "既存のプロジェクト名を優先して、理由に時間と例を添えて。"));
    m_copy->setText(QStringLiteral("コピーしました"));
}

void SuggestionsSection::refresh() {
    const auto& suggestions = m_model.suggestions();
    const auto accepted = focusedAccept();
    const bool changed = syncRows(*m_column, m_rows, suggestions, [this](const RuleSuggestion& suggestion) {
        return new SuggestionRow(m_model, suggestion);
    });
    QWidget* last = m_copy;
    if (changed) {
        for (const SuggestionRow* row : m_rows) {
            last = chainStops(last, *row);
        }
    }
    if (accepted && !focusedAccept()) {
        focusAccept(*accepted);
    }
    m_count->setCount(static_cast<int>(suggestions.size()));
    m_count->setVisible(!suggestions.empty());
    m_none->setVisible(suggestions.empty());
    refreshTargets();
    refreshImpacts();
    update();
}

/// The place of the row whose 承認 has the focus.
std::optional<std::size_t> SuggestionsSection::focusedAccept() const {
    for (std::size_t index = 0; index < m_rows.size(); ++index) {
        if (m_rows[index]->acceptButton().hasFocus()) {
            return index;
        }
    }
    return {};
}

/// Who accepts one after the other must not come to stand on 却下.
void SuggestionsSection::focusAccept(std::size_t place) {
    QAbstractButton* next = m_rows.empty() ? static_cast<QAbstractButton*>(m_copy)
                                           : &m_rows[std::min(place, m_rows.size() - 1)]->acceptButton();
    next->setFocus(Qt::OtherFocusReason);
}

void SuggestionsSection::refreshTargets() {
    if (m_rows.empty()) {
        return;
    }
    const QSet<QString> projects = keysOf(m_model.projects());
    const QSet<QString> tags = keysOf(m_model.tags());
    for (std::size_t index = 0; index < m_rows.size(); ++index) {
        const RuleSuggestion& suggestion = m_model.suggestions()[index];
        const QSet<QString>& keys = suggestion.kind == CategoryKind::tag ? tags : projects;
        m_rows[index]->setNew(!keys.contains(matchingKey(suggestion.targetName)));
    }
}

void SuggestionsSection::refreshImpacts() {
    const auto& impacts = m_model.suggestionImpacts();
    for (SuggestionRow* row : m_rows) {
        const auto found = impacts.find(row->id());
        row->setImpact(found == impacts.end() ? std::nullopt : std::optional(*found));
    }
}

void SuggestionsSection::paintEvent(QPaintEvent*) {
    QColor edge = colorsOf(palette()).accent;
    edge.setAlphaF(m_rows.empty() ? 0.15F : 0.5F);
    QPainter painter(this);
    paintRounded(painter, rect(), metrics::radiusCard, Qt::transparent, {.color = edge, .width = 1});
}

} // namespace kestu
