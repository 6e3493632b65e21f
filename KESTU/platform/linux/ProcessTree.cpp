// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ProcessTree.h"

#include <QFile>

namespace kestu {

namespace {

QString processPath(const QString& procRoot, std::int64_t processId, QStringView name) {
    return QStringLiteral("%1/%2/%3").arg(procRoot, QString::number(processId), name);
}

} // namespace

QByteArray processFile(const QString& procRoot, std::int64_t processId, QStringView name) {
    QFile file(processPath(procRoot, processId, name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::optional<std::int64_t> parentProcess(const QString& procRoot, std::int64_t processId) {
    // "4711 (name) S 4710 ...": the name may hold blanks and brackets, the fields after it do not.
    const QByteArray line = processFile(procRoot, processId, u"stat");
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 1).simplified().split(' ');
    const std::int64_t parent = fields.size() > 1 ? fields.at(1).toLongLong() : 0;
    return parent > 0 ? std::optional(parent) : std::nullopt;
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

QString executableOf(const QString& procRoot, std::int64_t processId) {
    constexpr QStringView replaced = u" (deleted)";
    QString path = QFile::symLinkTarget(processPath(procRoot, processId, u"exe"));
    if (path.endsWith(replaced)) {
        path.chop(replaced.size());
    }
    return path;
}

} // namespace kestu
