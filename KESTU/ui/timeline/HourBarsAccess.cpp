// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/HourBarsAccess.h"

#include "ui/timeline/HourBars.h"

#include <QAccessibleWidget>
#include <QPointer>

#include <algorithm>

namespace kestu {
namespace {

/// The slice at one place of the list, whichever it is at the moment: a reload only moves what follows.
class SliceInterface final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    SliceInterface(HourBars& bars, std::size_t index)
        : m_bars(&bars)
        , m_index(index) {}

    [[nodiscard]] bool isValid() const override { return m_bars && m_index < m_bars->slices().size(); }
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(m_bars);
    }
    [[nodiscard]] QAccessibleInterface* child(int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::ListItem; }

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        return isValid() && kind == QAccessible::Name ? m_bars->nameOf(place()) : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}

    [[nodiscard]] QRect rect() const override {
        const QRect box = isValid() ? m_bars->boxOf(place()) : QRect();
        return box.translated(m_bars ? m_bars->mapToGlobal(QPoint()) : QPoint());
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        state.invisible = !isValid() || !m_bars->isVisible();
        state.disabled = !isValid() || !m_bars->isEnabled();
        state.focusable = true;
        state.selectable = true;
        state.selected = isValid() && m_bars->isSelected(place());
        state.focused = state.selected && m_bars->hasFocus();
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override {
        if (isValid() && m_bars->isEnabled() && name == pressAction()) {
            m_bars->choose(place());
        }
    }
    [[nodiscard]] QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    [[nodiscard]] SlicePlace place() const { return m_bars->slices()[m_index]; }

    QPointer<HourBars> m_bars;
    std::size_t m_index;
};

class BarsInterface final : public QAccessibleWidget {
public:
    explicit BarsInterface(HourBars& bars)
        : QAccessibleWidget(&bars, QAccessible::List)
        , m_bars(bars) {}
    ~BarsInterface() override {
        std::for_each(m_children.begin(), m_children.end(), QAccessible::deleteAccessibleInterface);
    }
    Q_DISABLE_COPY_MOVE(BarsInterface)

    [[nodiscard]] int childCount() const override { return static_cast<int>(m_bars.slices().size()); }

    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount()) {
            return nullptr;
        }
        while (m_children.size() <= static_cast<std::size_t>(index)) {
            m_children.push_back(
                QAccessible::registerAccessibleInterface(new SliceInterface(m_bars, m_children.size())));
        }
        return QAccessible::accessibleInterface(m_children[static_cast<std::size_t>(index)]);
    }

    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        const auto found = std::find(m_children.begin(), m_children.end(),
                                     QAccessible::uniqueId(const_cast<QAccessibleInterface*>(child)));
        return found == m_children.end() ? -1 : static_cast<int>(found - m_children.begin());
    }

    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
        for (int index = childCount() - 1; index >= 0; --index) {
            QAccessibleInterface* found = child(index);
            if (found->rect().contains(x, y)) {
                return found;
            }
        }
        return nullptr;
    }

    [[nodiscard]] QAccessibleInterface* focusChild() const override {
        for (int index = 0; m_bars.hasFocus() && index < childCount(); ++index) {
            if (m_bars.isSelected(m_bars.slices()[static_cast<std::size_t>(index)])) {
                return child(index);
            }
        }
        return nullptr;
    }

private:
    HourBars& m_bars;
    mutable std::vector<QAccessible::Id> m_children; // made when asked for
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* const bars = qobject_cast<HourBars*>(object);
    return bars ? new BarsInterface(*bars) : nullptr;
}

} // namespace

void installHourBarsAccess() {
    QAccessible::installFactory(makeInterface); // which takes no factory twice
}

void reportRearranged(HourBars& bars) {
    if (QAccessible::isActive()) {
        QAccessibleEvent event(&bars, QAccessible::ObjectReorder);
        QAccessible::updateAccessibility(&event);
    }
}

void reportSelected(HourBars& bars, SlicePlace place) {
    if (!QAccessible::isActive() || !bars.hasFocus()) {
        return;
    }
    const auto& slices = bars.slices();
    const auto index = std::find(slices.begin(), slices.end(), place) - slices.begin();
    QAccessibleEvent event(&bars, QAccessible::Focus);
    event.setChild(static_cast<int>(index));
    QAccessible::updateAccessibility(&event);
}

} // namespace kestu
