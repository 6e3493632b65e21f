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

QByteArray snapScope(const QByteArray& name, const QByteArray& application) {
    return "snap." + name + '.' + application + "-0f3c2a1b-12ab-34cd-56ef-0123456789ab.scope";
}

/// A process table of the test's own.
class ProcessTree {
public:
    [[nodiscard]] QString root() const { return m_folder.path(); }

    void add(int id, const QByteArray& unit, const QString& executable, int parent = 1, int start = 4000) {
        const QString folder = u"%1/%2/"_s.arg(root()).arg(id);
        putFile(folder + u"cgroup"_s, "0::/user.slice/user@1000.service/app.slice/" + unit + '\n');
        putFile(folder + u"stat"_s, QByteArray::number(id) + " (a) b (c) S " + QByteArray::number(parent) +
                                        " 7 7 0 -1 0 1 2 3 4 5 6 7 8 20 0 1 0 " + QByteArray::number(start) +
                                        " 9 9\n");
        if (!executable.isEmpty()) {
            QFile::link(executable, folder + u"exe"_s);
        }
    }

    /// `name` is a file below the process's folder.
    void put(int id, const char* name, const QByteArray& contents) {
        putFile(u"%1/%2/%3"_s.arg(root(), QString::number(id), QString::fromUtf8(name)), contents);
    }

    /// The command line in its words, parted by blanks.
    void setCommand(int id, QByteArray words) { put(id, "cmdline", words.replace(' ', '\0') + '\0'); }

private:
    QTemporaryDir m_folder;
};

DesktopEntry entry(QStringView id, QStringView name, QStringView wmClass = {}, QStringView executable = {}) {
    return {.id = id.toString(),
            .localizedName = name.toString(),
            .startupWmClass = wmClass.toString(),
            .executable = executable.toString()};
}

std::string described(const ApplicationIdentity& identity) {
    const QString absent = u"-"_s;
    return u"%1 / %2"_s.arg(identity.bundleId.value_or(absent), identity.localizedName.value_or(absent))
        .toStdString();
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
    entry(u"debian-xterm", u"仮想端末", u"XTerm", u"/usr/bin/xterm"),
    entry(u"org.example.Notes", u"メモ", u"", u"/usr/bin/notes"),
    entry(u"org.example.Notes-settings", u"メモの設定", u"", u"/usr/bin/notes"),
    entry(u"org.example.First", u"一", u"", u"/usr/bin/twin"),
    entry(u"org.example.Second", u"二", u"", u"/usr/bin/twin"),
    entry(u"org.example.Paint", u"絵", u"", u"/usr/bin/paint"),
    entry(u"exact", u"大小", u"CaseMatters"),
    entry(u"folded", u"小文字", u"casematters"),
};

