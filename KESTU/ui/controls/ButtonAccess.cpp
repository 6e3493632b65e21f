// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/ButtonAccess.h"

#include "ui/controls/Painted.h"
#include "ui/controls/Roles.h"

#include <QAccessibleWidget>

namespace kestu {
namespace {

/// Unlike Qt's own one, it is clicked when a reader switches it: only a click is what its listeners act on.
class ButtonInterface final : public QAccessibleWidget {
public:
    explicit ButtonInterface(PaintedButton& button)
        : QAccessibleWidget(&button)
        , m_button(button) {}

    [[nodiscard]] QAccessible::Role role() const override {
        if (!m_button.isCheckable()) {
            return QAccessible::Button;
        }
        return m_button.autoExclusive() ? QAccessible::RadioButton : QAccessible::CheckBox;
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        const QString said = QAccessibleWidget::text(kind);
        if (kind == QAccessible::Name) {
            return said.isEmpty() ? m_button.text() : said;
        }
        // A tooltip that says the name once more.
        return kind == QAccessible::Description && said == text(QAccessible::Name) ? QString() : said;
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.pressed = m_button.isDown();
        state.checkable = m_button.isCheckable();
        state.checked = m_button.isChecked();
        return state;
    }

    [[nodiscard]] QStringList actionNames() const override {
        if (!m_button.isEnabled()) {
            return {};
        }
        return {m_button.isCheckable() ? toggleAction() : pressAction(), setFocusAction()};
    }

    void doAction(const QString& name) override {
        if (name == pressAction() || name == toggleAction()) {
            m_button.click();
        } else {
            QAccessibleWidget::doAction(name);
        }
    }

private:
    PaintedButton& m_button;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* const button = qobject_cast<PaintedButton*>(object);
    return button && !hasReportedRole(*button) ? new ButtonInterface(*button) : nullptr;
}

} // namespace

void installButtonAccess() {
    QAccessible::installFactory(makeInterface); // which takes no factory twice
}

} // namespace kestu
