// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/Roles.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>
#include <QEvent>
#include <QGuiApplication>
#include <QVariant>
#include <QWidget>
#include <QWindow>

namespace kestu {
namespace {

constexpr const char* roleProperty = "kestuRole";

class RoleInterface final : public QAccessibleWidget {
public:
    RoleInterface(QWidget* widget, QAccessible::Role role)
        : QAccessibleWidget(widget, role) {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        const QString said = QAccessibleWidget::text(kind);
        // Of a minimised window Qt says the title of its icon, which it has none of.
        return kind == QAccessible::Name && said.isEmpty() && role() == QAccessible::Window
                   ? widget()->windowTitle()
                   : said;
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.modal = role() == QAccessible::Dialog;
        if (role() == QAccessible::Dialog || role() == QAccessible::Window) {
            // Not isActiveWindow, which still says the old while Qt reports that it has changed.
            const QWindow* const window = widget()->window()->windowHandle();
            state.active = window && window == QGuiApplication::focusWindow() && widget()->isVisible() &&
                           widget()->isEnabled();
        }
        return state;
    }
};

class CurrentRowReport final : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FocusIn) {
            // Later: the list is reported behind this event.
            QMetaObject::invokeMethod(
                watched, [watched] { report(watched); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    static void report(QObject* watched) {
        const auto* const list = qobject_cast<QAbstractItemView*>(watched);
        if (list && list->hasFocus() && list->currentIndex().isValid()) {
            QAccessibleEvent event(watched, QAccessible::Focus);
            event.setChild(list->currentIndex().row());
            QAccessible::updateAccessibility(&event);
        }
    }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* const widget = qobject_cast<QWidget*>(object);
    const QVariant role = widget ? widget->property(roleProperty) : QVariant();
    return role.isValid() ? new RoleInterface(widget, static_cast<QAccessible::Role>(role.toInt())) : nullptr;
}

} // namespace

void reportRole(QWidget* widget, QAccessible::Role role) {
    static const bool installed = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    Q_UNUSED(installed)
    widget->setProperty(roleProperty, static_cast<int>(role));
}

bool hasReportedRole(const QWidget& widget) {
    return widget.property(roleProperty).isValid();
}

void reportCurrentRow(QAbstractItemView* list) {
    list->installEventFilter(new CurrentRowReport(list));
}

void reportTitle(QWidget* window) {
    QAccessibleEvent event(window, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}

} // namespace kestu
