// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/Settling.h"

#include <QApplication>
#include <QEvent>
#include <QLayout>
#include <QScrollArea>

namespace kestu {
namespace {

/// A layout shows what was added to it a turn of the event loop later, and leaves it out until then.
void showIfNew(const QWidget& parent, QWidget& child) {
    if (parent.isVisible() && child.isHidden() && !child.testAttribute(Qt::WA_WState_ExplicitShowHide)) {
        child.show();
    }
}

} // namespace

void settle(QWidget& widget) {
    const QObjectList children = widget.children(); // showing one may add another
    for (QObject* child : children) {
        auto* inner = qobject_cast<QWidget*>(child);
        if (inner && !inner->isWindow()) {
            showIfNew(widget, *inner);
            settle(*inner);
        }
    }
    if (widget.layout()) {
        widget.layout()->activate();
    }
    if (qobject_cast<QScrollArea*>(&widget)) {
        QEvent request(QEvent::LayoutRequest); // it has no layout, and measures its content anew
        QApplication::sendEvent(&widget, &request);
    }
}

} // namespace kestu
