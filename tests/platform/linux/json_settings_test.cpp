// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/JsonSettings.h"

#include "platform/PlatformError.h"
#include "support/Files.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

namespace kestu {
namespace {

using test::contentsOf;
using test::putFile;

const QString key = QStringLiteral("key");

/// For as long as it lives, no file of this process grows beyond one byte, as on a full disk.
class FullDisk {
public:
    FullDisk() {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit tiny{.rlim_cur = 1, .rlim_max = m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &tiny);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit m_before{};
};

class JsonSettingsTest : public testing::Test {
protected:
    QString reasonOfSetting(int value) {
        try {
            m_settings.setInteger(key, value);
        } catch (const PlatformError& error) {
            return error.description();
        }
        return {};
    }

    QTemporaryDir m_home;
    QString m_file = m_home.filePath(QStringLiteral("KESTU/settings.json"));
    JsonSettings m_settings{m_file};
};

TEST_F(JsonSettingsTest, KeepWhatWasSetInAFileForTheUserAlone) {
    const QMap<QString, QString> apps{{QStringLiteral("a.b"), QStringLiteral("道具 \"1\"")}};
    m_settings.setInteger(QStringLiteral("minutes"), -5);
    m_settings.setBoolean(QStringLiteral("switch"), false);
    m_settings.setDictionary(QStringLiteral("apps"), apps);

    const JsonSettings later(m_file);
    EXPECT_EQ(later.integer(QStringLiteral("minutes")), -5);
    EXPECT_EQ(later.boolean(QStringLiteral("switch")), false);
    EXPECT_EQ(later.dictionary(QStringLiteral("apps")), apps);
    const auto everyone = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther |
                          QFile::WriteOther | QFile::ExeOther;
    EXPECT_FALSE(QFileInfo(m_file).permissions() & everyone);
    EXPECT_FALSE(QFileInfo(QFileInfo(m_file).path()).permissions() & everyone);
}

TEST_F(JsonSettingsTest, ReadAValueOfAnotherTypeAsAbsent) {
    using Strings = QMap<QString, QString>;
    const struct {
        const char* value;
        std::optional<int> integer;
        std::optional<bool> boolean;
        std::optional<Strings> dictionary;
    } rows[] = {
        {"3", 3, {}, {}},
        {"3.0", 3, {}, {}},
        {"3.5", {}, {}, {}},
        {"2147483647", 2147483647, {}, {}},
        {"2147483648", {}, {}, {}},
        {"-2147483649", {}, {}, {}},
        {"1e300", {}, {}, {}},
        {"\"3\"", {}, {}, {}},
        {"true", {}, true, {}},
        {"\"true\"", {}, {}, {}},
        {"null", {}, {}, {}},
        {"[\"a\"]", {}, {}, {}},
        {R"({"a": "b", "c": 1, "d": null})", {}, {}, Strings{{QStringLiteral("a"), QStringLiteral("b")}}},
    };
    for (const auto& row : rows) {
        putFile(m_file, QByteArray(R"({"key": )") + row.value + '}');
        EXPECT_EQ(m_settings.integer(key), row.integer) << row.value;
        EXPECT_EQ(m_settings.boolean(key), row.boolean) << row.value;
        EXPECT_EQ(m_settings.dictionary(key), row.dictionary) << row.value;
    }
    EXPECT_EQ(m_settings.integer(QStringLiteral("other")), std::nullopt);
}

TEST_F(JsonSettingsTest, LeaveWhatSomebodyElseWroteMeanwhile) {
    m_settings.setInteger(key, 1);
    putFile(m_file, R"({"key": 2, "unknown": {"deep": [1.5, null]}})");
    EXPECT_EQ(m_settings.integer(key), 2);
    m_settings.setInteger(key, 3);
    EXPECT_EQ(QJsonDocument::fromJson(contentsOf(m_file)),
              QJsonDocument::fromJson(R"({"key": 3, "unknown": {"deep": [1.5, null]}})"));
}

TEST_F(JsonSettingsTest, KeepEveryUnreadableFileAside) {
    for (const char* text : {"{\"key\": 1,,}", "[1]"}) {
        putFile(m_file, text);
        EXPECT_EQ(m_settings.integer(key), std::nullopt) << text;
        m_settings.setInteger(key, 4);
        EXPECT_EQ(m_settings.integer(key), 4);
    }
    EXPECT_EQ(contentsOf(m_file + QStringLiteral(".unreadable")), "{\"key\": 1,,}");
    EXPECT_EQ(contentsOf(m_file + QStringLiteral(".unreadable.2")), "[1]");
}

TEST_F(JsonSettingsTest, StayWholeWhenAWriteFails) {
    m_settings.setInteger(key, 1);
    const QByteArray before = contentsOf(m_file);
    QString reason;
    {
        const FullDisk fullDisk;
        reason = reasonOfSetting(2);
    }
    EXPECT_TRUE(reason.startsWith(QStringLiteral("設定を保存できませんでした：File too large")))
        << reason.toStdString();
    EXPECT_EQ(contentsOf(m_file), before);
}

TEST_F(JsonSettingsTest, SayWhyTheirFolderCouldNotBeMade) {
    putFile(m_home.filePath(QStringLiteral("KESTU")), "a file in the folder's place");
    EXPECT_EQ(m_settings.integer(key), std::nullopt);
    EXPECT_EQ(reasonOfSetting(1), QStringLiteral("設定を保存できませんでした：Not a directory"));
}

} // namespace
} // namespace kestu
