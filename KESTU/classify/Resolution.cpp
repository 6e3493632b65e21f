// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/Resolution.h"

#include "classify/RuleMatcher.h"

#include <algorithm>

namespace kestu {
namespace {

ResolvedActivity resolvedBy(RuleMatcher& matcher, std::span<const Rule> rules, const Activity& activity) {
    ResolvedActivity result{.activity = activity,
                            .projectId = activity.projectId,
                            .isManual = activity.projectId.has_value(),
                            .tagIds = {},
                            .ruleTagIds = {}};
    for (const int index : matcher.matchingRules(activity)) {
        const RuleTarget& target = rules[static_cast<std::size_t>(index)].target;
        if (target.kind == CategoryKind::tag) {
            result.ruleTagIds.insert(target.id);
        } else if (!result.projectId) {
            result.projectId = target.id;
        }
    }
    result.tagIds = result.ruleTagIds; // shared: most activities have no tags of their own
    result.tagIds.unite(activity.tagIds);
    return result;
}

} // namespace

ResolvedActivity resolve(const Activity& activity, std::span<const Rule> rules) {
    RuleMatcher matcher(rules);
    return resolvedBy(matcher, rules, activity);
}

std::vector<ResolvedActivity> resolved(std::span<const Activity> activities, std::span<const Rule> rules) {
    RuleMatcher matcher(rules);
    std::vector<ResolvedActivity> items;
    items.reserve(activities.size());
    for (const Activity& activity : activities) {
        items.push_back(resolvedBy(matcher, rules, activity));
    }
    return items;
}

std::vector<Activity> clipped(std::span<const Activity> activities, const Interval& range) {
    std::vector<Activity> kept;
    kept.reserve(activities.size());
    for (const Activity& activity : activities) {
        const Instant start = std::max(activity.start, range.start);
        const Instant end = std::min(activity.end, range.end);
        if (end > start) {
            kept.push_back(activity);
            kept.back().start = start;
            kept.back().end = end;
        }
    }
    return kept;
}

QHash<SuggestionId, double> suggestionImpacts(std::span<const RuleSuggestion> suggestions,
                                              std::span<const Activity> activities) {
    std::vector<Rule> conditions;
    QHash<SuggestionId, double> impacts;
    for (const RuleSuggestion& suggestion : suggestions) {
        conditions.push_back({.id = -suggestion.id,
                              .target = {.kind = suggestion.kind, .id = -1},
                              .field = suggestion.field,
                              .op = suggestion.op,
                              .value = suggestion.value,
                              .sort = 0});
        impacts.insert(suggestion.id, 0);
    }
    RuleMatcher matcher(conditions);
    for (const Activity& activity : activities) {
        for (const int index : matcher.matchingRules(activity)) {
            impacts[suggestions[static_cast<std::size_t>(index)].id] +=
                lengthOf(activity.start, activity.end).count();
        }
    }
    return impacts;
}

} // namespace kestu
