// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/Picker.h"

#include "ui/controls/Announcing.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>

namespace kestu {
namespace {

/// The choice is a text that can be read, but not be written.
class PickerInterface final : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit PickerInterface(Picker& picker)
        : QAccessibleWidget(&picker, QAccessible::ComboBox)
        , m_picker(picker) {}

    [[nodiscard]] int childCount() const override { return 1; }
    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(m_picker.view()) : nullptr;
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        return child && child->object() == m_picker.view() ? 0 : -1;
    }
    [[nodiscard]] QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* focusChild() const override { return nullptr; }

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? m_picker.currentText() : QAccessibleWidget::text(kind);
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.expandable = true;
        state.expanded = isValid() && m_picker.view()->isVisible();
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this)
                                                  : QAccessibleWidget::interface_cast(type);
    }

    [[nodiscard]] QStringList actionNames() const override { return {showMenuAction(), setFocusAction()}; }
    void doAction(const QString& name) override {
        if (name != showMenuAction()) {
            QAccessibleWidget::doAction(name);
        } else if (m_picker.isEnabled()) {
            m_picker.view()->isVisible() ? m_picker.hidePopup() : m_picker.showPopup();
        }
    }

    [[nodiscard]] QString text(int start, int end) const override {
        return m_picker.currentText().mid(start, end - start);
    }
    [[nodiscard]] int characterCount() const override {
        return static_cast<int>(m_picker.currentText().size());
    }
    [[nodiscard]] int selectionCount() const override { return 0; }
    void selection(int, int* start, int* end) const override { *start = *end = 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    [[nodiscard]] int cursorPosition() const override { return 0; }
    void setCursorPosition(int) override {}
    [[nodiscard]] QRect characterRect(int) const override { return {}; }
    [[nodiscard]] int offsetAtPoint(const QPoint&) const override { return -1; }
    void scrollToSubstring(int, int) override {}
    QString attributes(int, int* start, int* end) const override {
        *start = 0;
        *end = characterCount();
        return {};
    }

private:
    Picker& m_picker;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* const picker = qobject_cast<Picker*>(object);
    return picker ? new PickerInterface(*picker) : nullptr;
}

} // namespace

Picker::Picker(QWidget* parent)
    : QComboBox(parent) {
    QAccessible::installFactory(makeInterface); // which takes no factory twice
}

void Picker::keyPressEvent(QKeyEvent* event) {
    const int before = currentIndex();
    QComboBox::keyPressEvent(event);
    if (currentIndex() != before) {
        announce(*this, currentText()); // what is chosen from the open menu, the menu says
    }
}

} // namespace kestu
