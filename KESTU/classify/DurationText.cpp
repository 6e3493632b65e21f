// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/DurationText.h"

#include <algorithm>
#include <cstdint>

namespace kestu {

QString formatDuration(double seconds) {
    if (!(seconds >= 60)) {
        return seconds > 0 ? QStringLiteral("1分未満") : QStringLiteral("0分");
    }
    constexpr double longest = 9.0e15; // keeps the count of minutes inside its type
    const auto minutes = static_cast<std::int64_t>(std::min(seconds, longest) / 60.0);
    QString rest = QStringLiteral("%1分").arg(minutes % 60);
    if (minutes < 60) {
        return rest;
    }
    const QString hours = QStringLiteral("%1時間").arg(minutes / 60);
    return minutes % 60 == 0 ? hours : hours + rest;
}

} // namespace kestu
