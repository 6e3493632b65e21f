// SPDX-License-Identifier: GPL-3.0-or-later
//
// Every read and write of the store. Owns the one Database; AppModel owns the Repository, and nothing but
// the model and the tracker uses it. Main thread only. All operations throw DatabaseError.
#pragma once

#include "base/Time.h"
#include "storage/Database.h"
#include "storage/OverlapRead.h"
#include "storage/Records.h"

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace kestu {

/// What an entry made by hand says.
struct ManualEntry {
    Instant start{};
    Instant end{};
    QString title;
    std::optional<ProjectId> projectId;
    QSet<TagId> tagIds;
};

/// A row as the tracker left it.
struct RecordedRow {
    ActivityId id{};
    Instant end{}; // as it was written last
};

/// A row of the tracker's, and the instant from which on it holds nothing.
struct RecordedCut {
    RecordedRow row;
    Instant at{};
};

/// A category that is not there yet.
struct NewCategory {
    CategoryKind kind = CategoryKind::project;
    QString name;
    QString colorHex;
};

class Repository final {
public:
    /// Takes over an opened database at the current schema. `clock` stamps daily notes.
    Repository(std::unique_ptr<Database> database, Clock clock);
    Repository(const Repository&) = delete;
    Repository& operator=(const Repository&) = delete;

    /// For transactions that span several operations, and for the two counters.
    [[nodiscard]] Database& database() { return *m_database; }

    /// For writes of which the latest may go with a power cut; see there.
    [[nodiscard]] Database::UnsyncedWrites unsyncedWrites() { return Database::UnsyncedWrites(*m_database); }

    // Activities

    /// A new activity that begins and ends at `at`.
    ActivityId insertActivity(const Sample& sample, Instant at);

    void extendActivity(ActivityId id, Instant end);

    /// Moves the end of a row that is still as the tracker left it. False, and nothing is written, when
    /// another hand has cut it, deleted it, or put an entry into its place.
    [[nodiscard]] bool extendRecorded(const RecordedRow& row, Instant end);

    /// Takes away what these rows hold from the given instants on, and the rows of which nothing is left;
    /// all or nothing. Rows that are no longer as the tracker left them stay as they are.
    void cutRecorded(std::span<const RecordedCut> cuts);

    /// Activities whose end lies after `from` and whose start lies before `to`, whole, with their tags,
    /// by start; equal starts by id. The cost does not grow with the age of the file.
    [[nodiscard]] std::vector<Activity> activitiesOverlapping(Instant from, Instant to) const;

    /// Cuts the entry's interval out of the recorded activities and inserts it. Entries made by hand are
    /// never cut. The caller runs it inside one transaction.
    /// @throws DatabaseError when the entry does not end after it starts.
    ActivityId insertManualEntry(const ManualEntry& entry);

    /// Deletes the entry made by hand with this id and inserts the new values; returns the new id. The
    /// caller runs it inside one transaction.
    ActivityId replaceManualEntry(ActivityId id, const ManualEntry& entry);

    void deleteActivity(ActivityId id);

    /// The caller runs it inside one transaction.
    void setProject(std::span<const ActivityId> ids, std::optional<ProjectId> projectId);

    enum class TagState { off, on };
    void setTag(std::span<const ActivityId> ids, TagId tagId, TagState state);

    // Categories, by sort, then id

    [[nodiscard]] std::vector<Project> projects() const;
    [[nodiscard]] std::vector<Tag> tags() const;

    RowId insertCategory(CategoryKind kind, const QString& name, const QString& colorHex);
    void updateCategory(CategoryKind kind, RowId id, const QString& name, const QString& colorHex);

    /// The category's rules and tag links go with it; its activities lose the project.
    void deleteCategory(CategoryKind kind, RowId id);

    /// The first category with the same matching key.
    [[nodiscard]] std::optional<RowId> findCategory(CategoryKind kind, const QString& name) const;

    /// As findCategory, else a new one; without a colour it takes the palette's next.
    RowId findOrCreateCategory(CategoryKind kind, const QString& name,
                               const std::optional<QString>& colorHex = {});

    /// Makes a category and a rule for it, both or neither.
    void insertCategoryWithRule(const NewCategory& category, RuleField field, RuleOperator op,
                                const QString& value);

    /// Makes a category and assigns these activities to it, all or nothing.
    void insertCategoryOf(std::span<const ActivityId> ids, const NewCategory& category);

    // Rules, by sort, then id

    [[nodiscard]] std::vector<Rule> rules() const;
    RuleId insertRule(const RuleTarget& target, RuleField field, RuleOperator op, const QString& value);

    /// Writes everything but the sort.
    void updateRule(const Rule& rule);
    void deleteRule(RuleId id);

    // Suggestions, by id

    [[nodiscard]] std::vector<RuleSuggestion> suggestions() const;

    /// Makes the suggestion a rule, with its category if that is new, and deletes it, all or nothing.
    /// @throws DatabaseError also when it is no longer there as it was `shown`.
    RuleId acceptSuggestion(const RuleSuggestion& shown);

    /// @throws DatabaseError as acceptSuggestion.
    void deleteSuggestion(const RuleSuggestion& shown);

    // Daily notes

    [[nodiscard]] std::optional<DailyNote> dailyNote(const QString& day) const;

    /// Stores the trimmed summary; an empty one clears the day.
    void saveDailyNote(const QString& day, const QString& summary, const QString& author);

private:
    void writeTag(std::span<const ActivityId> ids, TagId tagId, TagState state);
    void removeSuggestion(const RuleSuggestion& shown);

    std::unique_ptr<Database> m_database;
    Clock m_clock;
    OverlapRead m_overlapRead;
};

} // namespace kestu
