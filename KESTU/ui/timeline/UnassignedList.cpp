// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/UnassignedList.h"

#include "app/AppModel.h"
#include "classify/DurationText.h"
#include "ui/controls/Surfaces.h"
#include "ui/controls/TextLabel.h"
#include "ui/theme/KestuStyle.h"
#include "ui/timeline/RuleSheet.h"

#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace kestu {
namespace {

constexpr int cardPadding = 11; // within the edge of 1
constexpr int gap = 10;

TextLabel* makeTitle() {
    return new TextLabel({}, TextStyle::caption, ink::secondary, Overflow::elideRight);
}

} // namespace

class GroupCard final : public QWidget {
public:
    GroupCard()
        : m_label(new TextLabel({}, TextStyle::callout, ink::primary, Overflow::elideRight))
        , m_length(new TextLabel({}, TextStyle::callout, ink::secondary))
        , m_titles{makeTitle(), makeTitle(), makeTitle()}
        , m_button(new QPushButton(QStringLiteral("振り分ける…"))) {
        m_label->setFont(semibold(m_label->font()));
        setSmall(m_button);
        auto* card = new Card(Card::Kind::inner);
        auto* whole = new QVBoxLayout(this);
        whole->setContentsMargins(0, 0, 0, 0);
        whole->addWidget(card);
        auto* column = new QVBoxLayout(card);
        column->setContentsMargins(cardPadding, cardPadding, cardPadding, cardPadding);
        column->setSpacing(4);
        auto* heading = new QHBoxLayout;
        heading->setSpacing(8);
        heading->addWidget(m_label, 1);
        heading->addWidget(m_length);
        column->addLayout(heading);
        for (TextLabel* title : m_titles) {
            column->addWidget(title);
        }
        column->addSpacing(4);
        column->addWidget(m_button, 0, Qt::AlignLeft);
    }

    [[nodiscard]] QPushButton* button() const { return m_button; }
    [[nodiscard]] const UnassignedGroup& group() const { return m_group; }

    void showGroup(const UnassignedGroup& group) {
        m_group = group;
        const QString label = groupLabel(group);
        if (m_label->text() != label) {
            m_label->setText(label);
            m_button->setAccessibleDescription(label);
        }
        m_length->setText(formatDuration(group.seconds));
        for (std::size_t index = 0; index < m_titles.size(); ++index) {
            const QString title = group.sampleTitles.value(static_cast<qsizetype>(index));
            m_titles[index]->setText(title);
            m_titles[index]->setVisible(!title.isEmpty());
        }
    }

private:
    UnassignedGroup m_group;
    TextLabel* m_label;
    TextLabel* m_length;
    std::array<TextLabel*, 3> m_titles;
    QPushButton* m_button;
};

UnassignedList::UnassignedList(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_total(new TextLabel({}, TextStyle::callout, ink::secondary))
    , m_empty(new TextLabel({}, TextStyle::callout, ink::secondary, Overflow::wrap))
    , m_cards(*new QVBoxLayout) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(gap);
    auto* heading = new QHBoxLayout;
    heading->setSpacing(8);
    heading->addWidget(new TextLabel(QStringLiteral("未分類"), TextStyle::headline));
    heading->addWidget(m_total, 1);
    column->addLayout(heading);
    column->addWidget(new TextLabel(
        QStringLiteral("ルールを作ると、同じ作業は今後も自動で振り分けられます（過去の記録にも効きます）。"),
        TextStyle::caption, ink::secondary, Overflow::wrap));
    column->addWidget(m_empty);
    column->addLayout(&m_cards.layout());
    connect(&m_model, &AppModel::dayItemsChanged, this, &UnassignedList::refresh);
    refresh();
}

GroupCard* UnassignedList::makeCard() {
    auto* card = new GroupCard;
    connect(card->button(), &QPushButton::clicked, this, [this, card] { open(card->group()); });
    return card;
}

void UnassignedList::refresh() {
    const std::vector<UnassignedGroup> groups = unassignedGroups(m_model.dayItems());
    QStringList keys;
    double total = 0;
    for (const UnassignedGroup& group : groups) {
        keys += group.identity();
        total += group.seconds;
    }
    const bool isRearranged = m_cards.arrange(keys, [this](std::size_t) { return makeCard(); });
    for (std::size_t index = 0; index < groups.size(); ++index) {
        m_cards.rows()[index]->showGroup(groups[index]);
    }
    m_total->setText(formatDuration(total));
    m_empty->setText(m_model.dayItems().empty() ? QStringLiteral("まだ記録がありません。")
                                                : QStringLiteral("すべて振り分け済みです。"));
    m_empty->setVisible(groups.empty());
    if (isRearranged) {
        Q_EMIT rearranged();
    }
}

void UnassignedList::open(const UnassignedGroup& group) {
    if (m_sheet) {
        return;
    }
    const auto& cards = m_cards.rows();
    const auto isOpened = [&group](const GroupCard* card) { return card->group() == group; };
    m_opened = static_cast<std::size_t>(std::find_if(cards.begin(), cards.end(), isOpened) - cards.begin());
    m_sheet = new RuleSheet(window(), m_model, group);
    connect(m_sheet, &Sheet::closed, this, &UnassignedList::takeFocusBack);
    m_sheet->present();
}

/// The card that opened the sheet is gone once its group is sorted: its neighbour is next.
void UnassignedList::takeFocusBack() {
    const QWidget* focused = window()->focusWidget();
    const bool isLost = !focused || !focused->isVisible() || m_sheet->isAncestorOf(focused);
    if (isLost && !m_cards.rows().empty()) {
        const std::size_t last = m_cards.rows().size() - 1;
        m_cards.rows()[std::min(m_opened, last)]->button()->setFocus(Qt::OtherFocusReason);
    }
}

} // namespace kestu
