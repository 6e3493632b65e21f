// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/PlatformError.h"
#include "platform/linux/AutostartEntry.h"
#include "platform/linux/DesktopEntries.h"
#include "platform/linux/DesktopOpener.h"
#include "support/Files.h"
#include "support/PrivateBus.h"

#include <QDir>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace kestu {
namespace {

using test::contentsOf;
using test::putFile;
using test::waitUntil;

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
        qunsetenv("LANGUAGE");
        qunsetenv("LC_ALL");
        qunsetenv("LC_MESSAGES");
        addProgram("tool", "exit 0");
        QFile::link(path("bin/tool"), path("bin/link"));
        addProgram("handler", "printf '%s\\n' \"$1\" >> " + path("opened").toUtf8());
        const QByteArray tool = path("bin/link").toUtf8();
        addEntry("system/applications/tool",
                 "Name=Tool\nName[ja]=道具\nStartupWMClass=ToolWindow\nExec=" + tool);
        addEntry("system/applications/a-helper", "Name=Helper\nNoDisplay=true\nExec=" + tool);
        addEntry("system/applications/texts", "Name=Texts\nTerminal=true\nExec=" + tool);
        addEntry("system/applications/removed", "Name=Removed\nExec=" + tool);
        addEntry("data/applications/removed", "Name=Removed\nHidden=true\nExec=" + tool);
        addEntry("data/applications/handler",
                 "Name=Handler\nNoDisplay=true\nExec=" + path("bin/handler").toUtf8() + " %u");
        putFile(path("config/mimeapps.list"), "[Default Applications]\n"
                                              "x-scheme-handler/http=handler.desktop\n"
                                              "inode/directory=handler.desktop\n");
    }

    static void TearDownTestSuite() { s_home.reset(); }

    static QString path(const char* below) { return s_home->filePath(QString::fromUtf8(below)); }

    static void addProgram(const char* name, const QByteArray& commands) {
        const QString program = path("bin/") + QString::fromUtf8(name);
        putFile(program, "#!/bin/sh\n" + commands + '\n');
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    static void addEntry(const char* place, const QByteArray& keys) {
        putFile(path(place) + QStringLiteral(".desktop"),
                "[Desktop Entry]\nType=Application\n" + keys + '\n');
    }

    static std::optional<DesktopEntry> installed(const char* id) {
        const auto entries = installedDesktopEntries();
        const auto found = std::ranges::find(entries, QString::fromUtf8(id), &DesktopEntry::id);
        return found == entries.end() ? std::nullopt : std::optional(*found);
    }

    static std::unique_ptr<QTemporaryDir> s_home;
};

std::unique_ptr<QTemporaryDir> InstalledDesktop::s_home;

TEST_F(InstalledDesktop, GivesEachEntryInTheLanguageOfTheProcess) {
    const struct {
        const char* language;
        const char* name;
    } rows[] = {{"ja_JP.UTF-8", "道具"}, {"C", "Tool"}};
    for (const auto& row : rows) {
        qputenv("LANG", row.language);
        const auto tool = installed("tool");
        ASSERT_TRUE(tool) << row.language;
        EXPECT_EQ(tool->localizedName.toStdString(), row.name) << row.language;
    }
}

TEST_F(InstalledDesktop, ListsVisibleEntriesFirstAndResolvesTheirPrograms) {
    const auto entries = installedDesktopEntries();
    std::vector<std::string> ids;
    std::ranges::transform(entries, std::back_inserter(ids),
                           [](const auto& entry) { return entry.id.toStdString(); });
    EXPECT_THAT(ids, testing::ElementsAre("texts", "tool", "a-helper", "handler"));

    const auto tool = installed("tool");
    ASSERT_TRUE(tool);
    EXPECT_EQ(tool->startupWmClass, QStringLiteral("ToolWindow"));
    EXPECT_EQ(tool->executable, QFileInfo(path("bin/tool")).canonicalFilePath());
    EXPECT_EQ(installed("texts")->executable, QString()); // its window is the terminal's
}

TEST_F(InstalledDesktop, KnowsAProgramThatIsInstalledWhileItRuns) {
    ASSERT_FALSE(installed("late"));
    addEntry("data/applications/late", "Name=Late\nExec=" + path("bin/tool").toUtf8());
    EXPECT_TRUE(waitUntil([] { return installed("late").has_value(); }));
    QFile::remove(path("data/applications/late.desktop"));
}

TEST_F(InstalledDesktop, ReadsTheProgramOfAnAutostartEntryAsItWasWritten) {
    addProgram("odd $HOME \"`x\\\\y", "exit 0");
    const QString program = path("bin/odd $HOME \"`x\\\\y");
    AutostartEntry autostart(path("data/applications"), program);
    autostart.enable();
    ASSERT_TRUE(waitUntil([] { return installed("kestu").has_value(); }));
    EXPECT_EQ(installed("kestu")->executable, QFileInfo(program).canonicalFilePath());
    autostart.disable();
}

TEST_F(InstalledDesktop, OpensFoldersAndWebPagesWithTheirHandler) {
    const QString folder = path("資料 1");
    QDir().mkpath(folder);
    DesktopOpener opener;
    opener.openFolder(folder);
    EXPECT_TRUE(waitUntil([&] { return contentsOf(path("opened")).endsWith("/資料 1\n"); }))
        << contentsOf(path("opened")).toStdString();
    opener.openAddress(QUrl(QStringLiteral("http://例え.jp/a b?q=%26")));
    EXPECT_TRUE(waitUntil([&] {
        return contentsOf(path("opened")).endsWith("http://xn--r8jz45g.jp/a%20b?q=%26\n");
    })) << contentsOf(path("opened")).toStdString();
}

TEST_F(InstalledDesktop, SaysWhyNothingWasOpened) {
    DesktopOpener opener;
    const auto reasonOf = [](const std::function<void()>& action) {
        try {
            action();
        } catch (const PlatformError& error) {
            return error.description().toStdString();
        }
        return std::string("opened");
    };
    const auto address = [&](const char* text) {
        return reasonOf([&] { opener.openAddress(QUrl(QString::fromUtf8(text))); });
    };
    using testing::MatchesRegex;
    EXPECT_THAT(reasonOf([&] { opener.openFolder(path("bin/tool")); }),
                MatchesRegex("フォルダを開けませんでした：フォルダが見つかりません.*/bin/tool.*"));
    for (const char* text : {"file://example.org/etc", "http:", "", "mailto:a@b.c"}) {
        EXPECT_THAT(address(text), MatchesRegex("Web ページを開けませんでした：Web アドレスではありません.*"))
            << text;
    }
    EXPECT_EQ(address("https://example.org"),
              "Web ページを開けませんでした：対応するアプリケーションがありません");
}

} // namespace
} // namespace kestu
