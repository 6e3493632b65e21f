// SPDX-License-Identifier: GPL-3.0-or-later
//
// Which application a window belongs to. Windows name themselves in many ways; the answer must be the same
// at every start, since records, rules and exclusions hang on the id.
#pragma once

#include "platform/linux/DesktopEntries.h"

#include <QCache>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace kestu {

/// What a window says of itself.
struct WindowFacts {
    QString wmInstance{};
    QString wmClass{};
    QString gtkApplicationId{};
    bool isDesktop = false;     // the window behind all others, with the icons
    std::int64_t processId = 0; // 0 when unknown
    bool operator==(const WindowFacts&) const = default;
};

[[nodiscard]] size_t qHash(const WindowFacts& window, size_t seed = 0) noexcept;

struct ApplicationIdentity {
    std::optional<QString> bundleId;
    std::optional<QString> localizedName;
    bool operator==(const ApplicationIdentity&) const = default;
};

/// Sandbox id; then the entry that the window's GTK application id, its class, its program or its launch
/// scope names; then its class, GTK application id or program itself. Products of the product table get their
/// one id, and a file manager's desktop has an id beside the file manager's. Absent only for a window without
/// any of these. `procRoot` is "/proc", or a test's tree.
[[nodiscard]] ApplicationIdentity identityOf(const WindowFacts& window, std::span<const DesktopEntry> entries,
                                             const QString& procRoot);

/// The bundle id of the application that calls itself `name` on a bus: by a desktop entry's id, a window
/// class, a program's path or file name. That name itself where no entry and no product has it.
[[nodiscard]] QString applicationIdNamed(const QString& name, std::span<const DesktopEntry> entries);

/// The answers of identityOf, remembered. Owned by the workspace, which asks at every tick.
class ApplicationIds final {
public:
    using EntrySource = std::function<std::vector<DesktopEntry>()>;

    explicit ApplicationIds(EntrySource entries = installedDesktopEntries,
                            QString procRoot = QStringLiteral("/proc"));

    /// A window that was not asked for lately is looked up in the entries as they are now, so that a program
    /// installed a moment ago is known at once.
    [[nodiscard]] ApplicationIdentity of(const WindowFacts& window);

private:
    using Asked = std::pair<WindowFacts, std::int64_t>; // with its process's start: ids are used again

    EntrySource m_entries;
    QString m_procRoot;
    QCache<Asked, ApplicationIdentity> m_known;
};

} // namespace kestu