TEST(ApplicationIdentity, FollowsTheSurestSignOfAWindow) {
    ProcessTree processes;
    processes.add(10, "app-kitty-10.scope", u"/app/bin/draw"_s);
    processes.put(10, "root/.flatpak-info",
                  "[Instance]\nname=wrong\n[Application]\nname=org.flathub.Draw\nruntime=r\n");
    processes.add(11, "app-flatpak-org.flathub.Unknown\\x2dOne-11.scope", QString());
    processes.add(12, snapScope("firefox", "firefox"), u"/snap/firefox/4848/usr/lib/firefox/firefox"_s);
    processes.add(13, snapScope("my-tool", "my-app") + "/inner", u"/var/lib/snapd/snap/my-tool/3/bin/a"_s);
    processes.add(14, snapScope("my-tool", "my-app"), u"/usr/bin/python3.10"_s);
    processes.setCommand(14, "python3 -Es /snap/my-tool/3/bin/tool");
    processes.add(15, snapScope("editor", "editor"), u"/usr/bin/gimp-2.10"_s);
    processes.add(16, snapScope("editor", "editor"), u"/snap/editor-extras/1/bin/extra"_s);
    processes.add(20, "app-gnome-org.gnome.Nautilus-20.scope", u"/usr/bin/nautilus"_s);
    processes.add(21, "app-gnome-org.gnome.Nautilus-20.scope", u"/usr/bin/evince (deleted)"_s, 20);
    processes.add(22, "app-gnome-org.example.Tweaks-22.scope", u"/usr/bin/python3.11"_s);
    processes.add(23, "app-kitty@1f.service", u"/usr/bin/kitty"_s);
    processes.add(24, "app-kitty@1f.service", u"/usr/bin/python3.11"_s, 23);
    processes.add(25, "session-2.scope", u"/opt/google/chrome/google-chrome"_s);
    processes.add(26, "app-gnome-org.gnome.Nautilus-26.scope", u"/usr/bin/python3.11"_s);
    processes.add(27, "app-gnome-org.gnome.Nautilus-20.scope", u"/usr/bin/python3.11"_s);
    processes.add(28, "app-kitty@1f.service", u"/opt/kitty/kitty.bin"_s);
    processes.put(28, "environ", "A=b\0SYSTEMD_EXEC_PID=28\0"_ba);
    processes.add(29, "app-kitty@1f.service", u"/opt/child"_s);
    processes.put(29, "environ", "A=b\0SYSTEMD_EXEC_PID=28\0"_ba);
    processes.add(30, "app-org.example.First-30.scope", u"/usr/bin/twin"_s);
    processes.add(32, "session-2.scope", u"/usr/bin/notes"_s);
    processes.add(31, "session-2.scope", u"/usr/bin/python3.11"_s);
    processes.setCommand(31, "/usr/bin/python3 -W ignore -u /usr/bin/paint --new");

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
        {"script in a Snap", u"x", u"Tool", 14, "my-tool_my-app / Tool"},
        {"program of the system, started in a Snap", u"", u"Gimp", 15, "gimp / 画像編集"},
        {"program of another Snap", u"x", u"Extra", 16, "Extra / Extra"},
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
        {"left behind in another's scope", u"x", u"Left", 27, "Left / Left"},
        {"started by its service", u"x", u"Kitty.bin", 28, "kitty / 端末"},
        {"left behind in another's service", u"x", u"Left", 29, "Left / Left"},
        {"dialog of a program of two entries", u"notes", u"Notes", 32, "org.example.Notes / メモ"},
        {"scope of one of two equal entries", u"x", u"X", 30, "org.example.First / 一"},
        {"script before unknown class", u"x", u"Paint.py", 31, "org.example.Paint / 絵"},
        {"nothing to go by", u"", u"", 0, "- / -"},
    };
    for (const auto& row : rows) {
        const WindowFacts window{.wmInstance = row.instance.toString(),
                                 .wmClass = row.wmClass.toString(),
                                 .processId = row.processId};
        EXPECT_EQ(described(identityOf(window, entries, processes.root())), row.identity) << row.fact;
    }
}

TEST(ApplicationIdentity, IsTheProgramForAWindowWithoutAClass) {
    ProcessTree processes;
    const struct {
        const char* fact;
        QString executable;
        const char* command; // words parted by blanks
        const char* identity;
    } rows[] = {
        {"entry", u"/usr/bin/evince"_s, "x", "org.gnome.Evince / 文書ビューアー"},
        {"entry by the program's name", u"/usr/lib/chromium/chromium"_s, "x",
         "org.chromium.Chromium / クロミウム"},
        {"no entry", u"/usr/bin/xev"_s, "x", "xev / xev"},
        {"product without an entry", u"/opt/zoom/zoom"_s, "x", "us.zoom.xos / zoom"},
        {"one program of two entries", u"/usr/bin/notes"_s, "x", "org.example.Notes / メモ"},
        {"one program of two equal entries", u"/usr/bin/twin"_s, "x", "twin / twin"},
        {"terminal", u"/usr/bin/xterm"_s, "xterm -e mutt", "debian-xterm / 仮想端末"},
        {"closed to us", QString(), "/usr/sbin/gparted --all", "gparted / gparted"},
        {"script", u"/usr/bin/python3.11"_s, "python3 /opt/tool/main.py file.txt", "main.py / main.py"},
        {"script with an entry", u"/usr/bin/python3.11"_s, "python3 /usr/bin/paint",
         "org.example.Paint / 絵"},
        {"module", u"/usr/bin/python3.11"_s, "python3 -X dev -m pygame.examples",
         "pygame.examples / pygame.examples"},
        {"package", u"/usr/bin/python3.11"_s, "python3 /opt/tool/__main__.py", "tool / tool"},
        {"code in the command", u"/usr/bin/python3.11"_s, "python3 -c pass /etc/passwd", "python3 / python3"},
        {"shell script", u"/usr/bin/dash"_s, "/bin/sh -e /usr/local/bin/ask now", "ask / ask"},
        {"Java archive", u"/usr/lib/jvm/17/bin/java"_s, "java -Xmx1g -cp a:b -jar /opt/draw/Draw.jar x",
         "Draw.jar / Draw.jar"},
        {"Java class", u"/usr/lib/jvm/17/bin/java"_s, "java -cp /a:/b -Dk=v org.example.Main x",
         "org.example.Main / org.example.Main"},
        {"Electron", u"/usr/lib/electron/electron"_s, "electron --no-sandbox /usr/lib/notepad/app.asar",
         "notepad / notepad"},
        {"Windows program", u"/usr/bin/wine64-preloader"_s, "C:\\Games\\Solitaire.exe",
         "Solitaire.exe / Solitaire.exe"},
        {"interpreter alone", u"/usr/bin/python3.11"_s, "python3", "python3 / python3"},
        {"ended", QString(), "", "- / -"},
    };
    int id = 100;
    for (const auto& row : rows) {
        processes.add(++id, "session-2.scope", row.executable);
        if (*row.command != '\0') {
            processes.setCommand(id, row.command);
        }
        EXPECT_EQ(described(identityOf({.processId = id}, entries, processes.root())), row.identity)
            << row.fact;
    }
}

