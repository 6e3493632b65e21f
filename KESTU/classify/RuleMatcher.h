// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether a rule's condition holds for an activity: for one rule, and for a whole list at once.
#pragma once

#include "storage/Records.h"

#include <QHash>
#include <QString>

#include <array>
#include <span>
#include <vector>

namespace kestu {

/// The condition test of one rule. Reads the rule's field, operator and value alone. Case is ignored and
/// canonically equivalent texts are equal; a blank value matches nothing.
[[nodiscard]] bool matches(const Rule& rule, const Activity& activity);

/// The conditions of a list of rules, prepared for one pass over many activities: each value is folded once,
/// and each distinct text is folded and tested once, however many activities hold it. It gives the answers of
/// matches(), rule by rule.
class RuleMatcher final {
public:
    explicit RuleMatcher(std::span<const Rule> rules);

    /// The indexes of the matching rules in the list, ascending.
    [[nodiscard]] const std::vector<int>& matchingRules(const Activity& activity);

private:
    struct Needle {
        QString text;
        RuleOperator op;
        int rule;
    };

    /// The needles of one field, by their first character: at each place in a text only the few that can
    /// begin there are compared.
    struct FieldMatcher {
        QHash<char16_t, std::vector<Needle>> needles;
        QHash<QString, std::vector<int>> known; // text -> matching rules

        [[nodiscard]] const std::vector<int>& matchingRules(const QString& text);
        [[nodiscard]] std::vector<int> search(const QString& text) const;
    };

    std::array<FieldMatcher, allRuleFields.size()> m_fields;
    std::vector<int> m_matching;
};

} // namespace kestu
