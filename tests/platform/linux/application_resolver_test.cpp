// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ApplicationResolver.h"
#include "platform/linux/ProductTable.h"
#include "support/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <ostream>

namespace kestu {

void PrintTo(const ApplicationIdentity& identity, std::ostream* out) {
    *out << identity.bundleId.value_or(QStringLiteral("(none)")).toStdString() << " / "
         << identity.localizedName.value_or(QStringLiteral("(none)")).toStdString();
}

namespace {

using test::putFile;

/// A process table of the test's own.
class ProcessTree {
public:
    [[nodiscard]] QString root() const { return m_folder.path(); }

    void add(int id, const QByteArray& unit, const QString& executable, int parent = 1) {
        const QString folder = QStringLiteral("%1/%2/").arg(root()).arg(id);
        putFile(folder + QStringLiteral("cgroup"),
                "0::/user.slice/user@1000.service/app.slice/" + unit + '\n');
        putFile(folder + QStringLiteral("stat"),
                QByteArray::number(id) + " (a) b (c) S " + QByteArray::number(parent) + " 7 7 0");
        QFile::link(executable, folder + QStringLiteral("exe"));
    }

    void setFlatpakInfo(int id, const QByteArray& contents) {
        putFile(QStringLiteral("%1/%2/root/.flatpak-info").arg(root()).arg(id), contents);
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

std::vector<DesktopEntry> someEntries() {
    return {
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
}

TEST(ApplicationIdentity, FollowsTheSurestSignOfAWindow) {
    ProcessTree processes;
    processes.add(10, "app-kitty-10.scope", QStringLiteral("/app/bin/draw"));
    processes.setFlatpakInfo(10, "[Instance]\nname=wrong\n[Application]\nname=org.flathub.Draw\nruntime=r\n");
    processes.add(11, "app-flatpak-org.flathub.Unknown\\x2dOne-11.scope", QStringLiteral("/usr/bin/bwrap"));
    processes.add(12, "snap.firefox.firefox-0f3c2a1b-12ab-34cd-56ef-0123456789ab.scope", QString());
    processes.add(13, "snap.my-tool.my-app-0f3c2a1b-12ab-34cd-56ef-0123456789ab.scope/inner", QString());
    processes.add(20, "app-gnome-org.gnome.Nautilus-20.scope", QStringLiteral("/usr/bin/nautilus"));
    processes.add(21, "app-gnome-org.gnome.Nautilus-20.scope", QStringLiteral("/usr/bin/evince (deleted)"),
                  20);
    processes.add(22, "app-gnome-org.example.Tweaks-22.scope", QStringLiteral("/usr/bin/python3.11"));
    processes.add(23, "app-kitty@1f.service", QStringLiteral("/usr/bin/kitty"));
    processes.add(24, "app-kitty@1f.service", QStringLiteral("/usr/bin/python3.11"), 23);
    processes.add(25, "session-2.scope", QStringLiteral("/opt/google/chrome/google-chrome"));
    processes.add(26, "app-gnome-org.gnome.Nautilus-26.scope", QStringLiteral("/usr/bin/python3.11"));

    const struct {
        const char* fact;
        QStringView instance;
        QStringView wmClass;
        int processId;
        QStringView id;
        QStringView name;
    } rows[] = {
        {"Flatpak before class and cgroup", u"kitty", u"kitty", 10, u"org.flathub.Draw", u"描画"},
        {"Flatpak by its scope, no entry", u"u", u"Unknown", 11, u"org.flathub.Unknown-One", u"Unknown"},
        {"Snap that is a product", u"Navigator", u"firefox", 12, u"org.mozilla.firefox", u"火狐"},
        {"Snap without an entry", u"x", u"Tool", 13, u"my-tool_my-app", u"Tool"},
        {"instance before class", u"crx_app", u"Google-chrome", 25, u"chrome-app-Default", u"カレンダー"},
        {"class", u"x", u"Google-chrome", 25, u"com.google.Chrome", u"グーグル"},
        {"profile folder in the instance", u"chromium (/tmp/p)", u"Chromium", 0, u"org.chromium.Chromium",
         u"クロミウム"},
        {"same case before another case", u"casematters", u"CaseMatters", 0, u"folded", u"小文字"},
        {"another case", u"CASEMATTERS", u"", 0, u"exact", u"大小"},
        {"entry id without case", u"x", u"Gimp", 0, u"gimp", u"画像編集"},
        {"class before scope", u"gimp", u"", 20, u"gimp", u"画像編集"},
        {"executable", u"files", u"Files", 20, u"org.gnome.Nautilus", u"ファイル"},
        {"executable before inherited scope", u"evince", u"Evince", 21, u"org.gnome.Evince",
         u"文書ビューアー"},
        {"scope of an interpreted program", u"main.py", u"Main.py", 22, u"org.example.Tweaks", u"調整"},
        {"interpreter in another's scope", u"own", u"Own", 24, u"Own", u"Own"},
        {"shared executable", u"x", u"Other", 25, u"Other", u"Other"},
        {"scope before unknown class", u"x", u"Other", 26, u"org.gnome.Nautilus", u"ファイル"},
        {"instance alone", u"lonely", u"", 0, u"lonely", u"lonely"},
        {"product without an entry", u"zoom", u"zoom", 999, u"us.zoom.xos", u"zoom"},
    };
    const auto entries = someEntries();
    for (const auto& row : rows) {
        const WindowFacts window{.wmInstance = row.instance.toString(),
                                 .wmClass = row.wmClass.toString(),
                                 .processId = row.processId};
        const ApplicationIdentity expected{.bundleId = row.id.toString(),
                                           .localizedName = row.name.toString()};
        EXPECT_EQ(identityOf(window, entries, processes.root()), expected) << row.fact;
    }
    EXPECT_EQ(identityOf({.wmInstance = {}, .wmClass = {}, .processId = 25}, entries, processes.root()),
              ApplicationIdentity{});
}

TEST(ProductTable, GivesOneIdHoweverAProductWasInstalled) {
    const struct {
        QStringView id;
        QStringList spellings;
    } rows[] = {
        {u"com.google.Chrome", {u"google-chrome"_qs, u"Google-chrome"_qs, u"com.google.Chrome"_qs}},
        {u"com.google.Chrome.canary", {u"Google-chrome-unstable"_qs}},
        {u"com.microsoft.edgemac", {u"Microsoft-edge"_qs, u"com.microsoft.Edge"_qs}},
        {u"com.brave.Browser", {u"Brave-browser"_qs, u"com.brave.Browser"_qs, u"brave_brave"_qs}},
        {u"com.vivaldi.Vivaldi", {u"Vivaldi-stable"_qs, u"com.vivaldi.Vivaldi"_qs}},
        {u"org.mozilla.firefox", {u"firefox-esr"_qs, u"Firefox"_qs, u"firefox_firefox"_qs}},
        {u"org.chromium.Chromium", {u"Chromium-browser"_qs, u"org.chromium.Chromium"_qs}},
        {u"us.zoom.xos", {u"Zoom"_qs, u"us.zoom.Zoom"_qs}},
        {u"com.microsoft.teams2", {u"teams-for-linux"_qs}},
        {u"com.hnc.Discord", {u"discord"_qs, u"com.discordapp.Discord"_qs}},
        {u"org.videolan.vlc", {u"vlc"_qs, u"org.videolan.VLC"_qs}},
        {u"io.mpv", {u"mpv"_qs, u"io.mpv.Mpv"_qs}},
        {u"com.apple.ScreenSaver.Engine", {u"i3lock"_qs, u"XScreenSaver"_qs, u"kscreenlocker_greet"_qs}},
        {u"com.apple.loginwindow", {u"lightdm-gtk-greeter"_qs, u"Sddm-greeter"_qs}},
    };
    for (const auto& row : rows) {
        for (const QString& spelling : row.spellings) {
            EXPECT_EQ(productId(spelling), row.id.toString()) << spelling.toStdString();
        }
    }
    EXPECT_EQ(productId(QStringLiteral("gimp")), std::nullopt);
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
        QStringLiteral("/nonexistent"));
    const WindowFacts early{.wmInstance = {}, .wmClass = QStringLiteral("Early"), .processId = 1};
    EXPECT_EQ(ids.of(early).localizedName, QStringLiteral("Early"));
    installed = {entry(u"late", u"新しい道具")};
    EXPECT_EQ(ids.of(early).localizedName, QStringLiteral("Early"));
    EXPECT_EQ(reads, 1);
    EXPECT_EQ(ids.of({.wmInstance = {}, .wmClass = QStringLiteral("Late"), .processId = 1}).localizedName,
              QStringLiteral("新しい道具"));
    EXPECT_EQ(reads, 2);
}

} // namespace
} // namespace kestu
