// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/AutostartEntry.h"

#include "platform/PlatformError.h"
#include "platform/linux/UserFile.h"

#include <QFile>
#include <QFileInfo>
#include <QMap>

namespace kestu {
namespace {

/// The keys of the group "Desktop Entry"; empty when the file cannot be read.
QMap<QString, QString> desktopEntryKeys(const QString& path) {
    QFile file(path);
    QMap<QString, QString> keys;
    if (!file.open(QIODevice::ReadOnly)) {
        return keys;
    }
    bool inEntry = false;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        const qsizetype equals = line.indexOf(u'=');
        if (line.startsWith(u'[')) {
            inEntry = line.trimmed() == u"[Desktop Entry]";
        } else if (inEntry && !line.startsWith(u'#') && equals > 0) {
            keys.insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
        }
    }
    return keys;
}

/// One argument of an Exec key: a percent sign would begin a field code, a quoted argument escapes four
/// characters, and a value in the file escapes the backslash once more.
QString execArgument(QString argument) {
    argument.replace(u'%', QStringLiteral("%%"));
    for (const char16_t special : {u'\\', u'"', u'`', u'$'}) {
        argument.replace(QChar(special), QString(u'\\') + QChar(special));
    }
    argument.replace(u'\\', QStringLiteral("\\\\")).replace(u'\n', QStringLiteral("\\n"));
    return u'"' + argument + u'"';
}

} // namespace

AutostartEntry::AutostartEntry(const QString& folder, QString executable)
    : m_path(folder + QStringLiteral("/kestu.desktop"))
    , m_executable(std::move(executable)) {}

bool AutostartEntry::isEnabled() const {
    const auto keys = desktopEntryKeys(m_path);
    return keys.contains(QStringLiteral("Exec")) && keys.value(QStringLiteral("Hidden")) != u"true" &&
           keys.value(QStringLiteral("X-GNOME-Autostart-enabled")) != u"false";
}

void AutostartEntry::enable() {
    // A link is taken away first: entries are switched off by a link to /dev/null, and another target is
    // somebody else's file.
    if (QFileInfo(m_path).isSymLink()) {
        disable();
    }
    const QString entry = QStringLiteral("[Desktop Entry]\n"
                                         "Type=Application\n"
                                         "Name=KESTU\n"
                                         "Exec=%1 --background\n"
                                         "Terminal=false\n"
                                         "X-GNOME-Autostart-enabled=true\n")
                              .arg(execArgument(m_executable));
    replaceUserFile(m_path, entry.toUtf8(), QStringLiteral("自動起動の項目を書き込めませんでした"));
}

void AutostartEntry::disable() {
    QFile file(m_path);
    if ((file.exists() || QFileInfo(m_path).isSymLink()) && !file.remove()) {
        throw PlatformError(QStringLiteral("自動起動の項目を削除できませんでした：") + file.errorString());
    }
}

QString userAutostartFolder() {
    return userConfigHome() + QStringLiteral("/autostart");
}

} // namespace kestu
