// SPDX-License-Identifier: GPL-3.0-or-later
//
// The parts of a sheet that are not its behaviour: its card, covering what lies beneath it, and what it tells
// assistive technology. Internal to the controls.
#pragma once

#include <QWidget>

namespace kestu {

class SheetCard final : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// Disables a widget under a sheet, once for every sheet above it. One that was disabled anyway is left alone
/// (false), so that it also stays so.
bool cover(QWidget* widget);
void uncover(QWidget* widget);

void announceSheet(QWidget* sheet, bool opened);

} // namespace kestu
