// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/RuleMatcher.h"

#include "base/Text.h"

#include <algorithm>

namespace kestu {
namespace {

/// Calls `test` with each text of the activity that a rule of this field looks at, until one passes. A
/// missing address or domain counts as an empty text, which no rule matches, and is left out.
template<typename Test>
bool anyCandidate(RuleField field, const Activity& activity, Test test) {
    switch (field) {
    case RuleField::app:
        return test(activity.appName) || test(activity.bundleId);
    case RuleField::title:
        return test(activity.title);
    case RuleField::domain:
        return activity.domain && test(*activity.domain);
    case RuleField::url:
        return activity.url && test(*activity.url);
    }
    return false;
}

/// Ascending, each once.
void sortOnce(std::vector<int>& rules) {
    std::ranges::sort(rules);
    rules.erase(std::unique(rules.begin(), rules.end()), rules.end());
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
    return anyCandidate(rule.field, activity, [&](const QString& candidate) {
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
        anyCandidate(field, activity, [&](const QString& text) {
            const std::vector<int>& found = matcher.matchingRules(text);
            m_matching.insert(m_matching.end(), found.begin(), found.end());
            return false;
        });
    }
    sortOnce(m_matching);
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
    sortOnce(found);
    return found;
}

} // namespace kestu
