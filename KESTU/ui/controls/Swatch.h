// SPDX-License-Identifier: GPL-3.0-or-later
//
// One colour of a ColorChoice, to which it belongs.
#pragma once

#include "ui/controls/Painted.h"

namespace kestu {

class Swatch final : public PaintedButton {
    Q_OBJECT

public:
    Swatch(const QString& hex, QWidget* parent);

    [[nodiscard]] const QString& hex() const { return m_hex; }

protected:
    void nextCheckState() override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_hex;
};

} // namespace kestu
