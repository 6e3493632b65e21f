// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ProductTable.h"

#include <QStringView>

#include <algorithm>
#include <array>
#include <span>

namespace kestu {
namespace {

struct Entry {
    QStringView spelling; // in any case
    QStringView meaning;
};

// Desktop entry ids and window classes of vendor and distribution packages, then Flatpak ids (a reversed
// host name) and Snap ids ("snap_application").
constexpr auto products = std::to_array<Entry>({
    // Browsers whose page address capture asks for. Test channels count as their browser; Chrome's
    // unstable one has an id of its own there.
    {u"google-chrome", u"com.google.Chrome"},
    {u"google-chrome-stable", u"com.google.Chrome"},
    {u"google-chrome-beta", u"com.google.Chrome"},
    {u"com.google.Chrome", u"com.google.Chrome"},
    {u"google-chrome-unstable", u"com.google.Chrome.canary"},
    {u"com.google.ChromeDev", u"com.google.Chrome.canary"},
    {u"microsoft-edge", u"com.microsoft.edgemac"},
    {u"microsoft-edge-beta", u"com.microsoft.edgemac"},
    {u"microsoft-edge-dev", u"com.microsoft.edgemac"},
    {u"com.microsoft.Edge", u"com.microsoft.edgemac"},
    {u"com.microsoft.EdgeDev", u"com.microsoft.edgemac"},
    {u"brave-browser", u"com.brave.Browser"},
    {u"brave-browser-beta", u"com.brave.Browser"},
    {u"brave-browser-nightly", u"com.brave.Browser"},
    {u"com.brave.Browser", u"com.brave.Browser"},
    {u"brave_brave", u"com.brave.Browser"},
    {u"vivaldi", u"com.vivaldi.Vivaldi"},
    {u"vivaldi-stable", u"com.vivaldi.Vivaldi"},
    {u"vivaldi-snapshot", u"com.vivaldi.Vivaldi"},
    {u"com.vivaldi.Vivaldi", u"com.vivaldi.Vivaldi"},

    // Browsers that this system adds to those.
    {u"firefox", u"org.mozilla.firefox"},
    {u"firefox-esr", u"org.mozilla.firefox"},
    {u"org.mozilla.firefox", u"org.mozilla.firefox"},
    {u"firefox_firefox", u"org.mozilla.firefox"},
    {u"chromium", u"org.chromium.Chromium"},
    {u"chromium-browser", u"org.chromium.Chromium"},
    {u"org.chromium.Chromium", u"org.chromium.Chromium"},
    {u"chromium_chromium", u"org.chromium.Chromium"},

    // Meetings keep the user present. The vendor's own Teams is the old one; the program that wraps the
    // web client is the new one.
    {u"zoom", u"us.zoom.xos"},
    {u"us.zoom.Zoom", u"us.zoom.xos"},
    {u"zoom-client_zoom-client", u"us.zoom.xos"},
    {u"teams", u"com.microsoft.teams"},
    {u"Microsoft Teams - Preview", u"com.microsoft.teams"},
    {u"com.microsoft.Teams", u"com.microsoft.teams"},
    {u"teams-for-linux", u"com.microsoft.teams2"},
    {u"com.github.IsmaelMartinez.teams_for_linux", u"com.microsoft.teams2"},
    {u"teams-for-linux_teams-for-linux", u"com.microsoft.teams2"},
    {u"webex", u"com.webex.meetingmanager"},
    {u"discord", u"com.hnc.Discord"},
    {u"com.discordapp.Discord", u"com.hnc.Discord"},
    {u"discord_discord", u"com.hnc.Discord"},

    // Players keep the user present too.
    {u"vlc", u"org.videolan.vlc"},
    {u"org.videolan.VLC", u"org.videolan.vlc"},
    {u"vlc_vlc", u"org.videolan.vlc"},
    {u"mpv", u"io.mpv"},
    {u"io.mpv.Mpv", u"io.mpv"},

    // Lockers and screen savers: nobody works in them, so capture never records this id.
    {u"xscreensaver", u"com.apple.ScreenSaver.Engine"},
    {u"i3lock", u"com.apple.ScreenSaver.Engine"},
    {u"i3lock-color", u"com.apple.ScreenSaver.Engine"},
    {u"betterlockscreen", u"com.apple.ScreenSaver.Engine"},
    {u"light-locker", u"com.apple.ScreenSaver.Engine"},
    {u"xsecurelock", u"com.apple.ScreenSaver.Engine"},
    {u"swaylock", u"com.apple.ScreenSaver.Engine"},
    {u"slock", u"com.apple.ScreenSaver.Engine"},
    {u"gnome-screensaver", u"com.apple.ScreenSaver.Engine"},
    {u"mate-screensaver", u"com.apple.ScreenSaver.Engine"},
    {u"mate-screensaver-dialog", u"com.apple.ScreenSaver.Engine"},
    {u"cinnamon-screensaver", u"com.apple.ScreenSaver.Engine"},
    {u"xfce4-screensaver", u"com.apple.ScreenSaver.Engine"},
    {u"xfce4-screensaver-dialog", u"com.apple.ScreenSaver.Engine"},
    {u"ukui-screensaver", u"com.apple.ScreenSaver.Engine"},
    {u"kscreenlocker_greet", u"com.apple.ScreenSaver.Engine"},
    {u"hyprlock", u"com.apple.ScreenSaver.Engine"},
    {u"gtklock", u"com.apple.ScreenSaver.Engine"},
    {u"waylock", u"com.apple.ScreenSaver.Engine"},
    {u"xlock", u"com.apple.ScreenSaver.Engine"},
    {u"xtrlock", u"com.apple.ScreenSaver.Engine"},
    {u"physlock", u"com.apple.ScreenSaver.Engine"},

    // Greeters are the login window, which capture never records either.
    {u"lightdm-gtk-greeter", u"com.apple.loginwindow"},
    {u"slick-greeter", u"com.apple.loginwindow"},
    {u"arctica-greeter", u"com.apple.loginwindow"},
    {u"unity-greeter", u"com.apple.loginwindow"},
    {u"ukui-greeter", u"com.apple.loginwindow"},
    {u"io.elementary.greeter", u"com.apple.loginwindow"},
    {u"sddm-greeter", u"com.apple.loginwindow"},
    {u"sddm-greeter-qt6", u"com.apple.loginwindow"},
    {u"lxdm-greeter-gtk", u"com.apple.loginwindow"},
    {u"gdm-greeter", u"com.apple.loginwindow"},

    // The desktop itself, where it names itself in two ways.
    {u"org.xfce.xfdesktop", u"Xfdesktop"},
});

constexpr auto shellParts = std::to_array<Entry>({
    {u"xfdesktop", u"デスクトップ"},
    {u"org.xfce.xfdesktop", u"デスクトップ"},
    {u"nemo-desktop", u"デスクトップ"},
    {u"plasmashell", u"デスクトップ"},
    {u"org.kde.plasmashell", u"デスクトップ"},
    {u"xfce4-panel", u"パネル"},
    {u"wrapper-1.0", u"パネル"}, // a plugin of Xfce's panel in a process of its own
    {u"wrapper-2.0", u"パネル"},
    {u"mate-panel", u"パネル"},
    {u"lxpanel", u"パネル"},
    {u"lxqt-panel", u"パネル"},
    {u"tint2", u"パネル"},
});

std::optional<QString> find(std::span<const Entry> table, const QString& spelling) {
    const auto entry = std::ranges::find_if(table, [&](const Entry& candidate) {
        return spelling.compare(candidate.spelling, Qt::CaseInsensitive) == 0;
    });
    return entry != table.end() ? std::optional(entry->meaning.toString()) : std::nullopt;
}

} // namespace

std::optional<QString> shellPartName(const QString& id) {
    return find(shellParts, id);
}

std::optional<QString> productId(const QString& spelling) {
    return find(products, spelling);
}

} // namespace kestu
