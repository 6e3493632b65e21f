// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ApplicationResolver.h"
#include "platform/linux/ProductTable.h"
#include "support/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::putFile;

/// A process table of the test's own.
class ProcessTree {
public:
    [[nodiscard]] QString root() const { return m_folder.path(); }

    void add(int id, const QByteArray& unit, const QString& executable, int parent = 1) {
        const QString folder = u"%1/%2/"_s.arg(root()).arg(id);
        putFile(folder + u"cgroup"_s, "0::/user.slice/user@1000.service/app.slice/" + unit + '\n');
        putFile(folder + u"stat"_s,
                QByteArray::number(id) + " (a) b (c) S " + QByteArray::number(parent) + " 7 7 0");
        QFile::link(executable, folder + u"exe"_s);
    }

    void setFlatpakInfo(int id, const QByteArray& contents) {
        putFile(u"%1/%2/root/.flatpak-info"_s.arg(root()).arg(id), contents);
    }

private:
    QTemporaryDir m_folder;
};

DesktopEntry entry(QStringView id, QStringView name, QStringView wmClass = {}, QStringView executable = {}) {
    return {.id = id.toString(),
            .localizedName = name.toString(),
            .startupWmClass = wmClass.toString(),
            .executable = executable.toString()};
}

const std::vector<DesktopEntry> entries{
    entry(u"org.gnome.Nautilus", u"ファイル", u"", u"/usr/bin/nautilus"),
    entry(u"org.gnome.Evince", u"文書ビューアー", u"", u"/usr/bin/evince"),
    entry(u"chrome-app-Default", u"カレンダー", u"crx_app", u"/opt/google/chrome/google-chrome"),
    entry(u"google-chrome", u"グーグル", u"Google-chrome", u"/opt/google/chrome/google-chrome"),
    entry(u"chromium", u"クロミウム", u"chromium", u"/usr/bin/chromium"),
    entry(u"gimp", u"画像編集", u"", u"/usr/bin/gimp-2.10"),
    entry(u"org.example.Tweaks", u"調整", u"", u"/usr/bin/python3.11"),
    entry(u"org.flathub.Draw", u"描画"),
    entry(u"firefox_firefox", u"火狐"),
    entry(u"kitty", u"端末", u"kitty", u"/usr/bin/kitty"),
    entry(u"exact", u"大小", u"CaseMatters"),
    entry(u"folded", u"小文字", u"casematters"),
};

TEST(ApplicationIdentity, FollowsTheSurestSignOfAWindow) {
    ProcessTree processes;
    processes.add(10, "app-kitty-10.scope", u"/app/bin/draw"_s);
    processes.setFlatpakInfo(10, "[Instance]\nname=wrong\n[Application]\nname=org.flathub.Draw\nruntime=r\n");
    processes.add(11, "app-flatpak-org.flathub.Unknown\\x2dOne-11.scope", u"/usr/bin/bwrap"_s);
    processes.add(12, "snap.firefox.firefox-0f3c2a1b-12ab-34cd-56ef-0123456789ab.scope", QString());
    processes.add(13, "snap.my-tool.my-app-0f3c2a1b-12ab-34cd-56ef-0123456789ab.scope/inner", QString());
    processes.add(20, "app-gnome-org.gnome.Nautilus-20.scope", u"/usr/bin/nautilus"_s);
    processes.add(21, "app-gnome-org.gnome.Nautilus-20.scope", u"/usr/bin/evince (deleted)"_s, 20);
    processes.add(22, "app-gnome-org.example.Tweaks-22.scope", u"/usr/bin/python3.11"_s);
    processes.add(23, "app-kitty@1f.service", u"/usr/bin/kitty"_s);
    processes.add(24, "app-kitty@1f.service", u"/usr/bin/python3.11"_s, 23);
    processes.add(25, "session-2.scope", u"/opt/google/chrome/google-chrome"_s);
    processes.add(26, "app-gnome-org.gnome.Nautilus-26.scope", u"/usr/bin/python3.11"_s);

    const struct {
        const char* fact;
        QStringView instance;
        QStringView wmClass;
        int processId;
        const char* identity;
    } rows[] = {
        {"Flatpak before class and cgroup", u"kitty", u"kitty", 10, "org.flathub.Draw / 描画"},
        {"Flatpak by its scope, no entry", u"u", u"Unknown", 11, "org.flathub.Unknown-One / Unknown"},
        {"Snap that is a product", u"Navigator", u"firefox", 12, "org.mozilla.firefox / 火狐"},
        {"Snap without an entry", u"x", u"Tool", 13, "my-tool_my-app / Tool"},
        {"instance before class", u"crx_app", u"Google-chrome", 25, "chrome-app-Default / カレンダー"},
        {"class", u"x", u"Google-chrome", 25, "com.google.Chrome / グーグル"},
        {"profile folder in the instance", u"chromium (/tmp/p)", u"Chromium", 0,
         "org.chromium.Chromium / クロミウム"},
        {"same case before another case", u"casematters", u"CaseMatters", 0, "folded / 小文字"},
        {"another case", u"CASEMATTERS", u"", 0, "exact / 大小"},
        {"entry id without case", u"x", u"Gimp", 0, "gimp / 画像編集"},
        {"class before scope", u"gimp", u"", 20, "gimp / 画像編集"},
        {"executable", u"files", u"Files", 20, "org.gnome.Nautilus / ファイル"},
        {"executable before inherited scope", u"evince", u"Evince", 21, "org.gnome.Evince / 文書ビューアー"},
        {"scope of an interpreted program", u"main.py", u"Main.py", 22, "org.example.Tweaks / 調整"},
        {"interpreter in another's scope", u"own", u"Own", 24, "Own / Own"},
        {"shared executable", u"x", u"Other", 25, "Other / Other"},
        {"scope before unknown class", u"x", u"Other", 26, "org.gnome.Nautilus / ファイル"},
        {"instance alone", u"lonely", u"", 0, "lonely / lonely"},
        {"product without an entry", u"zoom", u"zoom", 999, "us.zoom.xos / zoom"},
        {"nothing to go by", u"", u"", 25, "- / -"},
    };
    for (const auto& row : rows) {
        const auto [id, name] = identityOf({.wmInstance = row.instance.toString(),
                                            .wmClass = row.wmClass.toString(),
                                            .processId = row.processId},
                                           entries, processes.root());
        EXPECT_EQ(u"%1 / %2"_s.arg(id.value_or(u"-"_s), name.value_or(u"-"_s)).toStdString(), row.identity)
            << row.fact;
    }
}

