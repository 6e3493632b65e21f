// SPDX-License-Identifier: GPL-3.0-or-later
//
// One of several of which exactly one holds: together they are one stop for the keyboard, on which the arrow
// keys choose. It belongs to the widget that holds them all.
#pragma once

#include "ui/controls/Painted.h"

#include <vector>

namespace kestu {

class ChoiceButton : public PaintedButton {
    Q_OBJECT

public:
    ChoiceButton(Ring ring, QWidget* parent);

Q_SIGNALS:
    /// An arrow key: the next one is wanted, or the one before.
    void stepped(int by);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void nextCheckState() override;
};

/// Checks the one at `index`, or none, and takes the focus there if one of them has it.
void showChoice(const std::vector<ChoiceButton*>& buttons, int index);

} // namespace kestu
