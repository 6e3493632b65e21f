// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/SingleInstance.h"

#include "support/PrivateBus.h"

#include <QDir>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::waitUntil;

class SingleInstanceTest : public testing::Test {
protected:
    SingleInstanceTest() {
        qputenv("XDG_RUNTIME_DIR", folder.path().toUtf8());
        first = std::make_unique<SingleInstance>(path());
        QObject::connect(first.get(), &SingleInstance::activationRequested, first.get(),
                         [this](const QByteArray& token) { heard << token; });
    }
    void TearDown() override { qputenv("XDG_RUNTIME_DIR", formerRuntime); }

    [[nodiscard]] QString path() const { return folder.filePath(u"kestu.sqlite"_s); }

    [[nodiscard]] QString socketPath() const {
        const QDir runtime(folder.path());
        return runtime.filePath(runtime.entryList({u"*.socket"_s}, QDir::System).value(0));
    }

    /// As another process does, which waits without an event loop.
    static bool ask(const SingleInstance& second, const QByteArray& token) {
        bool isAnswered = false;
        const std::unique_ptr<QThread> process(
            QThread::create([&] { isAnswered = second.askFirstToFront(token); }));
        process->start();
        waitUntil([&] { return process->isFinished(); });
        return isAnswered;
    }

    const QByteArray formerRuntime = qgetenv("XDG_RUNTIME_DIR");
    QTemporaryDir folder;
    std::unique_ptr<SingleInstance> first;
    QList<QByteArray> heard;
};

TEST_F(SingleInstanceTest, HandsTheTokenOver) {
    ASSERT_EQ(first->outcome(), SingleInstance::Outcome::first);
    const SingleInstance second(path());
    ASSERT_EQ(second.outcome(), SingleInstance::Outcome::second);
    EXPECT_TRUE(ask(second, "a-token_TIME12"));
    EXPECT_TRUE(ask(second, {}));
    EXPECT_TRUE(ask(second, "two\nlines"));
    EXPECT_EQ(heard, (QList<QByteArray>{"a-token_TIME12", "", ""}));
}

TEST_F(SingleInstanceTest, ComesToTheFrontOnceWhateverItIsTold) {
    const struct {
        QByteArray said;
        bool hangsUp;
        QByteArray token;
    } rows[] = {
        {"kwin-7\n", false, "kwin-7"},
        {"", false, ""}, // an older copy waits
        {"", true, ""},
        {"kwin-7", false, "kwin-7"}, // the end of the line is late
        {"kwin\x01-7\n", false, ""},
        {"窓\n", false, ""},
        {QByteArray(512, 'x') + '\n', false, QByteArray(512, 'x')},
        {QByteArray(513, 'x') + '\n', false, ""},
        {QByteArray(1'000'000, 'x'), false, ""},
    };
    for (const auto& row : rows) {
        heard.clear();
        QLocalSocket socket;
        socket.connectToServer(socketPath());
        ASSERT_TRUE(socket.waitForConnected());
        socket.write(row.said);
        if (row.hangsUp) {
            socket.disconnectFromServer();
        }
        EXPECT_TRUE(waitUntil([&] { return socket.state() == QLocalSocket::UnconnectedState; }));
        EXPECT_TRUE(waitUntil([&] { return !heard.isEmpty(); }));
        EXPECT_EQ(heard, QList<QByteArray>{row.token}) << row.said.left(20).constData();
    }
}

TEST_F(SingleInstanceTest, AsksAnOlderFirstCopyToo) {
    const SingleInstance second(path());
    const QString where = socketPath();
    first.reset();
    QLocalServer older; // hangs up without listening
    ASSERT_TRUE(older.listen(where));
    int calls = 0;
    QObject::connect(&older, &QLocalServer::newConnection, &older, [&] {
        ++calls;
        delete older.nextPendingConnection();
    });
    EXPECT_TRUE(ask(second, "a-token"));
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace kestu
