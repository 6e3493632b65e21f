// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/AutostartEntry.h"
#include "platform/linux/DesktopEntries.h"
#include "platform/linux/DesktopOpener.h"
#include "support/Files.h"
#include "support/PrivateBus.h"
#include "support/Reason.h"

#include <QDir>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::contentsOf;
using test::reasonOf;
using test::waitUntil;
using testing::MatchesRegex;

/// A home folder with applications of its own. One for the whole program: the desktop's library asks for the
/// folders once.
class InstalledDesktop : public testing::Test {
protected:
    static void SetUpTestSuite() {
        s_home = std::make_unique<QTemporaryDir>();
        qputenv("XDG_DATA_HOME", path("data").toUtf8());
        qputenv("XDG_DATA_DIRS", path("system").toUtf8());
        qputenv("XDG_CONFIG_HOME", path("config").toUtf8());
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        for (const char* language : {"LANGUAGE", "LC_ALL", "LC_MESSAGES"}) {
            qunsetenv(language);
        }
        addProgram("tool", "exit 0");
        QFile::link(path("bin/tool"), path("bin/link"));
        addProgram("handler", "printf '%s\\n' \"$1\" >> " + path("opened").toUtf8());
        const QByteArray tool = path("bin/link").toUtf8();
        addEntry("system/applications/tool",
                 "Name=Tool\nName[ja]=道具\nStartupWMClass=ToolWindow\nExec=" + tool);
        addEntry("system/applications/a-helper", "Name=Helper\nNoDisplay=true\nExec=" + tool);
        test::putFile(path("share/script"), "exit 0\n");
        addEntry("system/applications/script",
                 "Name=Script\nExec=env A=b sh -e " + path("share/script").toUtf8() + " %U");
        addEntry("system/applications/texts", "Name=Texts\nTerminal=true\nExec=" + tool);
        addEntry("system/applications/removed", "Name=Removed\nExec=" + tool);
        addEntry("data/applications/removed", "Name=Removed\nHidden=true\nExec=" + tool);
        addEntry("data/applications/handler",
                 "Name=Handler\nNoDisplay=true\nExec=" + path("bin/handler").toUtf8() + " %u");
        test::putFile(path("config/mimeapps.list"), "[Default Applications]\n"
                                                    "x-scheme-handler/http=handler.desktop\n"
                                                    "inode/directory=handler.desktop\n");
    }

    static void TearDownTestSuite() { s_home.reset(); }

    static QString path(const char* below) { return s_home->filePath(QString::fromUtf8(below)); }

    static void addProgram(const char* name, const QByteArray& commands) {
        const QString program = path("bin/") + QString::fromUtf8(name);
        test::putFile(program, "#!/bin/sh\n" + commands + '\n');
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    static void addEntry(const char* place, const QByteArray& keys) {
        test::putFile(path(place) + u".desktop"_s, "[Desktop Entry]\nType=Application\n" + keys + '\n');
    }

    static std::optional<DesktopEntry> installed(QStringView id) {
        const auto entries = installedDesktopEntries();
        const auto found = std::ranges::find(entries, id, &DesktopEntry::id);
        return found == entries.end() ? std::nullopt : std::optional(*found);
    }

    static bool openedBecomes(const char* lastLine) {
        return waitUntil([&] { return contentsOf(path("opened")).endsWith(lastLine); });
    }

    static inline std::unique_ptr<QTemporaryDir> s_home;
};

TEST_F(InstalledDesktop, ListsVisibleEntriesFirstInTheLanguageOfTheProcessAndResolvesTheirPrograms) {
    using testing::Field;
    const auto has = [](QStringView id, QStringView name, QStringView wmClass, const QString& executable) {
        return testing::AllOf(Field("id", &DesktopEntry::id, id),
                              Field("name", &DesktopEntry::localizedName, name),
                              Field("class", &DesktopEntry::startupWmClass, wmClass),
                              Field("executable", &DesktopEntry::executable, executable));
    };
    const auto program = [](const char* name) { return QFileInfo(path(name)).canonicalFilePath(); };
    const std::pair<const char*, QStringView> rows[] = {{"ja_JP.UTF-8", u"道具"}, {"C", u"Tool"}};
    for (const auto& [language, name] : rows) {
        qputenv("LANG", language);
        EXPECT_THAT(installedDesktopEntries(),
                    testing::ElementsAre(has(u"script", u"Script", u"", program("share/script")),
                                         has(u"texts", u"Texts", u"", QString()), // the terminal's window
                                         has(u"tool", name, u"ToolWindow", program("bin/tool")),
                                         has(u"a-helper", u"Helper", u"", program("bin/tool")),
                                         has(u"handler", u"Handler", u"", program("bin/handler"))))
            << language;
    }
}

TEST_F(InstalledDesktop, KnowsAProgramThatIsInstalledWhileItRunsByAnyPathItsEntryCanSpell) {
    ASSERT_FALSE(installed(u"kestu"));
    addProgram("odd $HOME \"`x\\\\y", "exit 0");
    const QString program = path("bin/odd $HOME \"`x\\\\y");
    AutostartEntry autostart(path("data/applications"), program);
    autostart.enable();
    ASSERT_TRUE(waitUntil([] { return installed(u"kestu").has_value(); }));
    EXPECT_EQ(installed(u"kestu")->executable, QFileInfo(program).canonicalFilePath());
    autostart.disable();
}

TEST_F(InstalledDesktop, OpensFoldersAndWebPagesWithTheirHandler) {
    QDir().mkpath(path("資料 1"));
    DesktopOpener opener;
    opener.openFolder(path("資料 1"));
    EXPECT_TRUE(openedBecomes("/資料 1\n")) << contentsOf(path("opened")).toStdString();
    opener.openAddress(QUrl(u"http://例え.jp/a b?q=%26"_s));
    EXPECT_TRUE(openedBecomes("http://xn--r8jz45g.jp/a%20b?q=%26\n"))
        << contentsOf(path("opened")).toStdString();
    test::putFile(path("ヘルプ 1/start.html"), "<p>");
    opener.openPage(path("ヘルプ 1/start.html"));
    EXPECT_TRUE(openedBecomes("/ヘルプ 1/start.html\n")) << contentsOf(path("opened")).toStdString();
}

TEST_F(InstalledDesktop, SaysWhyNothingWasOpened) {
    DesktopOpener opener;
    EXPECT_THAT(reasonOf([&] { opener.openFolder(path("bin/tool")); }),
                MatchesRegex("フォルダを開けませんでした：フォルダが見つかりません.*/bin/tool.*"));
    EXPECT_THAT(reasonOf([&] { opener.openPage(path("bin")); }),
                MatchesRegex("ヘルプを開けませんでした：ページが見つかりません.*/bin.*"));
    const auto reason = [&](const QString& address) {
        return reasonOf([&] { opener.openAddress(QUrl(address)); });
    };
    for (const QString& address : {u"file://example.org/etc"_s, u"http:"_s, u""_s, u"mailto:a@b.c"_s}) {
        EXPECT_THAT(reason(address),
                    MatchesRegex("Web ページを開けませんでした：Web アドレスではありません.*"))
            << address.toStdString();
    }
    EXPECT_EQ(reason(u"https://example.org"_s),
              "Web ページを開けませんでした：対応するアプリケーションがありません");
}

} // namespace
} // namespace kestu
