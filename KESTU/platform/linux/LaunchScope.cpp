// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LaunchScope.h"

#include "platform/linux/ProcessTree.h"

#include <QRegularExpression>
#include <QStringList>

namespace kestu {
namespace {

struct Scope {
    QString launcher; // "flatpak", "gnome", …; may be empty
    QString id;
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
        QStringLiteral(R"(^app-(?:([^-@]+)-)?([^-@]+)(?:-[^-@]+\.scope|(?:@[^@]*)?\.service)$)"));
    const auto match = form.match(unit);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    return Scope{.launcher = unescaped(match.captured(1)), .id = unescaped(match.captured(2))};
}

std::optional<QString> snapId(const QString& unit) {
    static const QRegularExpression form(
        QStringLiteral(R"(^snap\.([^.]+)\.([^.]+)[-.][0-9a-f]{8}(?:-[0-9a-f]{4}){3}-[0-9a-f]{12}\.scope$)"));
    const auto match = form.match(unit);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    return unescaped(match.captured(1)) + u'_' + unescaped(match.captured(2));
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

} // namespace

std::optional<QString> sandboxId(const QString& procRoot, std::int64_t processId) {
    if (auto id = flatpakId(procRoot, processId)) {
        return id;
    }
    const QByteArray cgroups = processFile(procRoot, processId, u"cgroup");
    for (const QString& unit : unitsAround(cgroups)) {
        if (auto id = snapId(unit)) {
            return id;
        }
    }
    const auto scope = scopeAround(cgroups);
    return scope && scope->launcher == u"flatpak" ? std::optional(scope->id) : std::nullopt;
}

std::optional<QString> launchedId(const QString& procRoot, std::int64_t processId) {
    const QByteArray cgroups = processFile(procRoot, processId, u"cgroup");
    const auto scope = scopeAround(cgroups);
    const auto parent = parentProcess(procRoot, processId);
    if (!scope || !parent || processFile(procRoot, *parent, u"cgroup") == cgroups) {
        return std::nullopt;
    }
    return scope->id;
}

} // namespace kestu
