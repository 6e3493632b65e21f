// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ApplicationResolver.h"

#include "platform/linux/LaunchScope.h"
#include "platform/linux/ProcessTree.h"
#include "platform/linux/ProductTable.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <memory>

namespace kestu {
namespace {

using Entries = std::span<const DesktopEntry>;

/// Windows open at one time and those of the last while; an answer takes some hundred bytes.
constexpr int rememberedWindows = 512;

const DesktopEntry* entryWhere(Entries entries, const std::function<bool(const DesktopEntry&)>& matches) {
    const auto entry = std::ranges::find_if(entries, matches);
    return entry == entries.end() ? nullptr : &*entry;
}

const DesktopEntry* entryWithId(Entries entries, const QString& id) {
    return entryWhere(entries, [&](const DesktopEntry& entry) {
        return !id.isEmpty() && entry.id.compare(id, Qt::CaseInsensitive) == 0;
    });
}

const DesktopEntry* entryWithWindowClass(Entries entries, const QString& name,
                                         Qt::CaseSensitivity sensitivity) {
    return entryWhere(entries, [&](const DesktopEntry& entry) {
        return !name.isEmpty() && entry.startupWmClass.compare(name, sensitivity) == 0;
    });
}

/// The instance is asked first: web applications share their browser's class and differ in the instance. A
/// browser with a profile folder of its own has that folder's path there, and its class decides.
const DesktopEntry* entryOfWindow(Entries entries, const WindowFacts& window) {
    for (const auto sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        for (const QString& name : {window.wmInstance, window.wmClass}) {
            if (const auto* entry = entryWithWindowClass(entries, name, sensitivity)) {
                return entry;
            }
        }
    }
    for (const QString& name : {window.wmClass, window.wmInstance}) {
        if (const auto* entry = entryWithId(entries, name)) {
            return entry;
        }
    }
    return nullptr;
}

/// Programs that run other programs: being one of them says nothing about what the user sees.
bool runsOtherPrograms(const QString& executable) {
    static const QRegularExpression hosts(
        QStringLiteral(R"(^(?:python|pypy|perl|ruby|tclsh|wish|lua|luajit|guile|php|node|nodejs|gjs|mono|)"
                       R"(dotnet|java|electron|nw|sh|dash|bash|zsh|fish|ksh|mksh|busybox|env|sudo|pkexec|)"
                       R"(nice|bwrap|firejail|flatpak|snap|snap-confine|wine|wine-preloader|wine64|)"
                       R"(wine64-preloader|qemu-.*|Xephyr|Xwayland|xterm|rxvt|urxvt|st)[-\d.]*$)"));
    return hosts.match(QFileInfo(executable).fileName()).hasMatch();
}

const DesktopEntry* entryOfExecutable(Entries entries, const QString& executable) {
    const auto startsIt = [&](const DesktopEntry& entry) { return entry.executable == executable; };
    if (executable.isEmpty() || runsOtherPrograms(executable) ||
        std::ranges::count_if(entries, startsIt) != 1) {
        return nullptr;
    }
    return entryWhere(entries, startsIt);
}

const DesktopEntry* entryOfProcess(Entries entries, std::int64_t processId, const QString& procRoot) {
    if (const auto* entry = entryOfExecutable(entries, executableOf(procRoot, processId))) {
        return entry;
    }
    const auto id = launchedId(procRoot, processId);
    return id ? entryWithId(entries, *id) : nullptr;
}

ApplicationIdentity identity(const QString& id, const QString& name) {
    return {.bundleId = productId(id).value_or(id), .localizedName = name.isEmpty() ? id : name};
}

} // namespace

size_t qHash(const WindowFacts& window, size_t seed) noexcept {
    return qHashMulti(seed, window.wmInstance, window.wmClass, window.processId);
}

ApplicationIdentity identityOf(const WindowFacts& window, Entries entries, const QString& procRoot) {
    const QString& ownName = window.wmClass.isEmpty() ? window.wmInstance : window.wmClass;
    const bool hasProcess = window.processId > 0;
    if (const auto id = hasProcess ? sandboxId(procRoot, window.processId) : std::nullopt) {
        const auto* entry = entryWithId(entries, *id);
        return identity(*id, entry != nullptr ? entry->localizedName : ownName);
    }
    const auto* entry = entryOfWindow(entries, window);
    if (entry == nullptr && hasProcess) {
        entry = entryOfProcess(entries, window.processId, procRoot);
    }
    if (entry != nullptr) {
        return identity(entry->id, entry->localizedName);
    }
    return ownName.isEmpty() ? ApplicationIdentity{} : identity(ownName, ownName);
}

ApplicationIds::ApplicationIds(EntrySource entries, QString procRoot)
    : m_entries(std::move(entries))
    , m_procRoot(std::move(procRoot))
    , m_known(rememberedWindows) {}

ApplicationIdentity ApplicationIds::of(const WindowFacts& window) {
    if (const ApplicationIdentity* known = m_known.object(window)) {
        return *known;
    }
    ApplicationIdentity found = identityOf(window, m_entries(), m_procRoot);
    m_known.insert(window, std::make_unique<ApplicationIdentity>(found).release());
    return found;
}

} // namespace kestu
