// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/DayAggregation.h"

#include "base/LocalClock.h"
#include "base/Text.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace kestu {
namespace {

constexpr Seconds hourLength{3600};
constexpr std::size_t mostSamples = 3;

std::size_t keyHash(const std::optional<ProjectId>& id) {
    return std::hash<std::optional<ProjectId>>{}(id);
}
std::size_t keyHash(TagId id) {
    return std::hash<TagId>{}(id);
}
std::size_t keyHash(const QString& text) {
    return qHash(text);
}

/// Sums by key, in the order in which the keys first appear.
template<typename Key>
class Sums final {
public:
    void add(const Key& key, double seconds) {
        const auto [place, isNew] = m_places.try_emplace(key, m_sums.size());
        if (isNew) {
            m_sums.emplace_back(key, 0.0);
        }
        m_sums[place->second].second += seconds;
    }

    /// Most seconds first.
    [[nodiscard]] std::vector<std::pair<Key, double>> sorted() const {
        auto sums = m_sums;
        std::ranges::stable_sort(sums, std::ranges::greater{}, &std::pair<Key, double>::second);
        return sums;
    }

private:
    struct Hash {
        std::size_t operator()(const Key& key) const { return keyHash(key); }
    };

    std::unordered_map<Key, std::size_t, Hash> m_places;
    std::vector<std::pair<Key, double>> m_sums;
};

QStringList mostOf(const Sums<QString>& sums) {
    QStringList names;
    const auto sorted = sums.sorted();
    for (const auto& [name, seconds] : std::span(sorted).first(std::min(sorted.size(), mostSamples))) {
        names << name;
    }
    return names;
}

QString domainOf(const Activity& activity) {
    return activity.domain.value_or(QString());
}

/// In time order, without those that have no place in it because their times are not finite.
std::vector<const ResolvedActivity*> byStart(Items items) {
    std::vector<const ResolvedActivity*> sorted;
    for (const ResolvedActivity& item : items) {
        if (std::isfinite(epochSeconds(item.activity.start)) &&
            std::isfinite(epochSeconds(item.activity.end))) {
            sorted.push_back(&item);
        }
    }
    std::ranges::stable_sort(sorted, {}, [](const ResolvedActivity* item) { return item->activity.start; });
    return sorted;
}

/// The starts of the local days that `range` touches, and the end of the last one; none for a range that no
/// calendar can express.
std::vector<Instant> dayBounds(const Interval& range, const Calendar& calendar) {
    LocalClock clock(calendar);
    const auto first = clock.startOfDay(range.start);
    if (!first || !clock.at(range.end)) {
        return {};
    }
    std::vector<Instant> bounds{*first};
    while (bounds.back() < range.end) {
        bounds.push_back(*clock.startOfDayAfter(bounds.back(), 1));
    }
    return bounds;
}

QString labelOf(const Activity& activity) {
    if (!activity.isManual) {
        return activity.appName;
    }
    return activity.title.isEmpty() ? manualAppName.toString() : activity.title;
}

} // namespace

QString HourSlice::identity() const {
    return QString::number(activityId) + u'-' + decimalText(offset);
}

QString UnassignedGroup::identity() const {
    return bundleId + u'|' + domain.value_or(QString());
}

QString DailyTotal::identity() const {
    return decimalText(epochSeconds(day)) + u'-' + QString::number(projectId.value_or(-1));
}

double secondsOf(const ResolvedActivity& item) {
    return lengthOf(item.activity.start, item.activity.end).count();
}

ProjectTotals projectTotals(Items items) {
    Sums<std::optional<ProjectId>> sums;
    for (const ResolvedActivity& item : items) {
        sums.add(item.projectId, secondsOf(item));
    }
    return sums.sorted();
}

TagTotals tagTotals(Items items) {
    Sums<TagId> sums;
    for (const ResolvedActivity& item : items) {
        // A set has no order of its own.
        std::vector<TagId> tagIds(item.tagIds.begin(), item.tagIds.end());
        std::ranges::sort(tagIds);
        for (const TagId tagId : tagIds) {
            sums.add(tagId, secondsOf(item));
        }
    }
    return sums.sorted();
}

NamedTotals appTotals(Items items) {
    Sums<QString> sums;
    for (const ResolvedActivity& item : items) {
        sums.add(item.activity.appName, secondsOf(item));
    }
    return sums.sorted();
}

NamedTotals domainTotals(Items items) {
    Sums<QString> sums;
    for (const ResolvedActivity& item : items) {
        if (const QString domain = domainOf(item.activity); !domain.isEmpty()) {
            sums.add(domain, secondsOf(item));
        }
    }
    return sums.sorted();
}

NamedTotals titleTotals(Items items) {
    Sums<QString> sums;
    for (const ResolvedActivity& item : items) {
        if (!item.activity.title.isEmpty()) {
            sums.add(item.activity.appName + u'：' + item.activity.title, secondsOf(item));
        }
    }
    return sums.sorted();
}

