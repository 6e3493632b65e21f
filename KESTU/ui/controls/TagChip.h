// SPDX-License-Identifier: GPL-3.0-or-later
//
// A tag as a capsule in its colour, with an optional note behind its name. A clickable one is switched on and
// off; a static one only shows, and takes no focus. What does not fit elides in the name. It belongs to its
// parent widget.
#pragma once

#include "ui/controls/Painted.h"

#include <QColor>

namespace kestu {

/// Where the parts of a chip lie; the note is empty without one.
struct ChipParts {
    QRectF icon;
    QRectF name;
    QRectF note;
};

[[nodiscard]] ChipParts chipParts(QSizeF chip, int noteWidth);

class TagChip final : public PaintedButton {
    Q_OBJECT

public:
    enum class Kind { clickable, label };

    struct Look {
        QString name;
        QColor color;
        bool on = false;
        QString note;

        [[nodiscard]] bool operator==(const Look&) const = default;
    };

    TagChip(const Look& look, Kind kind, QWidget* parent = nullptr);

    void setLook(const Look& look);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    bool hitButton(const QPoint& point) const override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int noteWidth() const;
    [[nodiscard]] QString shownName() const;

    Look m_look;
    Kind m_kind;
};

} // namespace kestu
