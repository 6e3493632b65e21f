// SPDX-License-Identifier: GPL-3.0-or-later
//
// A report: what it covers and what is known of it, and the two texts made of that. A plain value; whoever
// wants a report fills one in. Nothing here reads the store.
#pragma once

#include "base/Calendar.h"
#include "classify/Resolution.h"
#include "storage/Records.h"

#include <vector>

namespace kestu {

struct ReportBuilder {
    struct Options {
        bool includeDetails = true;
        bool includeTimeline = true;
        bool operator==(const Options&) const = default;
    };

    Interval range;
    std::vector<ResolvedActivity> items; // clipped to the range
    std::vector<Project> projects;
    std::vector<Tag> tags;
    Options options;
    std::vector<DailyNote> notes; // none: no section for them
    Calendar calendar;            // weeks from Monday

    /// For an assistant to read as much as for a person; lines end with a line feed.
    [[nodiscard]] QString markdown() const;

    /// One line for each item, with byte order mark and CRLF; the options play no part.
    [[nodiscard]] QString csv() const;
};

} // namespace kestu
