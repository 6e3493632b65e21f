// SPDX-License-Identifier: GPL-3.0-or-later
//
// A name that is edited where it stands. While it has the focus only the user changes it; without, it follows
// what is stored. It belongs to its parent widget.
#pragma once

#include <QLineEdit>

namespace kestu {

class NameField final : public QLineEdit {
    Q_OBJECT

public:
    explicit NameField(QWidget* parent = nullptr);

    void setStored(const QString& name);

protected:
    bool event(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void follow();

    QString m_stored;
};

} // namespace kestu
