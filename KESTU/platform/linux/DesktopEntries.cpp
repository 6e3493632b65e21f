// SPDX-License-Identifier: GPL-3.0-or-later
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include "platform/linux/DesktopEntries.h"
#include "platform/linux/RunningProgram.h"

#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <memory>
#include <tuple>

namespace kestu {
namespace {

struct ListRelease {
    void operator()(GList* list) const { g_list_free_full(list, g_object_unref); }
};

struct ArgumentsRelease {
    void operator()(gchar** arguments) const { g_strfreev(arguments); }
};

/// The command line is parted here: the library's own "executable" ends at the first blank, inside of quotes
/// too.
QString windowProgram(GDesktopAppInfo* info) {
    const char* commandLine = g_app_info_get_commandline(G_APP_INFO(info));
    if (commandLine == nullptr || g_desktop_app_info_get_boolean(info, "Terminal") != FALSE) {
        return {};
    }
    gchar** parsed = nullptr;
    if (g_shell_parse_argv(commandLine, nullptr, &parsed, nullptr) == FALSE) {
        return {};
    }
    const std::unique_ptr<gchar*, ArgumentsRelease> arguments{parsed};
    QStringList words;
    for (gchar** argument = parsed; *argument != nullptr; ++argument) {
        words << QFile::decodeName(*argument);
    }
    const QString program = startedProgram(words);
    const QFileInfo file(program);
    return (file.isAbsolute() ? file : QFileInfo(QStandardPaths::findExecutable(program)))
        .canonicalFilePath();
}

DesktopEntry entryOf(GDesktopAppInfo* desktopInfo) {
    GAppInfo* info = G_APP_INFO(desktopInfo);
    QString id = QString::fromUtf8(g_app_info_get_id(info));
    if (id.endsWith(u".desktop")) {
        id.chop(QStringView(u".desktop").size());
    }
    return {
        .id = std::move(id),
        .localizedName = QString::fromUtf8(g_app_info_get_name(info)),
        .startupWmClass = QString::fromUtf8(g_desktop_app_info_get_startup_wm_class(desktopInfo)),
        .executable = windowProgram(desktopInfo),
        .noDisplay = g_desktop_app_info_get_nodisplay(desktopInfo) != FALSE,
    };
}

} // namespace

std::vector<DesktopEntry> installedDesktopEntries() {
    const std::unique_ptr<GList, ListRelease> applications{g_app_info_get_all()};
    std::vector<DesktopEntry> entries;
    for (const GList* link = applications.get(); link != nullptr; link = link->next) {
        if (G_IS_DESKTOP_APP_INFO(link->data)) {
            entries.push_back(entryOf(G_DESKTOP_APP_INFO(link->data)));
        }
    }
    std::ranges::sort(entries, {},
                      [](const DesktopEntry& entry) { return std::tie(entry.noDisplay, entry.id); });
    return entries;
}

} // namespace kestu
