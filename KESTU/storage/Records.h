// SPDX-License-Identifier: GPL-3.0-or-later
//
// The plain values that every other part passes around: what capture observes and what is stored.
// Times are instants in seconds since the Unix epoch, ids are SQLite row ids.
#pragma once

#include "base/Time.h"

#include <QHashFunctions>
#include <QSet>
#include <QString>
#include <QStringView>

#include <array>
#include <cstdint>
#include <optional>

namespace kestu {

using RowId = std::int64_t;
using ActivityId = RowId;
using ProjectId = RowId;
using TagId = RowId;
using RuleId = RowId;
using SuggestionId = RowId;

/// One observation of the frontmost application.
struct Sample {
    QString bundleId;
    QString appName;
    QString title;              // of the focused window; empty when unknown
    std::optional<QString> url; // of the active browser tab, when known

    /// The host of `url` in lower case without one leading "www."; absent without an address or host.
    [[nodiscard]] std::optional<QString> domain() const;

    bool operator==(const Sample&) const = default;
};

/// Bundle id and application name of an entry made by hand.
inline constexpr QStringView manualBundleId = u"kestu.manual";
inline constexpr QStringView manualAppName = u"手動";

/// One stored interval of time.
struct Activity {
    ActivityId id{};
    Instant start{};
    Instant end{};
    QString bundleId;
    QString appName;
    QString title;
    std::optional<QString> url;
    std::optional<QString> domain;      // derived from `url` when the row was written
    std::optional<ProjectId> projectId; // assigned by hand
    bool isManual = false;
    QSet<TagId> tagIds; // assigned by hand

    bool operator==(const Activity&) const = default;
};

/// The two kinds of category; the raw string is also the name of the table.
enum class CategoryKind { project, tag };

/// Which part of an activity a rule tests, in the order of the pickers.
enum class RuleField { app, title, domain, url };
inline constexpr std::array allRuleFields{RuleField::app, RuleField::title, RuleField::domain,
                                          RuleField::url};

/// How a rule compares, in the order of the pickers.
enum class RuleOperator { contains, equals, prefix };
inline constexpr std::array allRuleOperators{RuleOperator::contains, RuleOperator::equals,
                                             RuleOperator::prefix};

/// The stored form of each case, and back. Reading text that is none of them (the comparison is exact)
/// gives `project`, `app` and `contains`.
[[nodiscard]] QString rawString(CategoryKind kind);
[[nodiscard]] QString rawString(RuleField field);
[[nodiscard]] QString rawString(RuleOperator op);
[[nodiscard]] CategoryKind categoryKindFromRaw(QStringView raw);
[[nodiscard]] RuleField ruleFieldFromRaw(QStringView raw);
[[nodiscard]] RuleOperator ruleOperatorFromRaw(QStringView raw);

struct Project {
    ProjectId id{};
    QString name;
    QString colorHex; // "#4F7CF7": red, green, blue
    std::int64_t sort = 0;

    bool operator==(const Project&) const = default;
};

struct Tag {
    TagId id{};
    QString name;
    QString colorHex;
    std::int64_t sort = 0;

    bool operator==(const Tag&) const = default;
};

/// The colours that categories made without one take in turn.
inline constexpr std::array<QStringView, 8> categoryPalette{u"#4F7CF7", u"#F2994A", u"#27AE60", u"#EB5757",
                                                            u"#9B51E0", u"#2D9CDB", u"#F2C94C", u"#828282"};

/// What a matching rule assigns: the project or the tag with this id.
struct RuleTarget {
    CategoryKind kind = CategoryKind::project;
    RowId id{};

    bool operator==(const RuleTarget&) const = default;
};

struct Rule {
    RuleId id{};
    RuleTarget target;
    RuleField field = RuleField::app;
    RuleOperator op = RuleOperator::contains;
    QString value;
    std::int64_t sort = 0;

    bool operator==(const Rule&) const = default;
};

/// A rule proposed by the assistant process, waiting for the user's approval.
struct RuleSuggestion {
    SuggestionId id{};
    CategoryKind kind = CategoryKind::project;
    QString targetName; // need not exist yet
    RuleField field = RuleField::app;
    RuleOperator op = RuleOperator::contains;
    QString value;
    QString reason;
    Instant createdAt{};

    bool operator==(const RuleSuggestion&) const = default;
};

/// The note of one day.
struct DailyNote {
    QString day; // day key, "2026-03-05"
    QString summary;
    QString author; // "user" when written in the application
    Instant updatedAt{};

    bool operator==(const DailyNote&) const = default;
};

[[nodiscard]] size_t qHash(const RuleTarget& target, size_t seed = 0) noexcept;
[[nodiscard]] size_t qHash(const Rule& rule, size_t seed = 0) noexcept;
[[nodiscard]] size_t qHash(const RuleSuggestion& suggestion, size_t seed = 0) noexcept;

} // namespace kestu