std::vector<UnassignedGroup> unassignedGroups(Items items) {
    std::vector<UnassignedGroup> groups;
    std::vector<Sums<QString>> titles; // of each group
    QHash<QString, std::size_t> places;
    for (const ResolvedActivity& item : items) {
        if (item.projectId) {
            continue;
        }
        const Activity& activity = item.activity;
        const QString key = activity.bundleId + u'|' + domainOf(activity);
        const auto known = places.constFind(key);
        const std::size_t place = known == places.constEnd() ? groups.size() : *known;
        if (place == groups.size()) {
            places.insert(key, place);
            titles.emplace_back();
            groups.push_back({.appName = activity.appName,
                              .bundleId = activity.bundleId,
                              .domain = activity.domain,
                              .seconds = 0,
                              .sampleTitles = {},
                              .activityIds = {}});
        }
        groups[place].seconds += secondsOf(item);
        groups[place].activityIds.push_back(activity.id);
        if (!activity.title.isEmpty()) {
            titles[place].add(activity.title, secondsOf(item));
        }
    }
    for (std::size_t place = 0; place < groups.size(); ++place) {
        groups[place].sampleTitles = mostOf(titles[place]);
    }
    std::ranges::stable_sort(groups, std::ranges::greater{}, &UnassignedGroup::seconds);
    return groups;
}

std::vector<Instant> hourRows(Items items, const Calendar& calendar) {
    std::vector<Instant> rows;
    if (items.empty()) {
        return rows;
    }
    Instant earliest = items.front().activity.start;
    Instant latest = items.front().activity.end;
    for (const ResolvedActivity& item : items) {
        earliest = std::min(earliest, item.activity.start);
        latest = std::max(latest, item.activity.end);
    }
    LocalClock clock(calendar);
    const auto first = clock.startOfHour(earliest);
    if (!first || !clock.at(latest)) {
        return rows; // an end beyond every calendar would give rows without end
    }
    for (Instant row = *first; row < latest; row += hourLength) {
        rows.push_back(row);
    }
    return rows;
}

std::vector<HourSlice> hourSlices(Items items, Instant hour) {
    std::vector<HourSlice> slices;
    for (const ResolvedActivity& item : items) {
        const Instant start = std::max(item.activity.start, hour);
        const Instant end = std::min(item.activity.end, hour + hourLength);
        if (end > start) {
            slices.push_back({.activityId = item.activity.id,
                              .projectId = item.projectId,
                              .isManual = item.activity.isManual,
                              .offset = (start - hour).count(),
                              .length = (end - start).count()});
        }
    }
    return slices;
}

std::vector<Interval> gaps(Items items, Seconds minimum) {
    std::vector<Interval> found;
    const auto sorted = byStart(items);
    if (sorted.empty()) {
        return found;
    }
    Instant cursor = sorted.front()->activity.end;
    for (const ResolvedActivity* item : sorted) {
        if (item->activity.start - cursor >= minimum) {
            found.push_back({.start = cursor, .end = item->activity.start});
        }
        cursor = std::max(cursor, item->activity.end);
    }
    return found;
}

std::vector<DailyTotal> dailyTotals(Items items, const Interval& range, const Calendar& calendar) {
    const std::vector<Instant> bounds = dayBounds(range, calendar);
    std::vector<Sums<std::optional<ProjectId>>> days(bounds.size()); // the last one stays empty
    for (const ResolvedActivity& item : items) {
        const Activity& activity = item.activity;
        const auto later = std::ranges::upper_bound(bounds, activity.start) - bounds.begin();
        for (auto day = static_cast<std::size_t>(std::max<std::ptrdiff_t>(later - 1, 0));
             day + 1 < bounds.size() && activity.end > std::max(activity.start, bounds[day]); ++day) {
            const Instant from = std::max(activity.start, bounds[day]);
            const Instant to = std::min(activity.end, bounds[day + 1]);
            days[day].add(item.projectId, lengthOf(from, to).count());
        }
    }
    std::vector<DailyTotal> totals;
    for (std::size_t day = 0; day < days.size(); ++day) {
        for (const auto& [projectId, seconds] : days[day].sorted()) {
            totals.push_back({.day = bounds[day], .projectId = projectId, .seconds = seconds});
        }
    }
    return totals;
}

std::vector<TimeBlock> timeBlocks(Items items, Seconds mergeGap) {
    std::vector<TimeBlock> blocks;
    Sums<QString> labels; // of the last block
    for (const ResolvedActivity* item : byStart(items)) {
        const Activity& activity = item->activity;
        const bool joins = !blocks.empty() && blocks.back().projectId == item->projectId &&
                           activity.start - blocks.back().end <= mergeGap;
        if (!joins) {
            if (!blocks.empty()) {
                blocks.back().labels = mostOf(std::exchange(labels, {}));
            }
            blocks.push_back({.start = activity.start,
                              .end = activity.end,
                              .projectId = item->projectId,
                              .seconds = 0,
                              .labels = {}});
        }
        blocks.back().end = std::max(blocks.back().end, activity.end);
        blocks.back().seconds += secondsOf(*item);
        labels.add(labelOf(activity), secondsOf(*item));
    }
    if (!blocks.empty()) {
        blocks.back().labels = mostOf(labels);
    }
    return blocks;
}

} // namespace kestu
