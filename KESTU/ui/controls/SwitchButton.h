// SPDX-License-Identifier: GPL-3.0-or-later
//
// A switch whose knob slides. Its label stands beside it and switches, too. It belongs to its parent widget.
#pragma once

#include "ui/controls/Painted.h"

#include <QVariantAnimation>

class QLabel;

namespace kestu {

/// The knob of a switch that is `on` by so much, from 0 to 1.
[[nodiscard]] QRectF knobBox(qreal on);

class SwitchButton final : public PaintedButton {
    Q_OBJECT

public:
    explicit SwitchButton(const QString& name, QWidget* parent = nullptr);

    /// A click on the label is one on the switch, and its text the switch's name.
    void setLabel(QLabel* label);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void slide(bool on);

    QVariantAnimation m_slide;
};

} // namespace kestu
