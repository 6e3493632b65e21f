// SPDX-License-Identifier: GPL-3.0-or-later
//
// The rows that the tracker writes: the open one, and those of this session that an absence may still take
// away. Knows whether the open row is still its own, and what of it could not be written yet. A failed write
// is never reported: the next one makes good for it while the activity lasts. Owned by the tracker.
#pragma once

#include "base/Time.h"
#include "storage/Repository.h"

#include <optional>
#include <vector>

namespace kestu {

/// One moment by both clocks: the wall's, which is set at times, and that of the seconds that pass.
struct ClockReading {
    Instant time{};
    Seconds uptime{};

    /// What the wall clock would have shown when nothing had passed yet.
    [[nodiscard]] Instant origin() const { return time - uptime; }
};

class RowWriter final {
public:
    /// `repository` outlives this.
    explicit RowWriter(Repository& repository);

    /// A new activity is open from `start` on.
    void begin(const Sample& sample, Instant start, const ClockReading& now);

    /// The open activity goes on to `end`. When another hand has cut, deleted or replaced its row, that one
    /// is left alone and a new row goes on where ours had ended.
    void extend(Instant end, const ClockReading& now);

    /// Nothing is open any more; what was written stays.
    void finish();

    /// Nothing that was written will be cut any more.
    void settle() { m_rows.clear(); }

    /// The next write is synced to the disk: who knows when the one after it comes.
    void syncNext() { m_syncedAt = Seconds::min(); }

    /// The user was there at this uptime: what was written up to then is never cut. To be called after the
    /// writes of a look, while the wall clock is the one that they were made by.
    void settleUntil(Seconds uptime);

    /// The user has left: nothing is open any more, and what is not settled is taken away, now or, when that
    /// cannot be written, with the next write that can. Returns whether there was anything.
    bool cutAbsence();

    /// Absent when nothing is open, and while the open activity has no row because it could not be written.
    [[nodiscard]] std::optional<ActivityId> openId() const;

    /// Up to here the open activity is written: its start while it has no row.
    [[nodiscard]] std::optional<Instant> openUntil() const;

    /// Up to here this run of recording has written.
    [[nodiscard]] std::optional<Instant> writtenUntil() const { return m_writtenUntil; }

private:
    struct Row {
        RecordedRow stored;
        Instant start{};
        Instant origin{};                 // the wall clock's, when the row was last written
        std::optional<Instant> settled{}; // absent while nothing of the row is
    };
    struct OpenActivity {
        Sample sample;
        Instant start{};
        bool hasRow = false; // the last of m_rows
    };

    template<typename Write>
    auto written(const ClockReading& now, Write write);
    void flushCuts();
    void insert(const ClockReading& now);
    [[nodiscard]] bool write(Row& row, Instant end, const ClockReading& now);

    Repository& m_repository;
    std::optional<OpenActivity> m_open;
    std::vector<Row> m_rows;         // of this session, oldest first
    std::vector<RecordedCut> m_cuts; // not written yet
    std::optional<Instant> m_writtenUntil;
    Seconds m_settledUntil = Seconds::min(); // uptimes
    Seconds m_syncedAt = Seconds::min();
};

} // namespace kestu
