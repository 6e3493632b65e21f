// SPDX-License-Identifier: GPL-3.0-or-later
//
// The statement that every screen waits for: the activities that overlap a range of time. It is chosen
// once for each opened file, by its Repository.
#pragma once

#include "base/Time.h"
#include "storage/Database.h"

namespace kestu {

class OverlapRead final {
public:
    /// The one whose cost does not grow with the file, where `database` has the index that it needs.
    explicit OverlapRead(const Database& database);

    /// Reads the columns of table `activity` from id to is_manual and the comma-separated list of tag
    /// ids, of every activity with end > from and start < to, by start, then id.
    [[nodiscard]] const QString& sql() const { return m_sql; }
    [[nodiscard]] SqlValues arguments(Instant from, Instant to) const;

private:
    QString m_sql;
    bool m_isIndexed;
};

} // namespace kestu
