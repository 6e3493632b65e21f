// SPDX-License-Identifier: GPL-3.0-or-later
//
// The applications that the desktop knows: their entries, as installed for this user at this moment.
#pragma once

#include <QString>

#include <vector>

namespace kestu {

struct DesktopEntry {
    QString id;             // the entry's file name without ".desktop"
    QString localizedName;  // in the language of the process
    QString startupWmClass; // empty when the entry names none
    QString executable; // resolved path of the program that opens the window, or of its script; empty when
                        // not found, and for programs that run in a terminal, whose window it is
    bool noDisplay = false; // not shown in menus: helpers, settings pages, second spellings
};

/// Read anew at each call (1.6 to 8 ms). Entries that menus show come first, then by id, so that of two
/// entries that claim the same window the same one wins at every start.
[[nodiscard]] std::vector<DesktopEntry> installedDesktopEntries();

} // namespace kestu
