// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/UserFile.h"

#include "platform/PlatformError.h"

#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <filesystem>
#include <system_error>

namespace kestu {
namespace {

/// Makes the folder where it is missing; says why it could not.
std::error_code makePrivateFolder(const std::filesystem::path& folder) {
    std::error_code error;
    if (std::filesystem::create_directories(folder, error)) {
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all, error);
    }
    return error;
}

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

QString userConfigHome() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
}

void replaceUserFile(const QString& path, const QByteArray& contents, const QString& failure) {
    const auto fail = [&](const QString& reason) {
        throw PlatformError(failure + QStringLiteral("：") + reason);
    };
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    if (const auto error = makePrivateFolder(folder.toStdString())) {
        fail(QString::fromLocal8Bit(error.message()));
    }
    QSaveFile file(path);
    // Unbuffered: what a buffer cannot write to a full disk is noticed too late, and half a file is put in
    // the place of the whole one.
    const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                           file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
                           writeAll(file, contents) && file.commit();
    if (!isWritten) {
        fail(file.errorString());
    }
}

} // namespace kestu
