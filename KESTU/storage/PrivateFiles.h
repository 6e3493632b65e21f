// SPDX-License-Identifier: GPL-3.0-or-later
//
// What is recorded is for its owner's eyes alone: how the store keeps its folder and files from others.
// Everything goes by path. Opening and closing the database file or a companion by hand would drop the
// locks that SQLite holds on it in this process.
#pragma once

#include <QString>

#include <sys/types.h>

namespace kestu {

/// While it lives, whatever this process makes is closed to group and others.
class PrivateCreation final {
public:
    PrivateCreation();
    ~PrivateCreation();
    PrivateCreation(const PrivateCreation&) = delete;
    PrivateCreation& operator=(const PrivateCreation&) = delete;

private:
    mode_t m_before;
};

/// Closes an existing folder (0700) or file (0600) to others. Best effort: a path that is missing or not
/// ours stays as it is.
void makeFolderPrivate(const QString& path);
void makeFilePrivate(const QString& path);

/// Waits until the disk has what was written to an existing file, or the names in an existing folder. Not for
/// files that SQLite has open. False when that cannot be.
[[nodiscard]] bool syncToDisk(const QString& path);

} // namespace kestu