TEST(ApplicationIdentity, HearsTheToolkitsNameAndPartsADesktopFromItsFileManager) {
    const std::pair<WindowFacts, const char*> rows[] = {
        {{.wmInstance = u"notes"_s, .wmClass = u"Notes"_s, .gtkApplicationId = u"org.example.Notes"_s},
         "org.example.Notes / メモ"},
        {{.wmClass = u"Gimp"_s, .gtkApplicationId = u"org.example.Paint"_s}, "org.example.Paint / 絵"},
        {{.wmClass = u"Gimp"_s, .gtkApplicationId = u"org.example.None"_s}, "gimp / 画像編集"},
        {{.wmClass = u"Main.py"_s, .gtkApplicationId = u"org.example.None"_s}, "Main.py / Main.py"},
        {{.gtkApplicationId = u"org.example.None"_s}, "org.example.None / org.example.None"},
        {{.wmClass = u"Own"_s, .gtkApplicationId = u"no id at all"_s}, "Own / Own"},
        {{.wmClass = u"Own"_s, .gtkApplicationId = u"org."_s + QString(300, u'x')}, "Own / Own"},
        {{.wmInstance = u"xfdesktop"_s, .wmClass = u"Xfdesktop"_s}, "Xfdesktop / デスクトップ"},
        {{.wmClass = u"Xfdesktop"_s, .gtkApplicationId = u"org.xfce.xfdesktop"_s, .isDesktop = true},
         "Xfdesktop / デスクトップ"},
        {{.wmClass = u"Xfce4-panel"_s}, "Xfce4-panel / パネル"},
        {{.wmInstance = u"desktop_window"_s, .wmClass = u"org.gnome.Nautilus"_s, .isDesktop = true},
         "org.gnome.Nautilus-desktop / デスクトップ"},
        {{.wmClass = u"org.gnome.Nautilus"_s}, "org.gnome.Nautilus / ファイル"},
        {{.isDesktop = true}, "desktop / デスクトップ"},
    };
    for (const auto& [window, identity] : rows) {
        EXPECT_EQ(described(identityOf(window, entries, u"/nonexistent"_s)), identity);
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

TEST(ApplicationIds, TellTwoProcessesOfOneIdApart) {
    ProcessTree processes;
    processes.add(7, "session-2.scope", u"/usr/bin/first"_s);
    ApplicationIds ids([] { return entries; }, processes.root());
    EXPECT_EQ(ids.of({.processId = 7}).bundleId, u"first"_s);
    QDir(processes.root() + u"/7"_s).removeRecursively();
    processes.add(7, "session-2.scope", u"/usr/bin/second"_s, 1, 5000);
    EXPECT_EQ(ids.of({.processId = 7}).bundleId, u"second"_s);
}

} // namespace
} // namespace kestu
