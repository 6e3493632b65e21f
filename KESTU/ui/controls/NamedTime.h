// SPDX-License-Identifier: GPL-3.0-or-later
//
// The date and the time that a text names, in the many ways in which people and programs write them.
#pragma once

#include <QDate>
#include <QString>
#include <QTime>

#include <optional>

namespace kestu {

/// A date, a time or both.
struct NamedTime {
    std::optional<QDate> date;
    std::optional<QTime> time;

    bool operator==(const NamedTime&) const = default;
};

/// None for a text that is something else. `year` is that of a date without one.
[[nodiscard]] std::optional<NamedTime> namedTime(const QString& text, int year);

} // namespace kestu
