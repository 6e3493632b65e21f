// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/Resolution.h"

#include "classify/RuleMatcher.h"

#include <algorithm>
#include <iterator>
#include <utility>

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

/// Where entries made by hand lie: apart from each other, in time order.
std::vector<Interval> coverOf(std::span<const Activity> activities) {
    std::vector<Interval> cover;
    for (const Activity& activity : activities) {
        if (!activity.isManual || !(activity.end > activity.start)) {
            continue;
        }
        if (!cover.empty() && activity.start <= cover.back().end) {
            cover.back().end = std::max(cover.back().end, activity.end);
        } else {
            cover.push_back({.start = activity.start, .end = activity.end});
        }
    }
    return cover;
}

/// Cuts `activity` down to what lies before the cover, and adds what lies behind a part of it to `later`.
/// False when nothing lies before it.
///
///   activity   |----------------|      |-------|
///   cover         |==|   |==|        |===|
///   left       |--|  ^---^  ^---|        ^-----|    ^ later
bool keepsHead(Activity& activity, std::span<const Interval> cover, std::vector<Activity>& later) {
    auto entry = std::ranges::upper_bound(cover, activity.start, {}, &Interval::end);
    if (entry == cover.end() || !(entry->start < activity.end)) {
        return true;
    }
    const Instant end = std::exchange(activity.end, entry->start);
    while (entry != cover.end() && entry->start < end) {
        const Instant from = entry->end;
        const Instant to = ++entry == cover.end() ? end : std::min(end, entry->start);
        if (to > from) {
            later.push_back(activity);
            later.back().start = from;
            later.back().end = to;
        }
    }
    return activity.end > activity.start;
}

bool isBefore(const Activity& left, const Activity& right) {
    return left.start < right.start || (left.start == right.start && left.id < right.id);
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

std::vector<Activity> counted(std::vector<Activity> activities) {
    const std::vector<Interval> cover = coverOf(activities);
    if (cover.empty()) {
        return activities;
    }
    std::vector<Activity> later;
    auto kept = activities.begin();
    for (auto activity = activities.begin(); activity != activities.end(); ++activity) {
        const bool lasts = activity->end > activity->start;
        if (activity->isManual || !lasts || keepsHead(*activity, cover, later)) {
            if (kept != activity) {
                *kept = std::move(*activity);
            }
            ++kept;
        }
    }
    activities.erase(kept, activities.end());
    std::ranges::sort(later, isBefore);
    const auto middle = activities.insert(activities.end(), std::make_move_iterator(later.begin()),
                                          std::make_move_iterator(later.end()));
    std::inplace_merge(activities.begin(), middle, activities.end(), isBefore);
    return activities;
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
