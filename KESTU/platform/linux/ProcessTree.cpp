// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ProcessTree.h"

#include <QFile>

namespace kestu {

namespace {

QString processPath(const QString& procRoot, std::int64_t processId, QStringView name) {
    return QStringLiteral("%1/%2/%3").arg(procRoot, QString::number(processId), name);
}

/// The numeric field `index` after the name; 0 when there is none.
std::int64_t statField(const QString& procRoot, std::int64_t processId, qsizetype index) {
    // "4711 (name) S 4710 ...": the name may hold blanks and brackets, the fields after it do not.
    const QByteArray line = processFile(procRoot, processId, u"stat");
    return line.mid(line.lastIndexOf(')') + 1).simplified().split(' ').value(index).toLongLong();
}

} // namespace

QByteArray processFile(const QString& procRoot, std::int64_t processId, QStringView name) {
    QFile file(processPath(procRoot, processId, name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::optional<std::int64_t> parentProcess(const QString& procRoot, std::int64_t processId) {
    const std::int64_t parent = statField(procRoot, processId, 1);
    return parent > 0 ? std::optional(parent) : std::nullopt;
}

std::int64_t startOf(const QString& procRoot, std::int64_t processId) {
    return statField(procRoot, processId, 19);
}

bool descendsFrom(const QString& procRoot, std::int64_t processId, std::int64_t ancestor) {
    // Process ids are reused while we walk: the bound ends a walk that such a moment sent in circles.
    constexpr int deepestTree = 64;
    std::optional<std::int64_t> current = processId;
    for (int depth = 0; current && depth < deepestTree; ++depth) {
        if (*current == ancestor) {
            return true;
        }
        current = parentProcess(procRoot, *current);
    }
    return false;
}

QString linkTarget(const QString& procRoot, std::int64_t processId, QStringView name) {
    return QFile::symLinkTarget(processPath(procRoot, processId, name));
}

QString executableOf(const QString& procRoot, std::int64_t processId) {
    constexpr QStringView replaced = u" (deleted)";
    QString path = linkTarget(procRoot, processId, u"exe");
    if (path.endsWith(replaced)) {
        path.chop(replaced.size());
    }
    return path;
}

} // namespace kestu
