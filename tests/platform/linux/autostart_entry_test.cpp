// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/AutostartEntry.h"

#include "platform/PlatformError.h"
#include "support/Files.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace kestu {
namespace {

using test::contentsOf;
using test::putFile;

class AutostartEntryTest : public testing::Test {
protected:
    QTemporaryDir m_home;
    QString m_folder = m_home.filePath(QStringLiteral("autostart"));
    QString m_file = m_folder + QStringLiteral("/kestu.desktop");
    AutostartEntry m_entry{m_folder, QStringLiteral("/opt/100% me/kestu")};
};

TEST_F(AutostartEntryTest, IsEnabledAsLongAsItsFileIsThereAndValid) {
    EXPECT_FALSE(m_entry.isEnabled());
    m_entry.enable();
    EXPECT_TRUE(m_entry.isEnabled());
    EXPECT_TRUE(contentsOf(m_file).contains("\nExec=\"/opt/100%% me/kestu\"\n"));
    m_entry.disable();
    EXPECT_FALSE(QFileInfo::exists(m_file));
    EXPECT_NO_THROW(m_entry.disable());
}

TEST_F(AutostartEntryTest, ObeysAnEditedFileAndIsEnabledAgainOverIt) {
    const struct {
        const char* edit;
        bool isEnabled;
    } rows[] = {
        {"[Desktop Entry]\nExec=kestu\nHidden=true\n", false},
        {"[Desktop Entry]\nExec=kestu\nX-GNOME-Autostart-enabled = false\n", false},
        {"[Desktop Entry]\nExec=kestu\n#Hidden=true\n[Other]\nHidden=true\n", true},
        {"[Desktop Entry]\nExec=kestu\nHidden=false\n", true},
        {"", false},
    };
    for (const auto& row : rows) {
        putFile(m_file, row.edit);
        EXPECT_EQ(m_entry.isEnabled(), row.isEnabled) << row.edit;
        m_entry.enable();
        EXPECT_TRUE(m_entry.isEnabled()) << row.edit;
    }
}

TEST_F(AutostartEntryTest, TakesALinkAwayAndLeavesItsTargetAlone) {
    const QString target = m_home.filePath(QStringLiteral("elsewhere"));
    for (const QString& linked : {QStringLiteral("/dev/null"), target}) {
        putFile(target, "untouched");
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
    putFile(m_file + QStringLiteral("/in-the-way"), "");
    const auto reasonOf = [&](void (AutostartEntry::*change)()) {
        try {
            (m_entry.*change)();
        } catch (const PlatformError& error) {
            return error.description();
        }
        return QString();
    };
    const QString enabling = QStringLiteral("自動起動の項目を書き込めませんでした：");
    const QString disabling = QStringLiteral("自動起動の項目を削除できませんでした：");
    EXPECT_TRUE(reasonOf(&AutostartEntry::enable).startsWith(enabling));
    EXPECT_GT(reasonOf(&AutostartEntry::enable).size(), enabling.size());
    EXPECT_TRUE(reasonOf(&AutostartEntry::disable).startsWith(disabling));
    EXPECT_GT(reasonOf(&AutostartEntry::disable).size(), disabling.size());
}

} // namespace
} // namespace kestu
