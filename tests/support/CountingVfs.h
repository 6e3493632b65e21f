// SPDX-License-Identifier: GPL-3.0-or-later
//
// What SQLite really asks of the disk: every file opened while one lives counts what is written to it and how
// often it is synced. One at a time in a process.
#pragma once

#include <cstdint>

namespace kestu::test {

struct DiskCosts {
    std::int64_t bytes = 0;
    std::int64_t syncs = 0;
};

class CountingVfs final {
public:
    CountingVfs(); // becomes SQLite's default
    ~CountingVfs();
    CountingVfs(const CountingVfs&) = delete;
    CountingVfs& operator=(const CountingVfs&) = delete;

    /// Since the last call.
    [[nodiscard]] DiskCosts take();
};

} // namespace kestu::test
