// SPDX-License-Identifier: GPL-3.0-or-later
//
// A short text on a tint: who wrote a note, how many there are, what is new, and the pill around an address
// (which alone gives way and elides). It belongs to its parent widget.
#pragma once

#include "ui/controls/TextLabel.h"

namespace kestu {

class Badge : public TextLabel {
    Q_OBJECT

public:
    enum class Kind { author, count, sidebar, fresh, pill };

    Badge(Kind kind, const QString& text, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Kind m_kind;
};

class CountBadge final : public Badge {
    Q_OBJECT

public:
    explicit CountBadge(int count, QWidget* parent = nullptr);

    void setCount(int count);
};

} // namespace kestu
