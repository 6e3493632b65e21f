// SPDX-License-Identifier: GPL-3.0-or-later
//
// A choice of one from a menu. Assistive technology knows it by its name and reads the choice as its value: a
// plain QComboBox is called by its choice. It belongs to its parent widget.
#pragma once

#include <QComboBox>

namespace kestu {

class Picker : public QComboBox {
    Q_OBJECT

public:
    explicit Picker(QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace kestu
