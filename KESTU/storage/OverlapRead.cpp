// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/OverlapRead.h"

#include "storage/Schema.h"

#include <QStringBuilder>

#include <limits>

namespace kestu {
namespace {

// Passes over the whole table, but asks for nothing beyond the schema.
constexpr QStringView overlapByScan =
    uR"(SELECT a.id, a.start, a.end, a.bundle_id, a.app_name, a.title, a.url, a.domain, a.project_id,
       a.is_manual, GROUP_CONCAT(t.tag_id)
FROM activity a LEFT JOIN activity_tag t ON t.activity_id = a.id
WHERE a.end > ? AND a.start < ?
GROUP BY a.id ORDER BY a.start)";

// Nearly every activity is short, and short ones can only overlap the range when they start shortly before
// its beginning or inside it. The few long ones have an index of their own, wherever they start.
//
//   starts      . . . . . . . . |low . . . . . . |from . . . . . |to
//   first half                  [---- all lengths --------------)
//   second half (-- long ------)
QString overlapByIndex() {
    constexpr QStringView columns =
        uR"(SELECT a.id, a.start, a.end, a.bundle_id, a.app_name, a.title, a.url, a.domain, a.project_id,
       a.is_manual, (SELECT GROUP_CONCAT(tag_id) FROM activity_tag WHERE activity_id = a.id)
FROM activity a INDEXED BY )";
    // The condition of a partial index stands as the index has it, else SQLite does not use it.
    return columns % u"activity_start\nWHERE a.start >= ?3 AND a.start < ?2 AND a.end > ?1\nUNION ALL\n" %
           columns % u"activity_end\nWHERE " % isLongActivity %
           u" AND a.start < ?3 AND a.start < ?2 AND a.end > ?1\nORDER BY 2, 1";
}

/// The `low` of overlapByIndex. An activity that starts before it and ends after `from` must count as long,
/// in SQLite's rounded subtraction too. Rounding keeps order, so the activity's length is no less than
/// `from - low`: that this is greater is all that there is to check. The check can fail only where doubles
/// are coarser than a second; there every start is looked at.
double lowestStartOfShort(double from) {
    const double low = from - longActivity - 1.0;
    return from - low > longActivity ? low : -std::numeric_limits<double>::infinity();
}

bool canRun(const Database& database, const QString& sql) {
    try {
        (void)database.query(u"EXPLAIN " % sql, {}, [](const Row&) { return 0; });
        return true;
    } catch (const DatabaseError&) {
        return false; // the caller has a statement that needs less; what else is wrong, that one says
    }
}

} // namespace

OverlapRead::OverlapRead(const Database& database)
    : m_sql(overlapByIndex())
    , m_isIndexed(canRun(database, m_sql)) {
    if (!m_isIndexed) {
        m_sql = overlapByScan.toString();
    }
}

SqlValues OverlapRead::arguments(Instant from, Instant to) const {
    SqlValues values{epochSeconds(from), epochSeconds(to)};
    if (m_isIndexed) {
        values.emplace_back(lowestStartOfShort(epochSeconds(from)));
    }
    return values;
}

} // namespace kestu
