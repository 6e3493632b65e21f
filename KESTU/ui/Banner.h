// SPDX-License-Identifier: GPL-3.0-or-later
//
// A warning across the window, above every screen, while something keeps KESTU from seeing all.
#pragma once

#include <QWidget>

class QBoxLayout;

namespace kestu {

class TextLabel;

class Banner : public QWidget {
public:
    /// Takes `buttons`.
    explicit Banner(QWidget* buttons);

    void say(const QString& title, const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    TextLabel* m_heading;
    TextLabel* m_text;
    QBoxLayout* m_body; // the texts and the buttons
    QWidget* m_buttons;
};

} // namespace kestu
