// SPDX-License-Identifier: GPL-3.0-or-later
//
// The hours of the selected day as bars with a coloured slice for each piece of an activity. One stop for the
// keyboard: left and right select through the day, up and down choose a row, Return adds an entry in its
// first empty stretch behind the selection, Delete asks and deletes the selection. Each slice is a child for
// assistive technology. It belongs to its parent widget.
#pragma once

#include "ui/timeline/HourGeometry.h"

#include <QHash>
#include <QWidget>

#include <functional>

namespace kestu {

class AppModel;

class HourBars final : public QWidget {
    Q_OBJECT

public:
    explicit HourBars(AppModel& model);

    [[nodiscard]] const std::vector<HourRow>& rows() const { return m_rows; }
    [[nodiscard]] const std::vector<SlicePlace>& slices() const { return m_slices; } // all, row by row
    [[nodiscard]] QRect boxOf(SlicePlace place) const;
    [[nodiscard]] bool isSelected(SlicePlace place) const;
    /// The lines of a slice's tooltip; the first is its time range.
    [[nodiscard]] QString helpOf(SlicePlace place) const;
    /// What assistive technology calls it.
    [[nodiscard]] QString nameOf(SlicePlace place) const;
    /// Selects it and says so.
    void choose(SlicePlace place);

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    /// This part is to be scrolled into view.
    void revealed(const QRect& box);
    /// Someone pointed at a slice to see it, and is not only passing with the keyboard.
    void chosen();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void refresh();
    void refreshColors();
    void refreshSelection();
    void paintRow(QPainter& painter, std::size_t row) const;
    void paintSlice(QPainter& painter, const HourSlice& slice, const QRectF& bar) const;
    [[nodiscard]] QColor colorOf(const HourSlice& slice) const;
    [[nodiscard]] const HourSlice& at(SlicePlace place) const;
    [[nodiscard]] const ResolvedActivity* itemOf(SlicePlace place) const;
    [[nodiscard]] std::optional<SlicePlace> sliceUnder(QPointF point) const;
    [[nodiscard]] std::optional<SlicePlace> selectedPlace() const;
    [[nodiscard]] std::optional<SlicePlace> neighbour(int direction) const;
    void select(SlicePlace place);
    bool move(int key);
    void moveRow(int by);
    void addInRow();
    void askToDelete();
    void reveal(const QRectF& box);

    AppModel& m_model;
    std::vector<HourRow> m_rows;
    std::vector<SlicePlace> m_slices;
    std::vector<SlicePlace> m_stops;               // one for each activity, in time order
    QMultiHash<ActivityId, std::size_t> m_itemsOf; // its pieces
    QHash<ProjectId, QColor> m_colors;
    std::optional<ActivityId> m_selected;
    std::size_t m_row = 0; // the keyboard's
    bool m_ringShown = false;
};

} // namespace kestu
