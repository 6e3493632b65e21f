// SPDX-License-Identifier: GPL-3.0-or-later
//
// One colour of a ColorChoice, to which it belongs.
#pragma once

#include "ui/controls/ChoiceButton.h"

namespace kestu {

class Swatch final : public ChoiceButton {
    Q_OBJECT

public:
    Swatch(const QString& hex, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_hex;
};

} // namespace kestu
