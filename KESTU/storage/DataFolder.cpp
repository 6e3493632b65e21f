// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/DataFolder.h"

#include "storage/PrivateFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringBuilder>

#include <filesystem>
#include <system_error>

namespace kestu {
namespace {

std::filesystem::path pathOf(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

/// Moves what is at `from`, unless the name `to` is taken, be it by a link that leads nowhere: nothing of
/// the user's is ever replaced.
void moveWhereFree(const QString& from, const QString& to) {
    std::error_code ignored; // what cannot be moved stays where it was, whole; the store starts without it
    const bool isTaken = std::filesystem::exists(std::filesystem::symlink_status(pathOf(to), ignored));
    if (QFileInfo::exists(from) && !isTaken) {
        std::filesystem::rename(pathOf(from), pathOf(to), ignored);
    }
}

/// An installation under the former name left its folder and file names; both become ours.
void carryOverFormerInstallation(const QString& base, const QString& folder) {
    const QString formerFolder = base % u"/Orvinta";
    if (!QFileInfo::exists(formerFolder)) {
        return;
    }
    moveWhereFree(formerFolder, folder);
    for (const auto suffix : {QStringView(), QStringView(u"-wal"), QStringView(u"-shm")}) {
        moveWhereFree(folder % u"/orvinta.sqlite" % suffix, folder % u"/kestu.sqlite" % suffix);
    }
}

} // namespace

QString dataFolder(const QString& base) {
    const PrivateCreation forTheOwner;
    QString folder = dataFolderPath(base);
    carryOverFormerInstallation(base, folder);
    [[maybe_unused]] const bool ignored = QDir().mkpath(folder);
    makeFolderPrivate(folder);
    return folder;
}

QString dataFolderPath(const QString& base) {
    return base % u"/KESTU";
}

QString userDataHome() {
    // Not QStandardPaths: it takes a relative path too, which the desktop's rules say to ignore, and the
    // records would then lie wherever the program was started.
    QString home = qEnvironmentVariable("XDG_DATA_HOME");
    return QDir::isAbsolutePath(home) ? home : QDir::homePath() % u"/.local/share";
}

} // namespace kestu
