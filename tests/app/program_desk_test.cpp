// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program as a process: how it starts, refuses, meets a second copy, and ends.
#include "storage/RepositoryOpener.h"
#include "support/Desk.h"
#include "support/Files.h"
#include "support/PrivateBus.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::Program;
using test::waitUntil;

constexpr int patience = 20000; // milliseconds, for a program that starts on a busy machine

bool isWindowShown(const QString& title) {
    return !test::outputOf(u"xdotool"_s, {u"search"_s, u"--onlyvisible"_s, u"--name"_s, u"^%1$"_s.arg(title)})
                .isEmpty();
}

class ProgramTest : public testing::Test {
protected:
    [[nodiscard]] Program::Environment environment(Program::Environment more = {}) const {
        more.emplace(u"KESTU_DB_PATH"_s, path);
        return more;
    }

    [[nodiscard]] std::vector<Activity> rows() const {
        return openRepository({.explicitPath = path, .dataHome = {}}, systemNow)
            ->activitiesOverlapping(instantAt(0), instantAt(1e11));
    }

    bool records() {
        return waitUntil([this] { return QFile::exists(path) && !rows().empty(); }, patience);
    }

    QTemporaryDir folder;
    QString path = folder.filePath(u"kestu.sqlite"_s);
    const QString program = QStringLiteral(KESTU_PROGRAM);
    const test::Terminal window{u"Front"_s, u"front"_s};
};

TEST_F(ProgramTest, EndsTheOpenRowOnEverySignalToEnd) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        path = folder.filePath(u"signal%1.sqlite"_s.arg(signal));
        Program kestu(program, {u"--background"_s}, environment());
        ASSERT_TRUE(records());
        waitUntil([] { return false; }, 500);
        kestu.send(signal);
        const Instant ended = systemNow();
        EXPECT_EQ(kestu.waitForEnd(), 0);
        EXPECT_NEAR((rows().back().end - ended).count(), 0, 0.2) << signal;
    }
}

TEST_F(ProgramTest, IsTheOnlyRecorderOfItsFileAlsoAfterAKill) {
    Program first(program, {u"--background"_s}, environment({{u"KESTU_SCREEN"_s, u"settings"_s}}));
    ASSERT_TRUE(records());
    EXPECT_FALSE(isWindowShown(u"設定.*"_s));
    const QString link = folder.filePath(u"link"_s);
    ASSERT_TRUE(QFile::link(folder.path(), link));
    Program second(program, {}, {{u"KESTU_DB_PATH"_s, link + u"/kestu.sqlite"_s}});
    EXPECT_EQ(second.waitForEnd(), 0);
    EXPECT_EQ(second.errorOutput(), u"KESTU はすでに起動しています。前面に表示します。\n"_s);
    EXPECT_TRUE(first.isRunning());
    EXPECT_TRUE(waitUntil([] { return isWindowShown(u"設定.*"_s); })) << "it came to the front";

    Program elsewhere(program, {u"--background"_s}, {{u"KESTU_DB_PATH"_s, folder.filePath(u"b.sqlite"_s)}});
    EXPECT_EQ(elsewhere.waitForEnd(1500), -2) << "another file is another recorder's";

    first.send(SIGKILL);
    ASSERT_EQ(first.waitForEnd(), -1);
    const size_t before = rows().size();
    const Program third(program, {u"--background"_s}, environment());
    EXPECT_TRUE(waitUntil([&] { return rows().size() > before; }, patience));
}

TEST_F(ProgramTest, RefusesAStoreThatItCannotOpenAndLeavesItAsItIs) {
    const QByteArray text = "これはデータベースではありません。\n" + QByteArray(4096, 'x');
    QFile file(folder.filePath(u"text"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.write(text);
    file.close();
    const struct {
        QString path;
        const char* reason;
    } rowsOfTest[] = {
        {file.fileName(), "file is not a database — PRAGMA journal_mode = WAL"},
        {folder.path(), "open failed: unable to open database file"},
        {folder.filePath(u"missing/kestu.sqlite"_s), "open failed: unable to open database file"},
    };
    for (const auto& row : rowsOfTest) {
        // Without a display there is no dialog that waits for somebody.
        Program kestu(program, {}, {{u"KESTU_DB_PATH"_s, row.path}, {u"DISPLAY"_s, {}}});
        EXPECT_EQ(kestu.waitForEnd(), 1);
        EXPECT_EQ(kestu.errorOutput(),
                  u"記録用のデータベースを開けませんでした：%1\n"_s.arg(QString::fromUtf8(row.reason)));
    }
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), text);
    EXPECT_FALSE(QDir(folder.filePath(u"missing"_s)).exists());

    Program kestu(program, {}, {{u"KESTU_DB_PATH"_s, file.fileName()}});
    EXPECT_TRUE(waitUntil([] { return isWindowShown(u"KESTU"_s); }))
        << "where there is a display a dialog says it";
    test::outputOf(u"xdotool"_s, {u"key"_s, u"Return"_s});
    EXPECT_EQ(kestu.waitForEnd(), 1);
}

