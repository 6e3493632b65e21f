// SPDX-License-Identifier: GPL-3.0-or-later
//
// The selected day hour by hour, with a hint on how to add an entry. It belongs to its parent widget.
#pragma once

#include <QWidget>

namespace kestu {

class AppModel;
class HourBars;

class HourRows final : public QWidget {
    Q_OBJECT

public:
    explicit HourRows(AppModel& model);

    [[nodiscard]] HourBars& bars() const { return *m_bars; }

private:
    HourBars* m_bars;
};

} // namespace kestu
