// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Files.h"

#include <QDir>
#include <QFileInfo>

#include <stdexcept>

namespace kestu::test {

void putFile(const QString& path, const QByteArray& contents) {
    QFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(contents) != contents.size() || !file.flush()) {
        throw std::runtime_error("could not write " + path.toStdString());
    }
}

QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace kestu::test
