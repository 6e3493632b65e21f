// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LaunchScope.h"

#include "platform/linux/ProcessTree.h"
#include "platform/linux/RunningProgram.h"

#include <QRegularExpression>
#include <QStringList>

namespace kestu {
namespace {

struct Scope {
    QString launcher; // "flatpak", "gnome", …; may be empty
    QString id;
    QString instance; // most often the first process's id; empty for a service
};

struct SnapScope {
    QString name;
    QString application;
};

std::optional<QString> flatpakId(const QString& procRoot, std::int64_t processId) {
    const QByteArray info = processFile(procRoot, processId, u"root/.flatpak-info");
    bool inApplication = false;
    for (const QByteArray& line : info.split('\n')) {
        if (line.startsWith('[')) {
            inApplication = line.trimmed() == "[Application]";
        } else if (inApplication && line.startsWith("name=")) {
            return QString::fromUtf8(line.mid(qsizetype{5})).trimmed();
        }
    }
    return std::nullopt;
}

/// systemd writes bytes that would part a unit's name as "\x2d".
QString unescaped(const QString& unitPart) {
    QByteArray text = unitPart.toUtf8();
    for (qsizetype at = 0; (at = text.indexOf("\\x", at)) >= 0; ++at) {
        bool isNumber = false;
        const int byte = text.mid(at + 2, 2).toInt(&isNumber, 16);
        if (isNumber) {
            text.replace(at, 4, QByteArray(1, static_cast<char>(byte)));
        }
    }
    return QString::fromUtf8(text);
}

/// The scope of an application unit: "app-LAUNCHER-ID-RANDOM.scope", "app-LAUNCHER-ID@RANDOM.service", the
/// launcher left out in some.
std::optional<Scope> applicationScope(const QString& unit) {
    static const QRegularExpression form(
        QStringLiteral(R"(^app-(?:([^-@]+)-)?([^-@]+)(?:-([^-@]+)\.scope|(?:@[^@]*)?\.service)$)"));
    const auto match = form.match(unit);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    return Scope{.launcher = unescaped(match.captured(1)),
                 .id = unescaped(match.captured(2)),
                 .instance = match.captured(3)};
}

std::optional<SnapScope> snapScope(const QString& unit) {
    static const QRegularExpression form(
        QStringLiteral(R"(^snap\.([^.]+)\.([^.]+)[-.][0-9a-f]{8}(?:-[0-9a-f]{4}){3}-[0-9a-f]{12}\.scope$)"));
    const auto match = form.match(unit);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    return SnapScope{.name = unescaped(match.captured(1)), .application = unescaped(match.captured(2))};
}

/// Classic Snaps run the system's programs, which then stand in the Snap's scope.
bool liesInSnap(const QString& procRoot, std::int64_t processId, const QString& snap) {
    const QString program = executableOf(procRoot, processId);
    const QString script = runningProgram(procRoot, processId).file;
    for (const QString& root : {QStringLiteral("/snap/"), QStringLiteral("/var/lib/snapd/snap/")}) {
        const QString folder = root + snap + u'/';
        if (program.startsWith(folder) || script.startsWith(folder)) {
            return true;
        }
    }
    return false;
}

/// The names of the units around the process, innermost first.
QStringList unitsAround(const QByteArray& cgroups) {
    QStringList units;
    for (const QByteArray& line : cgroups.split('\n')) {
        QStringList path = QString::fromUtf8(line).split(u'/', Qt::SkipEmptyParts);
        while (!path.isEmpty()) {
            units.append(path.takeLast());
        }
    }
    return units;
}

std::optional<Scope> scopeAround(const QByteArray& cgroups) {
    for (const QString& unit : unitsAround(cgroups)) {
        if (auto scope = applicationScope(unit)) {
            return scope;
        }
    }
    return std::nullopt;
}

bool isStartedByService(const QString& procRoot, std::int64_t processId) {
    return processFile(procRoot, processId, u"environ")
        .split('\0')
        .contains("SYSTEMD_EXEC_PID=" + QByteArray::number(static_cast<qlonglong>(processId)));
}

/// Whose parent has ended is given to the session's manager, which is outside of every scope: a parent there
/// says nothing. Other parents outside of the scope have put the process into it.
bool isPutIntoScope(const QString& procRoot, std::int64_t processId, const QByteArray& cgroups) {
    const auto parent = parentProcess(procRoot, processId);
    if (!parent || *parent == 1) {
        return false;
    }
    const QByteArray above = processFile(procRoot, *parent, u"cgroup");
    return !above.isEmpty() && above != cgroups && unitsAround(above).value(0) != u"init.scope";
}

} // namespace

std::optional<QString> sandboxId(const QString& procRoot, std::int64_t processId) {
    if (auto id = flatpakId(procRoot, processId)) {
        return id;
    }
    const QByteArray cgroups = processFile(procRoot, processId, u"cgroup");
    for (const QString& unit : unitsAround(cgroups)) {
        const auto snap = snapScope(unit);
        if (snap && liesInSnap(procRoot, processId, snap->name)) {
            return snap->name + u'_' + snap->application;
        }
    }
    // Where the process's root is closed to us, its program is too.
    const auto scope = scopeAround(cgroups);
    const bool isFlatpak =
        scope && scope->launcher == u"flatpak" && executableOf(procRoot, processId).isEmpty();
    return isFlatpak ? std::optional(scope->id) : std::nullopt;
}

std::optional<QString> scopeId(const QString& procRoot, std::int64_t processId) {
    const auto scope = scopeAround(processFile(procRoot, processId, u"cgroup"));
    return scope ? std::optional(scope->id) : std::nullopt;
}

std::optional<QString> launchedId(const QString& procRoot, std::int64_t processId) {
    const QByteArray cgroups = processFile(procRoot, processId, u"cgroup");
    const auto scope = scopeAround(cgroups);
    if (!scope) {
        return std::nullopt;
    }
    const bool isNamed = scope->instance == QString::number(processId);
    const bool isFirst = scope->instance.isEmpty() ? isStartedByService(procRoot, processId)
                                                   : isPutIntoScope(procRoot, processId, cgroups);
    return isNamed || isFirst ? std::optional(scope->id) : std::nullopt;
}

} // namespace kestu
