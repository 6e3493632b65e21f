// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/AutostartEntry.h"

#include "support/Files.h"
#include "support/Reason.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::contentsOf;
using test::putFile;

class AutostartEntryTest : public testing::Test {
protected:
    QTemporaryDir m_home;
    QString m_file = m_home.filePath(u"autostart/kestu.desktop"_s);
    AutostartEntry m_entry{m_home.filePath(u"autostart"_s), u"/opt/100% me/kestu"_s};
};

TEST_F(AutostartEntryTest, IsEnabledAsLongAsItsFileIsThereAndValid) {
    EXPECT_FALSE(m_entry.isEnabled());
    m_entry.enable();
    EXPECT_TRUE(m_entry.isEnabled());
    EXPECT_TRUE(contentsOf(m_file).contains("\nExec=\"/opt/100%% me/kestu\" --background\n"));
    m_entry.disable();
    EXPECT_FALSE(QFileInfo::exists(m_file));
    EXPECT_NO_THROW(m_entry.disable());
}

TEST_F(AutostartEntryTest, ObeysAnEditedFileAndIsEnabledAgainOverIt) {
    const std::pair<const char*, bool> rows[] = {
        {"[Desktop Entry]\nExec=kestu\nHidden=true\n", false},
        {"[Desktop Entry]\nExec=kestu\nX-GNOME-Autostart-enabled = false\n", false},
        {"[Desktop Entry]\nExec=kestu\n#Hidden=true\n[Other]\nHidden=true\n", true},
        {"[Desktop Entry]\nExec=kestu\nHidden=false\n", true},
        {"", false},
    };
    for (const auto& [edit, isEnabled] : rows) {
        putFile(m_file, edit);
        EXPECT_EQ(m_entry.isEnabled(), isEnabled) << edit;
        m_entry.enable();
        EXPECT_TRUE(m_entry.isEnabled()) << edit;
    }
}

TEST_F(AutostartEntryTest, TakesALinkAwayAndLeavesItsTargetAlone) {
    const QString target = m_home.filePath(u"elsewhere"_s);
    putFile(target, "untouched");
    for (const QString& linked : {u"/dev/null"_s, target}) {
        putFile(m_file, "");
        QFile::remove(m_file);
        ASSERT_TRUE(QFile::link(linked, m_file));
        EXPECT_FALSE(m_entry.isEnabled());
        m_entry.enable();
        EXPECT_TRUE(m_entry.isEnabled());
        EXPECT_FALSE(QFileInfo(m_file).isSymLink());
        EXPECT_EQ(contentsOf(target), "untouched");
    }
}

TEST_F(AutostartEntryTest, SaysWhyItCouldNotBeChanged) {
    putFile(m_file + u"/in-the-way"_s, "");
    EXPECT_THAT(test::reasonOf([&] { m_entry.enable(); }),
                testing::MatchesRegex("自動起動の項目を書き込めませんでした：.+"));
    EXPECT_THAT(test::reasonOf([&] { m_entry.disable(); }),
                testing::MatchesRegex("自動起動の項目を削除できませんでした：.+"));
}

} // namespace
} // namespace kestu
