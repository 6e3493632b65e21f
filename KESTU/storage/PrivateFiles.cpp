// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/PrivateFiles.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestu {
namespace {

void closeToOthers(const QString& path, mode_t mode) {
    // A refusal is no reason to keep the user from the records; what matters then fails at opening.
    [[maybe_unused]] const int ignored = ::chmod(QFile::encodeName(path).constData(), mode);
}

} // namespace

PrivateCreation::PrivateCreation()
    : m_before(::umask(S_IRWXG | S_IRWXO)) {}

PrivateCreation::~PrivateCreation() {
    ::umask(m_before);
}

void makeFolderPrivate(const QString& path) {
    closeToOthers(path, S_IRWXU);
}

void makeFilePrivate(const QString& path) {
    closeToOthers(path, S_IRUSR | S_IWUSR);
}

bool syncToDisk(const QString& path) {
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    const bool isSynced = ::fsync(file) == 0;
    ::close(file);
    return isSynced;
}

} // namespace kestu
