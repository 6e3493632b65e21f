// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/RuleMatcher.h"

#include "base/Text.h"

#include <algorithm>

namespace kestu {
namespace {

/// What of an activity each field tests; a missing address or domain is the empty text.
std::vector<QString> candidates(RuleField field, const Activity& activity) {
    switch (field) {
    case RuleField::app:
        return {activity.appName, activity.bundleId};
    case RuleField::title:
        return {activity.title};
    case RuleField::domain:
        return {activity.domain.value_or(QString())};
    case RuleField::url:
        return {activity.url.value_or(QString())};
    }
    return {};
}

QString needleOf(const Rule& rule) {
    return foldedText(trimmedBlanks(rule.value));
}

} // namespace

bool matches(const Rule& rule, const Activity& activity) {
    const QString needle = needleOf(rule);
    if (needle.isEmpty()) {
        return false;
    }
    const auto texts = candidates(rule.field, activity);
    return std::ranges::any_of(texts, [&](const QString& candidate) {
        const QString text = foldedText(candidate);
        switch (rule.op) {
        case RuleOperator::contains:
            return text.contains(needle);
        case RuleOperator::equals:
            return text == needle;
        case RuleOperator::prefix:
            return text.startsWith(needle);
        }
        return false;
    });
}

RuleMatcher::RuleMatcher(std::span<const Rule> rules) {
    for (std::size_t index = 0; index < rules.size(); ++index) {
        const Rule& rule = rules[index];
        const QString needle = needleOf(rule);
        if (!needle.isEmpty()) {
            m_fields[static_cast<std::size_t>(rule.field)].needles[needle.front().unicode()].push_back(
                {.text = needle, .op = rule.op, .rule = static_cast<int>(index)});
        }
    }
}

const std::vector<int>& RuleMatcher::matchingRules(const Activity& activity) {
    m_matching.clear();
    for (const RuleField field : allRuleFields) {
        FieldMatcher& matcher = m_fields[static_cast<std::size_t>(field)];
        if (matcher.needles.isEmpty()) {
            continue;
        }
        for (const QString& text : candidates(field, activity)) {
            const std::vector<int>& found = matcher.matchingRules(text);
            m_matching.insert(m_matching.end(), found.begin(), found.end());
        }
    }
    std::ranges::sort(m_matching);
    const auto repeated = std::ranges::unique(m_matching);
    m_matching.erase(repeated.begin(), repeated.end());
    return m_matching;
}

const std::vector<int>& RuleMatcher::FieldMatcher::matchingRules(const QString& text) {
    auto found = known.constFind(text);
    if (found == known.constEnd()) {
        found = known.insert(text, search(foldedText(text)));
    }
    return *found;
}

std::vector<int> RuleMatcher::FieldMatcher::search(const QString& text) const {
    std::vector<int> found;
    for (qsizetype place = 0; place < text.size(); ++place) {
        const auto beginning = needles.constFind(text[place].unicode());
        if (beginning == needles.constEnd()) {
            continue;
        }
        const QStringView rest = QStringView(text).sliced(place);
        for (const Needle& needle : *beginning) {
            const bool canStandHere = place == 0 || needle.op == RuleOperator::contains;
            if (canStandHere && rest.startsWith(needle.text) &&
                (needle.op != RuleOperator::equals || rest.size() == needle.text.size())) {
                found.push_back(needle.rule);
            }
        }
    }
    return found;
}

} // namespace kestu
