// SPDX-License-Identifier: GPL-3.0-or-later
//
// Few choices side by side on one track, of which exactly one holds; one stop for the keyboard, on which the
// arrow keys choose. It belongs to its parent widget.
#pragma once

#include "ui/controls/ChoiceButton.h"

#include <QStringList>
#include <vector>

namespace kestu {

/// The boxes of `count` equally wide segments on a track.
[[nodiscard]] std::vector<QRect> segmentBoxes(QSize track, int count);

class Segment final : public ChoiceButton {
    Q_OBJECT

public:
    Segment(const QString& text, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

class SegmentedPicker final : public QWidget {
    Q_OBJECT

public:
    /// `name` is what assistive technology calls the whole.
    SegmentedPicker(const QString& name, const QStringList& texts, QWidget* parent = nullptr);

    [[nodiscard]] int current() const { return m_current; }
    void setCurrent(int index);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    /// The user chose another one.
    void chosen(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void add(const QString& text);
    void choose(int index);

    std::vector<ChoiceButton*> m_segments;
    int m_current = 0;
};

} // namespace kestu
