// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/GapList.h"

#include "app/AppModel.h"
#include "base/Text.h"
#include "classify/DurationText.h"
#include "ui/controls/TextLabel.h"
#include "ui/parts/Texts.h"
#include "ui/theme/KestuStyle.h"
#include "ui/timeline/DayDrafts.h"

#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kestu {
namespace {

constexpr int gap = 8;

QVBoxLayout* columnIn(QWidget* owner) {
    auto* column = new QVBoxLayout(owner);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(gap);
    return column;
}

} // namespace

class GapRow final : public QWidget {
public:
    GapRow()
        : m_range(new TextLabel({}))
        , m_length(new TextLabel({}, TextStyle::callout, ink::secondary))
        , m_button(new QPushButton(QStringLiteral("登録…"))) {
        setSmall(m_button);
        auto* row = new QHBoxLayout(this);
        row->setContentsMargins(0, 0, 0, 0);
        row->setSpacing(gap);
        row->addWidget(m_range);
        row->addWidget(m_length);
        row->addStretch();
        row->addWidget(m_button);
    }

    [[nodiscard]] QPushButton* button() const { return m_button; }
    [[nodiscard]] const Interval& interval() const { return m_interval; }

    void showGap(const Interval& interval, LocalClock& clock) {
        m_interval = interval;
        const QString range = rangeText(interval, clock);
        m_range->setText(range);
        m_length->setText(formatDuration(lengthOf(interval.start, interval.end).count()));
        m_button->setAccessibleDescription(range);
    }

private:
    Interval m_interval;
    TextLabel* m_range;
    TextLabel* m_length;
    QPushButton* m_button;
};

GapList::GapList(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_total(new TextLabel({}, TextStyle::callout, ink::secondary))
    , m_rows(*new QVBoxLayout) {
    auto* column = columnIn(this);
    auto* heading = new QHBoxLayout;
    heading->setSpacing(gap);
    heading->addWidget(new TextLabel(QStringLiteral("記録のない時間"), TextStyle::headline));
    heading->addWidget(m_total, 1);
    column->addLayout(heading);
    column->addWidget(new TextLabel(
        QStringLiteral("PC を離れていた打ち合わせなどは、ここから登録できます（5分以上の空き）。"),
        TextStyle::caption, ink::secondary, Overflow::wrap));
    column->addLayout(&m_rows.layout());
    connect(&m_model, &AppModel::dayItemsChanged, this, &GapList::refresh);
    connect(&m_model, &AppModel::selectedDayChanged, this, &GapList::refresh); // also in another time zone
    connect(&m_model, &AppModel::manualDraftChanged, this, [this] {
        if (!m_model.manualDraft() && m_opened) {
            QTimer::singleShot(0, this, &GapList::takeFocusBack); // once the sheet is gone
        }
    });
    refresh();
}

GapRow* GapList::makeRow() {
    auto* row = new GapRow;
    connect(row->button(), &QPushButton::clicked, this, [this, row] {
        const auto& rows = m_rows.rows();
        m_opened = static_cast<std::size_t>(std::find(rows.begin(), rows.end(), row) - rows.begin());
        m_model.setManualDraft(gapDraft(row->interval(), m_model.now()));
    });
    return row;
}

/// A gap that was filled is gone with its button: the next one is at its place.
void GapList::takeFocusBack() {
    const std::size_t place = *std::exchange(m_opened, std::nullopt);
    if (!m_rows.rows().empty() && isVisible()) {
        const std::size_t last = m_rows.rows().size() - 1;
        m_rows.rows()[std::min(place, last)]->button()->setFocus(Qt::OtherFocusReason);
    }
}

void GapList::refresh() {
    const std::vector<Interval> found = gaps(m_model.dayItems(), offeredGap);
    QStringList keys;
    Seconds total{0};
    for (const Interval& interval : found) {
        keys += decimalText(epochSeconds(interval.start));
        total += interval.end - interval.start;
    }
    const bool isRearranged = m_rows.arrange(keys, [this](std::size_t) { return makeRow(); });
    LocalClock clock(m_model.calendar());
    for (std::size_t index = 0; index < found.size(); ++index) {
        m_rows.rows()[index]->showGap(found[index], clock);
    }
    m_total->setText(formatDuration(total.count()));
    if (isRearranged) {
        Q_EMIT rearranged();
    }
}

} // namespace kestu
