// SPDX-License-Identifier: GPL-3.0-or-later
//
// A name that is edited where it stands. While it has the focus only the user changes it; without, it follows
// what is stored. It tells every edit, but not what is still being composed. It belongs to its parent widget.
#pragma once

#include <QLineEdit>

namespace kestu {

class NameField final : public QLineEdit {
    Q_OBJECT

public:
    explicit NameField(QWidget* parent = nullptr);

    void setStored(const QString& name);

Q_SIGNALS:
    void edited(const QString& name);

protected:
    bool event(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void follow();
    void report();
    void tell();
    [[nodiscard]] bool overflows() const;
    [[nodiscard]] QRect textBox(const QStyleOptionFrame& option) const;

    QString m_stored;
    bool m_isComposing = false;
    bool m_isUntold = false; // an edit while composing
};

} // namespace kestu
