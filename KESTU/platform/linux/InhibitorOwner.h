// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether an inhibition is the front application's own. Whatever is not surely its own is another's: what was
// started from a terminal stands below it in the process tree and in its scope.
#pragma once

#include "platform/Workspace.h"
#include "platform/linux/ApplicationResolver.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace kestu {

/// For one question: it remembers what it has read. `front` and `entries` outlive it.
class InhibitorOwner final {
public:
    InhibitorOwner(const FrontmostApplication& front, QString procRoot,
                   const ApplicationIds::EntrySource& entries);

    /// The process of the window in front; one of the same program that it started or that shares its scope;
    /// one that started it as this application, as wrappers do; every one of its sandbox.
    [[nodiscard]] bool isProcess(std::int64_t processId);

    /// A client that calls itself as windows of this application do, or as its program; GNOME's compositor
    /// where it can only speak for this window.
    [[nodiscard]] bool isNamed(const QString& name);

private:
    [[nodiscard]] bool isOfSameProgram(std::int64_t processId) const;
    [[nodiscard]] bool hasThisId(const QString& name);

    const FrontmostApplication& m_front;
    QString m_procRoot;
    const ApplicationIds::EntrySource& m_entrySource;
    std::optional<std::vector<DesktopEntry>> m_entries;
    QString m_file; // the front program's own; empty where being it says nothing
};

} // namespace kestu
