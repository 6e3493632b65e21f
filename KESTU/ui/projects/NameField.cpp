// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/projects/NameField.h"

#include "ui/controls/Painted.h"
#include "ui/theme/KestuStyle.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QToolTip>

#include <utility>

namespace kestu {

NameField::NameField(QWidget* parent)
    : QLineEdit(parent) {
    setPlain(this);
    setFont(fontOf(TextStyle::headline));
    setPlaceholderText(QStringLiteral("名前"));
    setAccessibleName(placeholderText());
    connect(this, &QLineEdit::textEdited, this, &NameField::report);
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
    }
}

/// Composing begins with removing the selection, which alone is nothing that the user wants stored.
void NameField::report() {
    m_isUntold = true;
    if (!m_isComposing) {
        tell();
    }
}

void NameField::tell() {
    m_isUntold = false;
    Q_EMIT edited(text());
}

void NameField::inputMethodEvent(QInputMethodEvent* event) {
    m_isComposing = !event->preeditString().isEmpty();
    const bool isCommitted = !event->commitString().isEmpty();
    QLineEdit::inputMethodEvent(event);
    if (m_isUntold && (isCommitted || !m_isComposing)) { // one word may end as the next begins
        tell();
    }
}

/// A key that arrives as one ends every composition, also one whose end was never told.
void NameField::keyPressEvent(QKeyEvent* event) {
    m_isComposing = false;
    QLineEdit::keyPressEvent(event);
}

QRect NameField::textBox(const QStyleOptionFrame& option) const {
    constexpr int itsOwnMargin = 2;
    return style()
        ->subElementRect(QStyle::SE_LineEditContents, &option, this)
        .adjusted(itsOwnMargin, 0, -itsOwnMargin, 0);
}

bool NameField::overflows() const {
    QStyleOptionFrame option;
    initStyleOption(&option);
    return widthOf(text(), font()) > textBox(option).width();
}

bool NameField::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QLineEdit::event(event);
    }
    const QString tip = overflows() ? toolTipOf(text()) : QString();
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), tip, this);
    return true;
}

void NameField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) {
        if (std::exchange(m_isUntold, false)) {
            Q_EMIT edited(text());
        }
        m_isComposing = false;
        follow();
    }
}

/// Whoever only reads sees where a long name begins, and that it goes on.
void NameField::paintEvent(QPaintEvent* event) {
    if (hasFocus() || !overflows()) {
        QLineEdit::paintEvent(event);
        return;
    }
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QRect box = textBox(option);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
    painter.setPen(option.palette.color(QPalette::Text));
    painter.drawText(box, Qt::AlignLeft | Qt::AlignVCenter,
                     elided(text(), font(), Qt::ElideRight, box.width()));
}

} // namespace kestu
