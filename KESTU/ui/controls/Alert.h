// SPDX-License-Identifier: GPL-3.0-or-later
//
// A short question or an error above everything else in a window. It belongs to its host and deletes itself
// after its answer.
#pragma once

#include "ui/controls/Sheet.h"
#include "ui/theme/KestuStyle.h"

#include <functional>

namespace kestu {

struct AlertButton {
    enum class Part { other, standard, cancel };

    QString text;
    Part part = Part::other; // Return presses the standard one, Escape that which cancels
    ButtonRole role = ButtonRole::standard;
};

class Alert final : public Sheet {
    Q_OBJECT

public:
    /// Opens the alert. Escape answers with the button that cancels, or with the only one there is. With a
    /// destructive button, the focus is on that which cancels.
    static Alert* ask(QWidget* host, const QString& title, const QString& text,
                      const std::vector<AlertButton>& buttons);
    /// An error with nothing to choose.
    static Alert* tell(QWidget* host, const QString& title, const QString& text);
    /// Asks before something is lost: `keep` cancels, `lose` emits agreed().
    static Alert* confirm(QWidget* host, const QString& title, const QString& text, const QString& keep,
                          const QString& lose);
    /// Asks whether what is not stored may be lost; calls `next` when it may.
    static Alert* askToDiscard(QWidget* host, const std::function<void()>& next);

Q_SIGNALS:
    /// The button's place in the list, once the alert is out of the way.
    void answered(int index);
    /// The answer to confirm() was that it may be lost.
    void agreed();

private:
    Alert(QWidget* host, const QString& title, const QString& text, const std::vector<AlertButton>& buttons);
    void add(const AlertButton& button, int index);
    void answer(int index);

    std::vector<QPushButton*> m_shown;
};

} // namespace kestu
