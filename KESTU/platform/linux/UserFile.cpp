// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/UserFile.h"

#include "base/AtomicFile.h"
#include "platform/PlatformError.h"

#include <QFile>
#include <QFileInfo>
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
    if (const auto reason = replaceFile(path, contents, QFileDevice::ReadOwner | QFileDevice::WriteOwner)) {
        fail(*reason);
    }
}

} // namespace kestu
