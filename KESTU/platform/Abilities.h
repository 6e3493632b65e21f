// SPDX-License-Identifier: GPL-3.0-or-later
//
// What this session can tell a recorder. For the screens and for bug reports.
#pragma once

#include <QString>

namespace kestu {

struct Ability {
    enum class Kind {
        yes,
        partly,     // of some programs only
        afterLogin, // all is prepared; it begins with the next login
        no
    };

    Kind kind = Kind::no;
    QString note{}; // for the user: what is missing, and what would help; empty when there is nothing to say
    bool mayBeRequested = false; // Accessibility::request() would help

    [[nodiscard]] bool operator==(const Ability&) const = default;
};

struct Abilities {
    QString source; // who tells of the windows, in a few words; empty when nobody does
    Ability windows;
    Ability titles;
    Ability addresses; // of the pages in browsers
    Ability idle;
    Ability lock;

    [[nodiscard]] bool operator==(const Abilities&) const = default;
};

} // namespace kestu
