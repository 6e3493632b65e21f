// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the hours of a day and the pieces of its activities lie on the screen, and what lies at a point.
// Pure; all lengths are device-independent pixels, the origin is the top left corner of the whole.
#pragma once

#include "classify/DayAggregation.h"

#include <QRectF>
#include <QSize>

#include <optional>
#include <vector>

namespace kestu {

namespace hourMetrics {
inline constexpr int labelWidth = 48;
inline constexpr int scaleHeight = 16;
inline constexpr int rowHeight = 26;
inline constexpr int rowGap = 6;
inline constexpr double narrowestSlice = 1.5;
} // namespace hourMetrics

struct HourRow {
    Instant hour{}; // its start
    int number = 0; // on the wall clock, 0 to 23
    std::vector<HourSlice> slices;
};

/// One slice among rows.
struct SlicePlace {
    std::size_t row = 0;
    std::size_t slice = 0;
    bool operator==(const SlicePlace&) const = default;
};

[[nodiscard]] std::vector<HourRow> hourRowsOf(Items items, const Calendar& calendar);

/// The height of the scale and so many rows.
[[nodiscard]] int hourRowsHeight(std::size_t rows);

[[nodiscard]] QRectF barBox(std::size_t row, double width);

/// A slice's place on a bar.
[[nodiscard]] QRectF sliceBox(const HourSlice& slice, const QRectF& bar);

/// The row whose bar is at that point.
[[nodiscard]] std::optional<std::size_t> rowAt(std::size_t rows, QPointF point, double width);

/// The uppermost slice at that x of the bar; pieces drawn later lie above.
[[nodiscard]] std::optional<std::size_t> sliceAt(const HourRow& row, double x, const QRectF& bar);

/// The slices, one for each activity, in the order of their times.
[[nodiscard]] std::vector<SlicePlace> firstSlices(const std::vector<HourRow>& rows);

/// The first time of the row, from `from` seconds of its hour on, at which nothing is recorded for at least a
/// minute: seconds from the start of the hour.
[[nodiscard]] std::optional<double> emptySecond(const HourRow& row, double from);

} // namespace kestu
