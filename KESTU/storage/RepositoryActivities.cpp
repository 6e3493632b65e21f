// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Repository.h"

namespace kestu {
namespace {

QSet<TagId> tagIdsIn(const QString& list) {
    QSet<TagId> ids;
    for (const QStringView piece : QStringView(list).split(u',', Qt::SkipEmptyParts)) {
        bool isNumber = false;
        const TagId id = piece.toLongLong(&isNumber);
        if (isNumber) {
            ids.insert(id);
        }
    }
    return ids;
}

Activity activityIn(const Row& row) {
    return {.id = row.integer(0),
            .start = instantAt(row.real(1)),
            .end = instantAt(row.real(2)),
            .bundleId = row.text(3),
            .appName = row.text(4),
            .title = row.text(5),
            .url = row.optionalText(6),
            .domain = row.optionalText(7),
            .projectId = row.optionalInteger(8),
            .isManual = row.integer(9) != 0,
            .tagIds = tagIdsIn(row.text(10))};
}

/// Cuts `activity` down to what lies outside the entry; what lies on both sides of it becomes two rows.
///
///   activity   |-----|      |--------------|       |------|
///   entry         |========|   |=======|       |======|
///   left       |--|         |--|       |---|          |---|
void carve(Database& database, const Activity& activity, const ManualEntry& entry) {
    const bool startsBefore = activity.start < entry.start;
    const bool endsAfter = activity.end > entry.end;
    if (!startsBefore && !endsAfter) {
        database.run(QStringLiteral("DELETE FROM activity WHERE id = ?"), {activity.id});
        return;
    }
    if (!startsBefore) {
        database.run(QStringLiteral("UPDATE activity SET start = ? WHERE id = ?"),
                     {epochSeconds(entry.end), activity.id});
        return;
    }
    std::optional<ActivityId> tail;
    if (endsAfter) {
        // Copied in SQL and before the head is cut, so that the tail is the row as it is stored.
        tail = database.run(
            QStringLiteral(
                "INSERT INTO activity (start, end, bundle_id, app_name, title, url, domain, project_id)\n"
                "SELECT ?, ?, bundle_id, app_name, title, url, domain, project_id FROM activity WHERE id = "
                "?"),
            {epochSeconds(entry.end), epochSeconds(activity.end), activity.id});
    }
    database.run(QStringLiteral("UPDATE activity SET end = ? WHERE id = ?"),
                 {epochSeconds(entry.start), activity.id});
    if (tail) {
        database.run(QStringLiteral("INSERT INTO activity_tag (activity_id, tag_id) SELECT ?, tag_id FROM "
                                    "activity_tag WHERE activity_id = ?"),
                     {*tail, activity.id});
    }
}

} // namespace

Repository::Repository(std::unique_ptr<Database> database, Clock clock)
    : m_database(std::move(database))
    , m_clock(std::move(clock))
    , m_overlapRead(*m_database) {}

ActivityId Repository::insertActivity(const Sample& sample, Instant at) {
    return m_database->run(
        QStringLiteral("INSERT INTO activity (start, end, bundle_id, app_name, title, url, domain) "
                       "VALUES (?, ?, ?, ?, ?, ?, ?)"),
        {epochSeconds(at), epochSeconds(at), sample.bundleId, sample.appName, sample.title,
         sqlValue(sample.url), sqlValue(sample.domain())});
}

void Repository::extendActivity(ActivityId id, Instant end) {
    m_database->run(QStringLiteral("UPDATE activity SET end = ? WHERE id = ?"), {epochSeconds(end), id});
}

bool Repository::extendRecorded(const RecordedRow& row, Instant end) {
    m_database->run(QStringLiteral("UPDATE activity SET end = ? WHERE id = ? AND is_manual = 0 AND end = ?"),
                    {epochSeconds(end), row.id, epochSeconds(row.end)});
    return m_database->changedRows() > 0;
}

void Repository::cutRecorded(std::span<const RecordedCut> cuts) {
    m_database->transaction([&] {
        for (const auto& [row, at] : cuts) {
            const double from = epochSeconds(at);
            const double end = epochSeconds(row.end);
            m_database->run(QStringLiteral("DELETE FROM activity WHERE id = ? AND is_manual = 0 AND end = ? "
                                           "AND start >= ?"),
                            {row.id, end, from});
            m_database->run(QStringLiteral("UPDATE activity SET end = ? WHERE id = ? AND is_manual = 0 "
                                           "AND end = ? AND start < ? AND end > ?"),
                            {from, row.id, end, from, from});
        }
    });
}

std::vector<Activity> Repository::activitiesOverlapping(Instant from, Instant to) const {
    return m_database->query(m_overlapRead.sql(), m_overlapRead.arguments(from, to), activityIn);
}

ActivityId Repository::insertManualEntry(const ManualEntry& entry) {
    if (!(entry.end > entry.start)) {
        throw DatabaseError(QStringLiteral("終了は開始より後にしてください"));
    }
    for (const Activity& activity : activitiesOverlapping(entry.start, entry.end)) {
        if (!activity.isManual) {
            carve(*m_database, activity, entry);
        }
    }
    const ActivityId id = m_database->run(
        QStringLiteral(
            "INSERT INTO activity (start, end, bundle_id, app_name, title, project_id, is_manual)\n"
            "VALUES (?, ?, ?, '手動', ?, ?, 1)"),
        {epochSeconds(entry.start), epochSeconds(entry.end), manualBundleId.toString(), entry.title,
         sqlValue(entry.projectId)});
    for (const TagId tagId : entry.tagIds) {
        m_database->run(QStringLiteral("INSERT INTO activity_tag (activity_id, tag_id) VALUES (?, ?)"),
                        {id, tagId});
    }
    return id;
}

ActivityId Repository::replaceManualEntry(ActivityId id, const ManualEntry& entry) {
    // First, so that the entry does not meet its own former self.
    m_database->run(QStringLiteral("DELETE FROM activity WHERE id = ? AND is_manual = 1"), {id});
    return insertManualEntry(entry);
}

void Repository::deleteActivity(ActivityId id) {
    m_database->run(QStringLiteral("DELETE FROM activity WHERE id = ?"), {id});
}

void Repository::setProject(std::span<const ActivityId> ids, std::optional<ProjectId> projectId) {
    for (const ActivityId id : ids) {
        m_database->run(QStringLiteral("UPDATE activity SET project_id = ? WHERE id = ?"),
                        {sqlValue(projectId), id});
    }
}

void Repository::setTag(std::span<const ActivityId> ids, TagId tagId, TagState state) {
    if (!ids.empty()) {
        m_database->transaction([&] { writeTag(ids, tagId, state); });
    }
}

/// As setTag; the caller runs it inside one transaction.
void Repository::writeTag(std::span<const ActivityId> ids, TagId tagId, TagState state) {
    const QString sql =
        state == TagState::on
            ? QStringLiteral("INSERT OR IGNORE INTO activity_tag (activity_id, tag_id) VALUES (?, ?)")
            : QStringLiteral("DELETE FROM activity_tag WHERE activity_id = ? AND tag_id = ?");
    for (const ActivityId id : ids) {
        m_database->run(sql, {id, tagId});
    }
}

} // namespace kestu
