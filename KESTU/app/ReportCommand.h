// SPDX-License-Identifier: GPL-3.0-or-later
//
// The command line: reports without a screen and without a recorder, help and version.
#pragma once

#include "base/Calendar.h"
#include "base/Time.h"
#include "storage/RepositoryOpener.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace kestu {

/// What a command left behind: its exit code, and what goes to the two outputs.
struct CommandResult {
    int exitCode = 0;
    QString output;
    QString errors;
};

/// What a command knows of the world.
struct CommandContext {
    StoreLocation location;
    Calendar calendar;
    Instant now;
};

/// Whether these arguments (without the program's name) ask for a command instead of the application.
[[nodiscard]] bool isCommand(const QStringList& arguments);

/// Runs it. A usage error ends with 2, a failing read or write with 1.
[[nodiscard]] CommandResult runCommand(const QStringList& arguments, const CommandContext& context);

/// For arguments that nobody understands.
[[nodiscard]] CommandResult usageError(const QString& reason);

} // namespace kestu
