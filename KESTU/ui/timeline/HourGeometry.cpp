// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/timeline/HourGeometry.h"

#include "base/LocalClock.h"

#include <QSet>

#include <algorithm>

namespace kestu {
namespace {

constexpr double hourSeconds = 3600;
constexpr double shortestStretch = 60; // seconds
constexpr int rowStep = hourMetrics::rowHeight + hourMetrics::rowGap;
constexpr int firstRow = hourMetrics::scaleHeight + hourMetrics::rowGap;

} // namespace

std::vector<HourRow> hourRowsOf(Items items, const Calendar& calendar) {
    std::vector<HourRow> rows;
    LocalClock clock(calendar);
    for (const Instant hour : hourRows(items, calendar)) {
        const auto local = clock.at(hour);
        rows.push_back({.hour = hour,
                        .number = local ? local->secondOfDay / 3600 : 0,
                        .slices = hourSlices(items, hour)});
    }
    return rows;
}

int hourRowsHeight(std::size_t rows) {
    return hourMetrics::scaleHeight + static_cast<int>(rows) * rowStep;
}

QRectF barBox(std::size_t row, double width) {
    return {static_cast<double>(hourMetrics::labelWidth), firstRow + static_cast<double>(row) * rowStep,
            std::max(width - hourMetrics::labelWidth, 0.0), hourMetrics::rowHeight};
}

QRectF sliceBox(const HourSlice& slice, const QRectF& bar) {
    return {bar.left() + slice.offset / hourSeconds * bar.width(), bar.top(),
            std::max(hourMetrics::narrowestSlice, slice.length / hourSeconds * bar.width()), bar.height()};
}

std::optional<std::size_t> rowAt(std::size_t rows, QPointF point, double width) {
    const double row = (point.y() - firstRow) / rowStep;
    if (row < 0 || row >= static_cast<double>(rows)) {
        return {};
    }
    const auto index = static_cast<std::size_t>(row);
    return barBox(index, width).contains(point) ? std::optional(index) : std::nullopt;
}

std::optional<std::size_t> sliceAt(const HourRow& row, double x, const QRectF& bar) {
    for (std::size_t index = row.slices.size(); index-- > 0;) {
        const QRectF box = sliceBox(row.slices[index], bar);
        if (box.left() <= x && x < box.right()) {
            return index;
        }
    }
    return {};
}

std::vector<SlicePlace> firstSlices(const std::vector<HourRow>& rows) {
    std::vector<SlicePlace> places;
    QSet<ActivityId> seen;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const auto& slices = rows[row].slices;
        const std::size_t before = places.size();
        for (std::size_t slice = 0; slice < slices.size(); ++slice) {
            if (!seen.contains(slices[slice].activityId)) {
                seen.insert(slices[slice].activityId);
                places.push_back({.row = row, .slice = slice});
            }
        }
        std::stable_sort(places.begin() + static_cast<std::ptrdiff_t>(before), places.end(),
                         [&slices](const SlicePlace& left, const SlicePlace& right) {
                             return slices[left.slice].offset < slices[right.slice].offset;
                         });
    }
    return places;
}

std::optional<double> emptySecond(const HourRow& row, double from) {
    std::vector<HourSlice> sorted = row.slices;
    std::sort(sorted.begin(), sorted.end(),
              [](const HourSlice& left, const HourSlice& right) { return left.offset < right.offset; });
    double cursor = from;
    for (const HourSlice& slice : sorted) {
        if (slice.offset - cursor >= shortestStretch) {
            return cursor;
        }
        cursor = std::max(cursor, slice.offset + slice.length);
    }
    return hourSeconds - cursor >= shortestStretch ? std::optional(cursor) : std::nullopt;
}

} // namespace kestu
