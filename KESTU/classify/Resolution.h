// SPDX-License-Identifier: GPL-3.0-or-later
//
// What an activity counts for: its project and its tags, from what was set by hand and from the rules. Pure;
// computed at every load and never written back.
#pragma once

#include "base/Time.h"
#include "storage/Records.h"

#include <QHash>

#include <span>
#include <vector>

namespace kestu {

struct ResolvedActivity {
    Activity activity;                  // as stored, its times possibly clipped to a period
    std::optional<ProjectId> projectId; // none: unassigned
    bool isManual = false;              // the project is the one set by hand; not the activity's own flag
    QSet<TagId> tagIds;                 // set by hand or given by rules
    QSet<TagId> ruleTagIds;             // given by rules

    bool operator==(const ResolvedActivity&) const = default;
};

/// A project set by hand, else that of the first matching project rule in list order; the tags set by hand
/// and those of every matching tag rule.
[[nodiscard]] ResolvedActivity resolve(const Activity& activity, std::span<const Rule> rules);

/// As resolve, for many activities with one preparation of the rules.
[[nodiscard]] std::vector<ResolvedActivity> resolved(std::span<const Activity> activities,
                                                     std::span<const Rule> rules);

/// What counts of these activities, which are by start, then id, and stay so: recorded ones only where no
/// entry made by hand lies, as if it had been saved after them. The pieces of one keep its id; entries stay
/// whole.
[[nodiscard]] std::vector<Activity> counted(std::vector<Activity> activities);

/// The activities cut to `range`, without those of which nothing is left; the order stays.
[[nodiscard]] std::vector<Activity> clipped(std::span<const Activity> activities, const Interval& range);

/// How many seconds of these activities each suggestion's condition matches, by suggestion id; 0 is kept.
[[nodiscard]] QHash<SuggestionId, double> suggestionImpacts(std::span<const RuleSuggestion> suggestions,
                                                            std::span<const Activity> activities);

} // namespace kestu
