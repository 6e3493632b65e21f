// SPDX-License-Identifier: GPL-3.0-or-later
//
// A minus and a plus that take a number down and up within its limits, and go on while held. The number
// itself stands in a label beside it. It belongs to its parent widget.
#pragma once

#include "ui/controls/Painted.h"

namespace kestu {

class StepperHalf final : public PaintedButton {
    Q_OBJECT

public:
    StepperHalf(const QString& icon, const QString& name, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_icon;
};

class Stepper final : public QWidget {
    Q_OBJECT

public:
    /// `name` is what is counted, `unit` stands behind its number.
    Stepper(const QString& name, const QString& unit, int minimum, int maximum, QWidget* parent = nullptr);

    [[nodiscard]] int value() const { return m_value; }
    void setValue(int value);

Q_SIGNALS:
    /// The user stepped.
    void stepped(int value);

private:
    void step(int by);

    QString m_unit;
    StepperHalf* m_minus;
    StepperHalf* m_plus;
    int m_minimum;
    int m_maximum;
    int m_value;
};

} // namespace kestu
