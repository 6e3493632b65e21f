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
    const bool isWritten = file.open(QIODevice::WriteOnly) &&
                           file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
                           file.write(contents) == contents.size() && file.commit();
    if (!isWritten) {
        fail(file.errorString());
    }
}

} // namespace kestu
