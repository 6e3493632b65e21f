// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/InhibitorOwner.h"

#include "platform/linux/LaunchScope.h"
#include "platform/linux/ProcessTree.h"
#include "platform/linux/RunningProgram.h"

#include <QFileInfo>

#include <utility>

namespace kestu {
namespace {

/// Process 1 starts everything: taken as an application it would hold every inhibitor of the machine.
constexpr std::int64_t firstApplicationProcess = 2;

/// Mutter inhibits for windows of Wayland that ask it to, while they can be seen, and does not say whose they
/// are. Of what covers the screen it is its own: nothing else can be seen.
const QString waylandSpeaker = QStringLiteral("mutter");

/// Empty for an interpreter without a script, and for what runs other programs.
QString ownFile(const QString& procRoot, std::int64_t processId) {
    const QString file =
        processId >= firstApplicationProcess ? runningProgram(procRoot, processId).file : QString();
    return runsOtherPrograms(file) ? QString() : file;
}

bool shareScope(const QString& procRoot, std::int64_t one, std::int64_t other) {
    return scopeId(procRoot, one) &&
           processFile(procRoot, one, u"cgroup") == processFile(procRoot, other, u"cgroup");
}

} // namespace

InhibitorOwner::InhibitorOwner(const FrontmostApplication& front, QString procRoot,
                               const ApplicationIds::EntrySource& entries)
    : m_front(front)
    , m_procRoot(std::move(procRoot))
    , m_entrySource(entries)
    , m_file(ownFile(m_procRoot, front.processId)) {}

bool InhibitorOwner::isProcess(std::int64_t processId) {
    const std::int64_t front = m_front.processId;
    if (front < firstApplicationProcess || processId < firstApplicationProcess) {
        return false;
    }
    const auto sandbox = sandboxId(m_procRoot, front);
    if (processId == front || (sandbox && sandbox == sandboxId(m_procRoot, processId))) {
        return true;
    }
    const bool sharesScope = shareScope(m_procRoot, front, processId);
    if (isOfSameProgram(processId)) {
        return sharesScope || descendsFrom(m_procRoot, processId, front);
    }
    return sharesScope && descendsFrom(m_procRoot, front, processId) &&
           hasThisId(scopeId(m_procRoot, front).value_or(QString()));
}

bool InhibitorOwner::isNamed(const QString& name) {
    if (name == waylandSpeaker) {
        return m_front.isFullscreen;
    }
    const bool isFile = !m_file.isEmpty() && (name == m_file || name.compare(QFileInfo(m_file).fileName(),
                                                                             Qt::CaseInsensitive) == 0);
    return m_front.bundleId && (isFile || hasThisId(name));
}

bool InhibitorOwner::isOfSameProgram(std::int64_t processId) const {
    return !m_file.isEmpty() && m_file == ownFile(m_procRoot, processId);
}

bool InhibitorOwner::hasThisId(const QString& name) {
    if (name.isEmpty() || !m_front.bundleId) {
        return false;
    }
    if (!m_entries) {
        m_entries = m_entrySource();
    }
    return applicationIdNamed(name, *m_entries).compare(*m_front.bundleId, Qt::CaseInsensitive) == 0;
}

} // namespace kestu
