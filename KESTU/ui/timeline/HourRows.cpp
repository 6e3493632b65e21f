// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/HourRows.h"

#include "ui/controls/TextLabel.h"
#include "ui/timeline/HourBars.h"

#include <QVBoxLayout>

namespace kestu {

HourRows::HourRows(AppModel& model)
    : m_bars(new HourBars(model)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(hourMetrics::rowGap);
    layout->addWidget(m_bars);
    auto* hint =
        new TextLabel(QStringLiteral("帯の空いているところをクリックすると、その時間を手動で登録できます。"),
                      TextStyle::caption2, ink::tertiary, Overflow::wrap);
    hint->setContentsMargins(hourMetrics::labelWidth, 0, 0, 0);
    layout->addWidget(hint);
}

} // namespace kestu
