// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/projects/NameField.h"

#include "ui/controls/Painted.h"
#include "ui/theme/KestuStyle.h"

#include <QHelpEvent>
#include <QToolTip>

namespace kestu {

NameField::NameField(QWidget* parent)
    : QLineEdit(parent) {
    setPlain(this);
    setFont(fontOf(TextStyle::headline));
    setPlaceholderText(QStringLiteral("名前"));
    setAccessibleName(placeholderText());
}

void NameField::setStored(const QString& name) {
    m_stored = name;
    if (!hasFocus()) {
        follow();
    }
}

/// A text that is already there is left alone, for setting it would forget what can be undone.
void NameField::follow() {
    if (text() != m_stored) {
        setText(m_stored);
        setCursorPosition(0); // the beginning is what tells names apart
    }
}

bool NameField::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QLineEdit::event(event);
    }
    const int free = contentsRect().width() - widthOf(text(), font());
    const QString tip = free < 0 ? toolTipOf(text()) : QString();
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), tip, this);
    return true;
}

void NameField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) {
        follow();
    }
}

} // namespace kestu