TEST(ProductTable, GivesOneIdHoweverAProductWasInstalled) {
    const std::pair<QString, QString> rows[] = {
        {u"com.google.Chrome"_s, u"google-chrome Google-chrome com.google.Chrome"_s},
        {u"com.google.Chrome.canary"_s, u"Google-chrome-unstable"_s},
        {u"com.microsoft.edgemac"_s, u"Microsoft-edge com.microsoft.Edge"_s},
        {u"com.brave.Browser"_s, u"Brave-browser com.brave.Browser brave_brave"_s},
        {u"com.vivaldi.Vivaldi"_s, u"Vivaldi-stable com.vivaldi.Vivaldi"_s},
        {u"org.mozilla.firefox"_s, u"firefox-esr Firefox firefox_firefox"_s},
        {u"org.chromium.Chromium"_s, u"Chromium-browser org.chromium.Chromium"_s},
        {u"us.zoom.xos"_s, u"Zoom us.zoom.Zoom"_s},
        {u"com.microsoft.teams2"_s, u"teams-for-linux"_s},
        {u"com.hnc.Discord"_s, u"discord com.discordapp.Discord"_s},
        {u"org.videolan.vlc"_s, u"vlc org.videolan.VLC"_s},
        {u"io.mpv"_s, u"mpv io.mpv.Mpv"_s},
        {u"com.apple.ScreenSaver.Engine"_s, u"i3lock XScreenSaver kscreenlocker_greet"_s},
        {u"com.apple.loginwindow"_s, u"lightdm-gtk-greeter Sddm-greeter"_s},
    };
    for (const auto& [id, spellings] : rows) {
        for (const QString& spelling : spellings.split(u' ')) {
            EXPECT_EQ(productId(spelling), id) << spelling.toStdString();
        }
    }
    EXPECT_EQ(productId(u"gimp"_s), std::nullopt);
    EXPECT_EQ(productId(QString()), std::nullopt);
}

TEST(ApplicationIds, ReadTheEntriesOnceForAWindowAndAnewForEachNewOne) {
    std::vector<DesktopEntry> installed;
    int reads = 0;
    ApplicationIds ids(
        [&] {
            ++reads;
            return installed;
        },
        u"/nonexistent"_s);
    const WindowFacts early{.wmInstance = {}, .wmClass = u"Early"_s, .processId = 1};
    EXPECT_EQ(ids.of(early).localizedName, u"Early"_s);
    installed = {entry(u"late", u"新しい道具")};
    EXPECT_EQ(ids.of(early).localizedName, u"Early"_s);
    EXPECT_EQ(reads, 1);
    EXPECT_EQ(ids.of({.wmInstance = {}, .wmClass = u"Late"_s, .processId = 1}).localizedName,
              u"新しい道具"_s);
    EXPECT_EQ(reads, 2);
}

} // namespace
} // namespace kestu
