// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Screen.h"

#include "support/PrivateBus.h"
#include "support/Program.h"

#include <QApplication>
#include <QWidget>

#include <functional>
#include <utility>

namespace kestu::test {
namespace {

using namespace Qt::StringLiterals;

using Condition = std::function<bool(QAccessibleInterface&)>;

QAccessibleInterface* findBelow(QAccessibleInterface* parent, const Condition& isWanted) {
    if (!parent || !parent->isValid() || parent->state().invisible) {
        return nullptr;
    }
    if (isWanted(*parent)) {
        return parent;
    }
    for (int i = 0; i < parent->childCount(); ++i) {
        if (QAccessibleInterface* found = findBelow(parent->child(i), isWanted)) {
            return found;
        }
    }
    return nullptr;
}

QAccessibleInterface* findShown(const Condition& isWanted) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        QAccessibleInterface* found = window->isVisible()
                                          ? findBelow(QAccessible::queryAccessibleInterface(window), isWanted)
                                          : nullptr;
        if (found) {
            return found;
        }
    }
    return nullptr;
}

bool isNamed(const QAccessibleInterface& control, const QString& name, QAccessible::Role role) {
    return control.text(QAccessible::Name) == name && (role == QAccessible::NoRole || control.role() == role);
}

/// Does something on the display and waits until this process has heard of it; then for what that sets off.
/// What another window takes is never heard of here.
void doAndHear(QEvent::Type last, const QStringList& command) {
    class Ear final : public QObject {
    public:
        explicit Ear(QEvent::Type type)
            : m_type(type) {
            qApp->installEventFilter(this);
        }
        bool heard = false;

    protected:
        bool eventFilter(QObject*, QEvent* event) override {
            heard = heard || event->type() == m_type;
            return false;
        }

    private:
        QEvent::Type m_type;
    };
    const Ear ear(last);
    outputOf(u"xdotool"_s, command);
    waitUntil([&] { return ear.heard; }, 500);
    waitUntil([] { return false; }, 60);
}

} // namespace

QAccessibleInterface* findControl(const QString& name, QAccessible::Role role) {
    return findShown([&](const QAccessibleInterface& control) { return isNamed(control, name, role); });
}

bool click(const QString& name, QAccessible::Role role) {
    const auto answers = [&](const QAccessibleInterface& candidate) {
        return isNamed(candidate, name, role) && !candidate.state().disabled && !candidate.rect().isEmpty();
    };
    QRect place;
    const bool isThere = waitUntil(
        [&] {
            QAccessibleInterface* const control = findShown(answers);
            const QRect before = std::exchange(place, control ? control->rect() : QRect());
            return control && place == before; // it stands still
        },
        3000);
    if (isThere) {
        clickAt(place.center());
    }
    return isThere;
}

void clickAt(const QPoint& point) {
    outputOf(u"xdotool"_s, {u"mousemove"_s, QString::number(point.x()), QString::number(point.y())});
    waitUntil([] { return false; }, 60);
    doAndHear(QEvent::MouseButtonRelease, {u"click"_s, u"1"_s});
}

void pressKey(const QString& keys) {
    doAndHear(QEvent::KeyRelease, {u"key"_s, keys});
}

} // namespace kestu::test
