// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/Composition.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QWidget>

namespace kestu {

Composition::Composition(QWidget* field)
    : QObject(field)
    , m_field(field) {
    field->installEventFilter(this);
}

void Composition::finish() {
    if (!m_text.isEmpty()) {
        QGuiApplication::inputMethod()->commit();
    }
    if (!m_text.isEmpty()) { // the method did not
        QInputMethodEvent event;
        event.setCommitString(m_text);
        QCoreApplication::sendEvent(m_field, &event);
        QGuiApplication::inputMethod()->reset();
    }
}

bool Composition::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::InputMethod) {
        m_text = static_cast<QInputMethodEvent*>(event)->preeditString();
        watched->event(event); // so that who hears of the change finds the field's own text changed, too
        Q_EMIT changed();
        return true;
    }
    if (event->type() == QEvent::KeyPress && !m_text.isEmpty() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        // Some methods leave the key to the field, too: it ends what is composed and nothing else.
        QGuiApplication::inputMethod()->reset();
        QInputMethodEvent nothing;
        QCoreApplication::sendEvent(watched, &nothing);
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace kestu
