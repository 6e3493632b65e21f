// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ApplicationResolver.h"

#include "platform/linux/LaunchScope.h"
#include "platform/linux/ProcessTree.h"
#include "platform/linux/ProductTable.h"
#include "platform/linux/RunningProgram.h"

#include <QFileInfo>

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

/// Of several entries of one program the one with the given name is meant, the others are its settings and
/// the like. Absent when that leaves none or two: neither is surely the one.
const DesktopEntry* oneEntryWhere(Entries entries, const std::function<bool(const DesktopEntry&)>& matches,
                                  const QStringList& names) {
    const auto isNamed = [&](const DesktopEntry& entry) {
        return names.contains(entry.id.sliced(entry.id.lastIndexOf(u'.') + 1), Qt::CaseInsensitive);
    };
    const auto isNamedMatch = [&](const DesktopEntry& entry) { return matches(entry) && isNamed(entry); };
    if (std::ranges::count_if(entries, matches) == 1) {
        return entryWhere(entries, matches);
    }
    return std::ranges::count_if(entries, isNamedMatch) == 1 ? entryWhere(entries, isNamedMatch) : nullptr;
}

const DesktopEntry* entryOfFile(Entries entries, const QString& file, const QStringList& names) {
    return oneEntryWhere(
        entries, [&](const DesktopEntry& entry) { return !file.isEmpty() && entry.executable == file; },
        names);
}

const DesktopEntry* entryOfFileName(Entries entries, const QString& name) {
    const auto startsIt = [&](const DesktopEntry& entry) {
        return !runsOtherPrograms(name) && entry.executable.endsWith(u'/' + name, Qt::CaseInsensitive);
    };
    return oneEntryWhere(entries, startsIt, {name});
}

/// The scope tells two entries of one program apart that have other names.
const DesktopEntry* entryOfScope(Entries entries, const QString& file, const QString& scope) {
    const auto* entry = entryWithId(entries, scope);
    return entry != nullptr && !file.isEmpty() && entry->executable == file ? entry : nullptr;
}

bool hasClass(const WindowFacts& window) {
    return !window.wmClass.isEmpty() || !window.wmInstance.isEmpty();
}

/// For a window that names its class, a program that runs others says nothing; without a class it is all
/// there is.
const DesktopEntry* entryOfProgram(Entries entries, const RunningProgram& program, const WindowFacts& window,
                                   const QString& procRoot) {
    if (window.processId <= 0) {
        return nullptr;
    }
    const DesktopEntry* entry = nullptr;
    if (!hasClass(window) || !runsOtherPrograms(program.file)) {
        const QStringList names =
            hasClass(window) ? QStringList{window.wmClass, window.wmInstance} : QStringList{program.name};
        entry = entryOfFile(entries, program.file, names);
    }
    if (entry == nullptr) {
        entry = entryOfScope(entries, program.file, scopeId(procRoot, window.processId).value_or(QString()));
    }
    if (entry == nullptr) {
        entry = entryWithId(entries, launchedId(procRoot, window.processId).value_or(QString()));
    }
    return entry != nullptr || hasClass(window) ? entry : entryOfWindow(entries, {.wmClass = program.name});
}

ApplicationIdentity identity(const QString& id, const QString& name) {
    const QString shown = shellPartName(id).value_or(name.isEmpty() ? id : name);
    return {.bundleId = productId(id).value_or(id), .localizedName = shown};
}

/// A file manager's desktop is not the file manager: to exclude the one must not exclude the other.
ApplicationIdentity desktopOf(const ApplicationIdentity& application) {
    QString id = application.bundleId.value_or(QString());
    if (!id.endsWith(u"desktop", Qt::CaseInsensitive)) {
        id += id.isEmpty() ? QStringLiteral("desktop") : QStringLiteral("-desktop");
    }
    return {.bundleId = id, .localizedName = QStringLiteral("デスクトップ")};
}

/// The form that the bus allows for a name; programs can set anything.
bool isApplicationId(const QString& text) {
    constexpr qsizetype longest = 255;
    const auto isAllowed = [](QChar c) {
        return (c < u'\x80' && c.isLetterOrNumber()) || c == u'.' || c == u'-' || c == u'_';
    };
    return text.size() <= longest && text.contains(u'.') && std::ranges::all_of(text, isAllowed);
}

ApplicationIdentity applicationOf(const WindowFacts& window, Entries entries, const QString& procRoot) {
    const RunningProgram program =
        window.processId > 0 ? runningProgram(procRoot, window.processId) : RunningProgram();
    QString ownName = window.wmClass.isEmpty() ? window.wmInstance : window.wmClass;
    if (ownName.isEmpty()) {
        ownName = program.name;
    }
    if (const auto id = window.processId > 0 ? sandboxId(procRoot, window.processId) : std::nullopt) {
        const auto* entry = entryWithId(entries, *id);
        return identity(*id, entry != nullptr ? entry->localizedName : ownName);
    }
    const QString gtkId = isApplicationId(window.gtkApplicationId) ? window.gtkApplicationId : QString();
    const auto* entry = entryWithId(entries, gtkId);
    entry = entry != nullptr ? entry : entryOfWindow(entries, window);
    entry = entry != nullptr ? entry : entryOfProgram(entries, program, window, procRoot);
    if (entry != nullptr) {
        return identity(entry->id, entry->localizedName);
    }
    // Not the toolkit's id before the class: dialogs of the same program do not have it.
    const QString& id = hasClass(window) || gtkId.isEmpty() ? ownName : gtkId;
    return id.isEmpty() ? ApplicationIdentity{} : identity(id, hasClass(window) ? ownName : id);
}

} // namespace

size_t qHash(const WindowFacts& window, size_t seed) noexcept {
    return qHashMulti(seed, window.wmInstance, window.wmClass, window.gtkApplicationId, window.isDesktop,
                      window.processId);
}

ApplicationIdentity identityOf(const WindowFacts& window, Entries entries, const QString& procRoot) {
    const ApplicationIdentity application = applicationOf(window, entries, procRoot);
    return window.isDesktop ? desktopOf(application) : application;
}

QString applicationIdNamed(const QString& name, Entries entries) {
    const auto suffix = QStringLiteral(".desktop");
    const QString bare = name.endsWith(suffix, Qt::CaseInsensitive) ? name.chopped(suffix.size()) : name;
    const auto* entry = entryOfFile(entries, bare, {QFileInfo(bare).fileName()});
    if (entry == nullptr && !bare.isEmpty() && !bare.contains(u'/')) {
        entry = entryOfWindow(entries, {.wmClass = bare});
        entry = entry != nullptr ? entry : entryOfFileName(entries, bare);
    }
    const QString id = entry != nullptr ? entry->id : bare;
    return productId(id).value_or(id);
}

ApplicationIds::ApplicationIds(EntrySource entries, QString procRoot)
    : m_entries(std::move(entries))
    , m_procRoot(std::move(procRoot))
    , m_known(rememberedWindows) {}

ApplicationIdentity ApplicationIds::of(const WindowFacts& window) {
    const Asked asked{window, startOf(m_procRoot, window.processId)};
    if (const ApplicationIdentity* known = m_known.object(asked)) {
        return *known;
    }
    ApplicationIdentity found = identityOf(window, m_entries(), m_procRoot);
    m_known.insert(asked, std::make_unique<ApplicationIdentity>(found).release());
    return found;
}

} // namespace kestu
