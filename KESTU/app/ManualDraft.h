// SPDX-License-Identifier: GPL-3.0-or-later
//
// An entry made by hand while it is being written or corrected.
#pragma once

#include "storage/Records.h"

#include <QUuid>

namespace kestu {

struct ManualDraft {
    QUuid id = QUuid::createUuid(); // fresh for each draft, so that a sheet bound to it opens anew
    Instant start{};
    Instant end{};
    std::optional<ActivityId> editingId; // the row being corrected; none for a new entry
    QString title;
    std::optional<ProjectId> projectId;
    QSet<TagId> tagIds;

    bool operator==(const ManualDraft&) const = default;
};

} // namespace kestu
