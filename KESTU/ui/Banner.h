// SPDX-License-Identifier: GPL-3.0-or-later
//
// A warning across the window, above every screen, while something keeps KESTU from seeing all.
#pragma once

#include <QWidget>

class QBoxLayout;

namespace kestu {

class AppModel;
class TextLabel;

class Banner : public QWidget {
public:
    /// Takes `text` and `buttons`, which may be null.
    Banner(const QString& title, TextLabel* text, QWidget* buttons);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QBoxLayout* m_body; // the texts and the buttons
    QWidget* m_buttons;
};

/// While no window can be seen: why, and what would help.
class UnseenBanner final : public Banner {
public:
    explicit UnseenBanner(AppModel& model);

private:
    UnseenBanner(AppModel& model, TextLabel* text);
};

} // namespace kestu
