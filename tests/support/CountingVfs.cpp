// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/CountingVfs.h"

#include <sqlite3.h>

#include <array>
#include <utility>

namespace kestu::test {
namespace {

/// The database file and its log have methods of their own.
enum Kind { database, log };

// SQLite's callbacks carry nothing of ours.
struct State {
    sqlite3_vfs vfs{};
    sqlite3_vfs* original = nullptr;
    std::array<sqlite3_io_methods, 2> methods{};
    std::array<const sqlite3_io_methods*, 2> originalMethods{};
    DiskCosts costs;
};
State state;

template<Kind kind>
int countWrite(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset) {
    state.costs.bytes += size;
    return state.originalMethods[kind]->xWrite(file, data, size, offset);
}

template<Kind kind>
int countSync(sqlite3_file* file, int flags) {
    ++state.costs.syncs;
    return state.originalMethods[kind]->xSync(file, flags);
}

template<Kind kind>
void count(sqlite3_file* file) {
    state.originalMethods[kind] = file->pMethods;
    state.methods[kind] = *file->pMethods;
    state.methods[kind].xWrite = countWrite<kind>;
    state.methods[kind].xSync = countSync<kind>;
    file->pMethods = &state.methods[kind];
}

int openCounted(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    const int result = state.original->xOpen(&state.vfs, name, file, flags, outFlags);
    if (result == SQLITE_OK && (flags & SQLITE_OPEN_MAIN_DB) != 0) {
        count<database>(file);
    } else if (result == SQLITE_OK && (flags & SQLITE_OPEN_WAL) != 0) {
        count<log>(file);
    }
    return result;
}

} // namespace

CountingVfs::CountingVfs() {
    state.original = sqlite3_vfs_find(nullptr);
    state.vfs = *state.original;
    state.vfs.zName = "counting";
    state.vfs.xOpen = openCounted;
    state.costs = {};
    sqlite3_vfs_register(&state.vfs, 1);
}

CountingVfs::~CountingVfs() {
    sqlite3_vfs_unregister(&state.vfs);
    sqlite3_vfs_register(state.original, 1);
}

DiskCosts CountingVfs::take() {
    return std::exchange(state.costs, {});
}

} // namespace kestu::test
