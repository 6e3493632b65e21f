// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/ChoiceButton.h"

#include <QKeyEvent>

namespace kestu {

ChoiceButton::ChoiceButton(Ring ring, QWidget* parent)
    : PaintedButton(ring, parent) {
    setCheckable(true);
    setAutoExclusive(true); // which makes it a radio button
}

void ChoiceButton::nextCheckState() {
    setChecked(true);
}

void ChoiceButton::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
        Q_EMIT stepped(-1);
        return;
    case Qt::Key_Right:
    case Qt::Key_Down:
        Q_EMIT stepped(1);
        return;
    default:
        PaintedButton::keyPressEvent(event);
    }
}

void showChoice(const std::vector<ChoiceButton*>& buttons, int index) {
    const std::size_t stop = index < 0 ? 0 : static_cast<std::size_t>(index);
    bool hadFocus = false;
    for (std::size_t at = 0; at < buttons.size(); ++at) {
        ChoiceButton* const button = buttons[at];
        hadFocus |= button->hasFocus();
        // Among the exclusive the last one that is checked cannot be unchecked.
        button->setAutoExclusive(false);
        button->setChecked(static_cast<int>(at) == index);
        button->setAutoExclusive(true);
    }
    for (std::size_t at = 0; at < buttons.size(); ++at) {
        buttons[at]->setFocusPolicy(at == stop ? Qt::StrongFocus : Qt::ClickFocus);
    }
    if (hadFocus && !buttons[stop]->hasFocus()) {
        buttons[stop]->setFocus(Qt::TabFocusReason);
    }
}

} // namespace kestu
