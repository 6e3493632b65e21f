// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Records.h"

#include <QUrl>

#include <algorithm>
#include <span>

namespace kestu {
namespace {

template<typename Case>
struct RawCase {
    Case value;
    QStringView raw;
};

// The first row of each table is also what unknown text reads as.
constexpr RawCase<CategoryKind> kindTable[] = {{CategoryKind::project, u"project"},
                                               {CategoryKind::tag, u"tag"}};
constexpr RawCase<RuleField> fieldTable[] = {{RuleField::app, u"app"},
                                             {RuleField::title, u"title"},
                                             {RuleField::domain, u"domain"},
                                             {RuleField::url, u"url"}};
constexpr RawCase<RuleOperator> operatorTable[] = {{RuleOperator::contains, u"contains"},
                                                   {RuleOperator::equals, u"equals"},
                                                   {RuleOperator::prefix, u"prefix"}};

template<typename Case>
QString rawIn(std::span<const RawCase<Case>> table, Case value) {
    return std::ranges::find(table, value, &RawCase<Case>::value)->raw.toString();
}

template<typename Case>
Case caseIn(std::span<const RawCase<Case>> table, QStringView raw) {
    const auto found = std::ranges::find(table, raw, &RawCase<Case>::raw);
    return (found == table.end() ? table.begin() : found)->value;
}

} // namespace

std::optional<QString> Sample::domain() const {
    if (!url) {
        return std::nullopt;
    }
    // Fully encoded, so that the domain is what the address holds and not its decoded punycode.
    QString host = QUrl(*url).host(QUrl::FullyEncoded).toLower();
    if (host.isEmpty()) {
        return std::nullopt;
    }
    if (host.startsWith(u"www.")) {
        host.remove(0, 4);
    }
    return host;
}

QString rawString(CategoryKind kind) {
    return rawIn<CategoryKind>(kindTable, kind);
}
QString rawString(RuleField field) {
    return rawIn<RuleField>(fieldTable, field);
}
QString rawString(RuleOperator op) {
    return rawIn<RuleOperator>(operatorTable, op);
}
CategoryKind categoryKindFromRaw(QStringView raw) {
    return caseIn<CategoryKind>(kindTable, raw);
}
RuleField ruleFieldFromRaw(QStringView raw) {
    return caseIn<RuleField>(fieldTable, raw);
}
RuleOperator ruleOperatorFromRaw(QStringView raw) {
    return caseIn<RuleOperator>(operatorTable, raw);
}

size_t qHash(const RuleTarget& target, size_t seed) noexcept {
    return qHashMulti(seed, static_cast<int>(target.kind), target.id);
}

size_t qHash(const Rule& rule, size_t seed) noexcept {
    return qHashMulti(seed, rule.id, rule.target, static_cast<int>(rule.field), static_cast<int>(rule.op),
                      rule.value, rule.sort);
}

size_t qHash(const RuleSuggestion& suggestion, size_t seed) noexcept {
    return qHashMulti(seed, suggestion.id, static_cast<int>(suggestion.kind), suggestion.targetName,
                      static_cast<int>(suggestion.field), static_cast<int>(suggestion.op), suggestion.value,
                      suggestion.reason, epochSeconds(suggestion.createdAt));
}

} // namespace kestu
