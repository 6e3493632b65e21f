// SPDX-License-Identifier: GPL-3.0-or-later
//
// A button that is one icon, without a frame or with that of a push button. Its name is its tooltip and what
// assistive technology reads. It belongs to its parent widget.
#pragma once

#include "ui/controls/Painted.h"

namespace kestu {

class IconButton final : public PaintedButton {
    Q_OBJECT

public:
    enum class Kind { borderless, framed };

    IconButton(const QString& icon, const QString& name, Kind kind = Kind::borderless,
               QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_icon;
    Kind m_kind;
};

} // namespace kestu