TEST_F(ProgramTest, OpensItsHelpInTheBrowserWhetherInstalledOrNot) {
    const QString opened = folder.filePath(u"opened"_s);
    const QString browser = folder.filePath(u"browser"_s);
    test::putFile(browser, "#!/bin/sh\nprintf %s \"$1\" >" + opened.toUtf8() + '\n');
    QFile::setPermissions(browser, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    test::installDesktopEntry(u"browser"_s, u"Name=Browser\nExec=%1 %u"_s.arg(browser));
    test::putFile(qEnvironmentVariable("XDG_CONFIG_HOME") + u"/mimeapps.list"_s,
                  "[Default Applications]\nx-scheme-handler/http=browser.desktop\n");
    const QString prefix = folder.filePath(u"prefix"_s);
    test::outputOf(QStringLiteral(KESTU_CMAKE),
                   {u"--install"_s, QStringLiteral(KESTU_BUILD), u"--prefix"_s, prefix});
    const std::pair<QString, QString> rowsOfTest[] = {
        {program, QStringLiteral(KESTU_BUILD) + u"/help"_s},
        {prefix + u"/bin/kestu"_s, prefix + u"/share/kestu/help"_s},
    };
    for (const auto& [place, help] : rowsOfTest) {
        QFile::remove(opened);
        Program kestu(place, {}, environment());
        ASSERT_TRUE(waitUntil([] { return isWindowShown(u"タイムライン.*"_s); }, patience));
        test::outputOf(u"xdotool"_s, {u"search"_s, u"--onlyvisible"_s, u"--name"_s, u"^タイムライン"_s,
                                      u"windowactivate"_s, u"--sync"_s, u"key"_s, u"F1"_s});
        const QString page = help + u"/start/index.html"_s;
        EXPECT_TRUE(waitUntil([&] { return test::contentsOf(opened) == page.toUtf8(); }, patience))
            << test::contentsOf(opened).toStdString();
        EXPECT_TRUE(QFile::exists(help + u"/kestu.svg"_s)) << "what the page shows";
        kestu.send(SIGTERM);
        EXPECT_EQ(kestu.waitForEnd(), 0);
    }
}

TEST_F(ProgramTest, SaysWhereItCannotSeeAndRecordsNothingThere) {
    Program wayland(program, {},
                    environment({{u"XDG_SESSION_TYPE"_s, u"wayland"_s},
                                 {u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/nonexistent"_s}}));
    const QString why = u"アクセシビリティの仕組み（at-spi2-core）が動いていません。"_s;
    EXPECT_TRUE(waitUntil([&] { return wayland.errorOutput().contains(why); }, patience));
    waitUntil([] { return false; }, 3000);
    EXPECT_EQ(wayland.errorOutput().count(why), 1);
    wayland.send(SIGTERM);
    EXPECT_EQ(wayland.waitForEnd(), 0);
    EXPECT_TRUE(rows().empty());

    Program nowhere(program, {}, environment({{u"DISPLAY"_s, QString()}}));
    EXPECT_EQ(nowhere.waitForEnd(), 1);
    EXPECT_TRUE(nowhere.errorOutput().contains(u"画面がないため"_s)) << nowhere.errorOutput().toStdString();
}

TEST_F(ProgramTest, ChecksWhatCanBeRecordedHereBesideARecorderAndWithout) {
    Program recorder(program, {u"--background"_s}, environment());
    ASSERT_TRUE(records());
    const auto check = [&](const Program::Environment& changes) {
        QProcess kestu;
        QProcessEnvironment surroundings = QProcessEnvironment::systemEnvironment();
        for (const auto& [name, value] : environment(changes)) {
            surroundings.insert(name, value);
        }
        kestu.setProcessEnvironment(surroundings);
        kestu.start(program, {u"--check"_s});
        EXPECT_TRUE(kestu.waitForFinished(patience));
        EXPECT_EQ(kestu.exitStatus(), QProcess::NormalExit);
        return std::pair(kestu.exitCode(), QString::fromUtf8(kestu.readAllStandardOutput()));
    };
    const auto [code, text] = check({});
    EXPECT_EQ(code, 0) << text.toStdString();
    for (const QString& line :
         {u"KESTU：%1\n"_s.arg(QStringLiteral(KESTU_VERSION)), u"（xcb）\n"_s,
          u"ウィンドウを知らせるもの：X11\n"_s, u"前面のウィンドウ：わかります\n"_s, u"記録：できます\n"_s}) {
        EXPECT_TRUE(text.contains(line)) << line.toStdString() << " is not in\n" << text.toStdString();
    }
    EXPECT_FALSE(text.contains(u"front\n"_s)) << "no window's title";
    EXPECT_TRUE(recorder.isRunning());

    const auto [blind, why] = check({{u"DISPLAY"_s, {}}, {u"WAYLAND_DISPLAY"_s, {}}});
    EXPECT_EQ(blind, 1) << why.toStdString();
    EXPECT_TRUE(why.contains(u"記録：できません\n"_s)) << why.toStdString();
}

} // namespace
} // namespace kestu
