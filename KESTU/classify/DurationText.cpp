// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/DurationText.h"

#include <cmath>
#include <cstdint>

namespace kestu {

QString formatDuration(double seconds) {
    constexpr double longest = 9.0e15; // keeps the count of minutes inside its type
    const double wholeMinutes = std::trunc(std::fmin(seconds, longest) / 60.0);
    if (!(wholeMinutes >= 1)) {
        return seconds > 0 ? QStringLiteral("1分未満") : QStringLiteral("0分");
    }
    const auto minutes = static_cast<std::int64_t>(wholeMinutes);
    const QString rest = QStringLiteral("%1分").arg(minutes % 60);
    if (minutes < 60) {
        return rest;
    }
    const QString hours = QStringLiteral("%1時間").arg(minutes / 60);
    return minutes % 60 == 0 ? hours : hours + rest;
}

} // namespace kestu
