// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/AtomicFile.h"

#include <QSaveFile>

namespace kestu {
namespace {

/// A disk that runs full takes a part first; only the next write says why it takes no more.
bool writeAll(QIODevice& device, QByteArrayView contents) {
    while (!contents.isEmpty()) {
        const qint64 written = device.write(contents.data(), contents.size());
        if (written <= 0) {
            return false;
        }
        contents = contents.sliced(written);
    }
    return true;
}

} // namespace

std::optional<QString> replaceFile(const QString& path, const QByteArray& contents,
                                   std::optional<QFileDevice::Permissions> permissions) {
    QSaveFile file(path);
    // Unbuffered: what a buffer cannot write to a full disk is noticed too late, and half a file is put in
    // the place of the whole one.
    const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                           (!permissions || file.setPermissions(*permissions)) && writeAll(file, contents) &&
                           file.commit();
    return isWritten ? std::nullopt : std::optional(file.errorString());
}

} // namespace kestu
