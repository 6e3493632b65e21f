// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program as a process: how it starts, refuses, meets a second copy, and ends.
#include "storage/RepositoryOpener.h"
#include "support/Desk.h"
#include "support/PrivateBus.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

namespace kestu {
namespace {

using test::Program;
using test::waitUntil;

constexpr int patience = 20000; // milliseconds, for a program that starts on a busy machine

class ProgramTest : public testing::Test {
protected:
    [[nodiscard]] Program::Environment environment(Program::Environment more = {}) const {
        more.emplace(QStringLiteral("KESTU_DB_PATH"), path);
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
    QString path = folder.filePath(QStringLiteral("kestu.sqlite"));
    const QString program = QStringLiteral(KESTU_PROGRAM);
    const test::Terminal window{QStringLiteral("Front"), QStringLiteral("front")};
};

TEST_F(ProgramTest, EndsTheOpenRowOnEverySignalToEnd) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        path = folder.filePath(QStringLiteral("signal%1.sqlite").arg(signal));
        Program kestu(program, {}, environment());
        ASSERT_TRUE(records());
        waitUntil([] { return false; }, 500);
        kestu.send(signal);
        const Instant ended = systemNow();
        EXPECT_EQ(kestu.waitForEnd(), 0);
        EXPECT_NEAR((rows().back().end - ended).count(), 0, 0.2) << signal;
    }
}

TEST_F(ProgramTest, IsTheOnlyRecorderOfItsFileAlsoAfterAKill) {
    Program first(program, {}, environment());
    ASSERT_TRUE(records());
    const QString link = folder.filePath(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(folder.path(), link));
    Program second(program, {}, {{QStringLiteral("KESTU_DB_PATH"), link + QStringLiteral("/kestu.sqlite")}});
    EXPECT_EQ(second.waitForEnd(), 0);
    EXPECT_EQ(second.errorOutput(), QStringLiteral("KESTU はすでに起動しています。前面に表示します。\n"));
    EXPECT_TRUE(first.isRunning());

    Program elsewhere(program, {},
                      {{QStringLiteral("KESTU_DB_PATH"), folder.filePath(QStringLiteral("b.sqlite"))}});
    EXPECT_EQ(elsewhere.waitForEnd(1500), -2) << "another file is another recorder's";

    first.send(SIGKILL);
    ASSERT_EQ(first.waitForEnd(), -1);
    const size_t before = rows().size();
    const Program third(program, {}, environment());
    EXPECT_TRUE(waitUntil([&] { return rows().size() > before; }, patience));
}

TEST_F(ProgramTest, RefusesAStoreThatItCannotOpenAndLeavesItAsItIs) {
    const QByteArray text = "これはデータベースではありません。\n" + QByteArray(4096, 'x');
    QFile file(folder.filePath(QStringLiteral("text")));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.write(text);
    file.close();
    const struct {
        QString path;
        const char* reason;
    } rowsOfTest[] = {
        {file.fileName(), "file is not a database — PRAGMA journal_mode = WAL"},
        {folder.path(), "open failed: unable to open database file"},
        {folder.filePath(QStringLiteral("missing/kestu.sqlite")),
         "open failed: unable to open database file"},
    };
    for (const auto& row : rowsOfTest) {
        // Without a display there is no dialog that waits for somebody.
        Program kestu(program, {},
                      {{QStringLiteral("KESTU_DB_PATH"), row.path}, {QStringLiteral("DISPLAY"), {}}});
        EXPECT_EQ(kestu.waitForEnd(), 1);
        EXPECT_EQ(kestu.errorOutput(), QStringLiteral("記録用のデータベースを開けませんでした：%1\n")
                                           .arg(QString::fromUtf8(row.reason)));
    }
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), text);
    EXPECT_FALSE(QDir(folder.filePath(QStringLiteral("missing"))).exists());

    Program kestu(program, {}, {{QStringLiteral("KESTU_DB_PATH"), file.fileName()}});
    EXPECT_TRUE(waitUntil([] {
        return !test::outputOf(QStringLiteral("xdotool"),
                               {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                QStringLiteral("--name"), QStringLiteral("^KESTU$")})
                    .isEmpty();
    })) << "where there is a display a dialog says it";
    test::outputOf(QStringLiteral("xdotool"), {QStringLiteral("key"), QStringLiteral("Return")});
    EXPECT_EQ(kestu.waitForEnd(), 1);
}

TEST_F(ProgramTest, SaysWhereItCannotSeeAndRecordsNothingThere) {
    Program wayland(program, {},
                    environment({{QStringLiteral("XDG_SESSION_TYPE"), QStringLiteral("wayland")}}));
    waitUntil([] { return false; }, 3000);
    EXPECT_EQ(wayland.errorOutput().count(QStringLiteral("Wayland")), 1);
    wayland.send(SIGTERM);
    EXPECT_EQ(wayland.waitForEnd(), 0);
    EXPECT_TRUE(rows().empty());

    Program nowhere(program, {}, environment({{QStringLiteral("DISPLAY"), QString()}}));
    EXPECT_EQ(nowhere.waitForEnd(), 1);
    EXPECT_TRUE(nowhere.errorOutput().contains(QStringLiteral("画面がないため")))
        << nowhere.errorOutput().toStdString();
}

} // namespace
} // namespace kestu
