// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/Alert.h"

#include "ui/controls/TextLabel.h"

#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

namespace kestu {
namespace {

constexpr int alertWidth = 340;

int cancelIndex(const std::vector<AlertButton>& buttons) {
    if (buttons.size() == 1) {
        return 0;
    }
    const auto found = std::find_if(buttons.begin(), buttons.end(), [](const AlertButton& button) {
        return button.part == AlertButton::Part::cancel;
    });
    return found == buttons.end() ? -1 : static_cast<int>(found - buttons.begin());
}

} // namespace

Alert* Alert::ask(QWidget* host, const QString& title, const QString& text,
                  const std::vector<AlertButton>& buttons) {
    auto* const alert = new Alert(host, title, text, buttons);
    alert->present();
    return alert;
}

Alert* Alert::tell(QWidget* host, const QString& title, const QString& text) {
    return ask(
        host, title, text,
        {{.text = QStringLiteral("OK"), .part = AlertButton::Part::standard, .role = ButtonRole::standard}});
}

Alert* Alert::confirm(QWidget* host, const QString& title, const QString& text, const QString& keep,
                      const QString& lose) {
    auto* const alert =
        ask(host, title, text,
            {{.text = keep, .part = AlertButton::Part::cancel, .role = ButtonRole::standard},
             {.text = lose, .part = AlertButton::Part::other, .role = ButtonRole::destructiveFilled}});
    connect(alert, &Alert::answered, alert, [alert](int index) {
        if (index == 1) {
            Q_EMIT alert->agreed();
        }
    });
    return alert;
}

Alert* Alert::askToDiscard(QWidget* host, const std::function<void()>& next) {
    auto* const alert = confirm(host, QStringLiteral("入力した内容を破棄しますか？"),
                                QStringLiteral("まだ保存されていません。"), QStringLiteral("編集を続ける"),
                                QStringLiteral("破棄"));
    connect(alert, &Alert::agreed, host, next);
    return alert;
}

Alert::Alert(QWidget* host, const QString& title, const QString& text,
             const std::vector<AlertButton>& buttons)
    : Sheet(host, alertWidth) {
    setAccessibleName(title);
    setAccessibleDescription(text);
    content()->setSpacing(8);
    content()->addWidget(new TextLabel(title, TextStyle::headline, ink::primary, Overflow::wrap));
    if (!text.isEmpty()) {
        auto* const message = new TextLabel(text, TextStyle::callout, ink::secondary, Overflow::wrap);
        message->setCopyable(true);
        content()->addWidget(message);
    }
    for (std::size_t index = 0; index < buttons.size(); ++index) {
        add(buttons[index], static_cast<int>(index));
    }
    const int onEscape = cancelIndex(buttons);
    const bool destructive = std::any_of(buttons.begin(), buttons.end(), [](const AlertButton& button) {
        return button.role != ButtonRole::standard;
    });
    if (destructive && onEscape >= 0) {
        setFirstFocus(m_shown[static_cast<std::size_t>(onEscape)]);
    }
    setDismissable(onEscape >= 0);
    connect(this, &Sheet::cancelled, this, [this, onEscape] { answer(onEscape); });
}

void Alert::add(const AlertButton& button, int index) {
    QPushButton* const shown = addButton(button.text, button.part == AlertButton::Part::standard);
    setRole(shown, button.role);
    m_shown.push_back(shown);
    connect(shown, &QPushButton::clicked, this, [this, index] { answer(index); });
}

void Alert::answer(int index) {
    if (close()) {
        Q_EMIT answered(index);
    }
}

} // namespace kestu
