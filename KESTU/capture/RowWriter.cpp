// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/RowWriter.h"

#include <algorithm>
#include <iterator>

namespace kestu {
namespace {

// What a power cut may take at most of what is recorded. A kill takes no more than a tick.
constexpr Seconds syncInterval{60};

} // namespace

RowWriter::RowWriter(Repository& repository)
    : m_repository(repository) {}

void RowWriter::begin(const Sample& sample, Instant start, const ClockReading& now) {
    flushCuts();
    m_open = OpenActivity{.sample = sample, .start = start};
    insert(now);
}

void RowWriter::extend(Instant end, const ClockReading& now) {
    flushCuts();
    if (!m_open) {
        return;
    }
    if (m_open->hasRow && !write(m_rows.back(), end, now)) {
        m_open->start = m_rows.back().stored.end;
        m_open->hasRow = false;
        m_rows.pop_back();
    }
    if (!m_open->hasRow) {
        insert(now);
        if (m_open->hasRow) {
            (void)write(m_rows.back(), end, now);
        }
    }
}

void RowWriter::finish() {
    m_open.reset();
}

void RowWriter::settleUntil(Seconds uptime) {
    // Two questions tell the same input some milliseconds apart, and the clock may be set between them.
    if (uptime - m_settledUntil < Seconds{0.01}) {
        return;
    }
    m_settledUntil = uptime;
    for (Row& row : m_rows) {
        const Instant until = std::min(row.stored.end, row.origin + uptime);
        if (until >= row.start) {
            row.settled = std::max(row.settled.value_or(until), until);
        }
    }
    const auto isSettled = [](const Row& row) { return row.settled == row.stored.end; };
    const auto last = m_open && m_open->hasRow ? std::prev(m_rows.end()) : m_rows.end();
    m_rows.erase(m_rows.begin(), std::find_if_not(m_rows.begin(), last, isSettled));
}

bool RowWriter::cutAbsence() {
    m_open.reset();
    const auto known = m_cuts.size();
    for (const Row& row : m_rows) {
        if (row.settled != row.stored.end) {
            m_cuts.push_back({.row = row.stored, .at = row.settled.value_or(row.start)});
            m_writtenUntil = std::min(*m_writtenUntil, m_cuts.back().at);
        }
    }
    m_rows.clear();
    const bool isCut = m_cuts.size() > known;
    flushCuts();
    return isCut;
}

/// Waits for the disk once in a while only.
template<typename Write>
auto RowWriter::written(const ClockReading& now, Write write) {
    if (now.uptime - m_syncedAt < syncInterval) {
        const auto unsynced = m_repository.unsyncedWrites();
        return write();
    }
    const auto result = write();
    m_syncedAt = now.uptime;
    return result;
}

void RowWriter::flushCuts() {
    if (m_cuts.empty()) {
        return;
    }
    try {
        m_repository.cutRecorded(m_cuts);
        m_cuts.clear();
    } catch (const DatabaseError&) {
        // Kept: the next write tries again.
    }
}

std::optional<ActivityId> RowWriter::openId() const {
    return m_open && m_open->hasRow ? std::optional(m_rows.back().stored.id) : std::nullopt;
}

std::optional<Instant> RowWriter::openUntil() const {
    if (!m_open) {
        return std::nullopt;
    }
    return m_open->hasRow ? m_rows.back().stored.end : m_open->start;
}

void RowWriter::insert(const ClockReading& now) {
    try {
        const ActivityId id =
            written(now, [this] { return m_repository.insertActivity(m_open->sample, m_open->start); });
        m_rows.push_back(
            {.stored = {.id = id, .end = m_open->start}, .start = m_open->start, .origin = now.origin()});
        m_open->hasRow = true;
        m_writtenUntil = m_open->start;
    } catch (const DatabaseError&) {
        // Capture never reports: the next tick tries again, with the same start.
    }
}

/// False when the row is no longer ours.
bool RowWriter::write(Row& row, Instant end, const ClockReading& now) {
    try {
        if (!written(now, [&] { return m_repository.extendRecorded(row.stored, end); })) {
            return false;
        }
        row.stored.end = end;
        row.origin = now.origin();
        m_writtenUntil = end;
    } catch (const DatabaseError&) {
        // Dropped: the next tick writes a later end into the same row.
    }
    return true;
}

} // namespace kestu
