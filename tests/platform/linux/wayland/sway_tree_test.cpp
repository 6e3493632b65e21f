// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/SwayTree.h"

#include "platform/linux/wayland/FakeSway.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using test::FakeSway;

class SwayTreeTest : public testing::Test {
protected:
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("sway"));
    FakeSway m_sway{m_path};
    SwayTree m_tree{m_path};
};

TEST_F(SwayTreeTest, ReadsTheFocusedWindowAndWhoKeepsTheDisplayOn) {
    const struct {
        const char* appId;
        bool front;
        bool other;
        QString id;
    } rows[] = {{R"("foot")", false, false, QStringLiteral("foot")},
                {R"("foot")", true, false, QStringLiteral("foot")},
                {"null", false, true, QStringLiteral("XTerm")}};
    for (const auto& row : rows) {
        m_sway.shows(row.appId, 4711, row.front, row.other);
        const auto answer = m_tree.ask();
        ASSERT_TRUE(answer && answer->focused) << row.appId;
        EXPECT_EQ(answer->focused->appId, row.id);
        EXPECT_EQ(answer->focused->processId, 4711);
        EXPECT_EQ(answer->focused->keepsDisplayOn, row.front);
        EXPECT_EQ(answer->isDisplayKeptOn, row.front || row.other);
    }
    m_sway.says(FakeSway::message(R"({"nodes":[{"type":"workspace","focused":true}]})"));
    const auto empty = m_tree.ask();
    EXPECT_TRUE(empty && !empty->focused) << "an empty workspace is no window";
}

TEST_F(SwayTreeTest, AsksOneThatHangsOrLiesOnlyOnce) {
    const QByteArray tree = FakeSway::message("{}");
    const std::pair<const char*, QByteArray> rows[] = {
        {"hangs", {}},
        {"another protocol", "HTTP/1.1 400 Bad Request\r\n\r\n"},
        {"another kind", QByteArray(tree).replace(10, 1, "\x07")},
        {"cut", tree.first(tree.size() - 1)},
        {"more than there can be", FakeSway::message("{}", 0xffffffff)},
        {"no tree", FakeSway::message("[1, 2]")},
        {"no JSON", FakeSway::message("{\"nodes\":")},
        {"a bottomless tree", FakeSway::message(QByteArray("{\"nodes\":[").repeated(100000))},
    };
    for (const auto& [what, bytes] : rows) {
        m_sway.says(bytes);
        m_tree.noteChange();
        const int before = m_sway.questions();
        QElapsedTimer timer;
        timer.start();
        EXPECT_FALSE(m_tree.ask()) << what;
        EXPECT_LT(timer.elapsed(), 450) << what;
        timer.start();
        EXPECT_FALSE(m_tree.ask()) << what;
        EXPECT_LT(timer.elapsed(), 50) << what;
        EXPECT_EQ(m_sway.questions(), before + 1) << what;
    }
    m_sway.shows("null", 1, false);
    EXPECT_FALSE(m_tree.ask()) << "nothing has changed";
    m_tree.noteChange();
    EXPECT_TRUE(m_tree.ask());
}

TEST(SwayTree, IsNotThereWithoutASocket) {
    SwayTree none{QString()};
    EXPECT_FALSE(none.isThere());
    EXPECT_FALSE(none.ask());
    SwayTree gone{QStringLiteral("/nonexistent/sway")};
    EXPECT_FALSE(gone.ask());
}

} // namespace
} // namespace kestu
