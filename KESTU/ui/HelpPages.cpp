// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/HelpPages.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace kestu {
namespace {

QString folder() {
    const QDir program(QCoreApplication::applicationDirPath());
    const QString installed = QDir::cleanPath(program.filePath(QStringLiteral(KESTU_HELP_FROM_PROGRAM)));
    const QString built = program.filePath(QStringLiteral("help"));
    return !QFileInfo::exists(installed) && QFileInfo::exists(built) ? built : installed;
}

QString pathOf(HelpPage page) {
    switch (page) {
    case HelpPage::support:
        return QStringLiteral("support/");
    case HelpPage::terms:
        return QStringLiteral("terms/");
    case HelpPage::start:
        break;
    }
    return QStringLiteral("start/");
}

} // namespace

QString fileOf(HelpPage page) {
    // Not the folder alone: of a file's address browsers show its list.
    return folder() + u'/' + pathOf(page) + QStringLiteral("index.html");
}

} // namespace kestu
