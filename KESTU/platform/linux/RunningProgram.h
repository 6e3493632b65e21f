// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which program a process or a command line is to its user: an interpreter is the script that it runs.
#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>

namespace kestu {

struct RunningProgram {
    QString
        file; // resolved path of the program, or of the script; empty when it cannot be seen, or is no file
    QString name; // the last part of its path; the name of a module or class; empty for no such process
};

/// `procRoot` as for the process tree.
[[nodiscard]] RunningProgram runningProgram(const QString& procRoot, std::int64_t processId);

/// What a command line starts: its first word, or what interpreters and `env` are told to run. Empty when
/// that is code in the command itself, or nothing.
[[nodiscard]] QString startedProgram(const QStringList& words);

/// Whether the program is there to run others, so that being it says nothing about what the user sees.
[[nodiscard]] bool runsOtherPrograms(const QString& executable);

} // namespace kestu
