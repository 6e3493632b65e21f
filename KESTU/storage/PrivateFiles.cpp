// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/PrivateFiles.h"

#include <QFile>

#include <sys/stat.h>

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

} // namespace kestu
