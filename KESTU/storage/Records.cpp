// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Records.h"

#include <QUrl>

#include <algorithm>

namespace kestu {
namespace {

template<typename Case>
struct RawCase {
    Case value;
    QStringView raw;
};

// The first row of each table is also what unknown text reads as.
constexpr std::array kindTable{RawCase{CategoryKind::project, QStringView(u"project")},
                               RawCase{CategoryKind::tag, QStringView(u"tag")}};
constexpr std::array fieldTable{
    RawCase{RuleField::app, QStringView(u"app")}, RawCase{RuleField::title, QStringView(u"title")},
    RawCase{RuleField::domain, QStringView(u"domain")}, RawCase{RuleField::url, QStringView(u"url")}};
constexpr std::array operatorTable{RawCase{RuleOperator::contains, QStringView(u"contains")},
                                   RawCase{RuleOperator::equals, QStringView(u"equals")},
                                   RawCase{RuleOperator::prefix, QStringView(u"prefix")}};

template<typename Table, typename Case>
QString rawIn(const Table& table, Case value) {
    return std::ranges::find(table, value, &RawCase<Case>::value)->raw.toString();
}

/// The case with this raw string; unknown text reads as the first.
template<typename Table>
auto caseIn(const Table& table, QStringView raw) {
    const auto found = std::ranges::find(table, raw, &Table::value_type::raw);
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
    return rawIn(kindTable, kind);
}
QString rawString(RuleField field) {
    return rawIn(fieldTable, field);
}
QString rawString(RuleOperator op) {
    return rawIn(operatorTable, op);
}
CategoryKind categoryKindFromRaw(QStringView raw) {
    return caseIn(kindTable, raw);
}
RuleField ruleFieldFromRaw(QStringView raw) {
    return caseIn(fieldTable, raw);
}
RuleOperator ruleOperatorFromRaw(QStringView raw) {
    return caseIn(operatorTable, raw);
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
