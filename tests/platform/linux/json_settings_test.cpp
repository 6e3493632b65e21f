// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/JsonSettings.h"

#include "support/Files.h"
#include "support/Reason.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::contentsOf;
using test::putFile;

const QString key = u"key"_s;

class JsonSettingsTest : public testing::Test {
protected:
    std::string reasonOfSetting(int value) {
        return test::reasonOf([&] { m_settings.setInteger(key, value); });
    }

    QTemporaryDir m_home;
    QString m_file = m_home.filePath(u"KESTU/settings.json"_s);
    JsonSettings m_settings{m_file};
};

TEST_F(JsonSettingsTest, KeepWhatWasSetInAFileForTheUserAlone) {
    const QMap<QString, QString> apps{{u"a.b"_s, u"道具 \"1\""_s}};
    m_settings.setInteger(u"minutes"_s, -5);
    m_settings.setBoolean(u"switch"_s, false);
    m_settings.setDictionary(u"apps"_s, apps);

    const JsonSettings later(m_file);
    EXPECT_EQ(later.integer(u"minutes"_s), -5);
    EXPECT_EQ(later.boolean(u"switch"_s), false);
    EXPECT_EQ(later.dictionary(u"apps"_s), apps);
    for (const QString& path : {m_file, QFileInfo(m_file).path()}) {
        EXPECT_EQ(QFileInfo(path).permissions() & 0x0077, 0) << path.toStdString();
    }
}

TEST_F(JsonSettingsTest, ReadAValueOfAnotherTypeAsAbsent) {
    using Strings = QMap<QString, QString>;
    const struct {
        const char* value;
        std::optional<int> integer = {};
        std::optional<bool> boolean = {};
        std::optional<Strings> dictionary = {};
    } rows[] = {
        {"3", 3},       {"3.5"},
        {"2147483648"}, {"-2147483649"},
        {"\"3\""},      {"true", {}, true},
        {"[\"a\"]"},    {R"({"a": "b", "c": 1, "d": null})", {}, {}, Strings{{u"a"_s, u"b"_s}}},
    };
    for (const auto& row : rows) {
        putFile(m_file, QByteArray(R"({"key": )") + row.value + '}');
        EXPECT_EQ(m_settings.integer(key), row.integer) << row.value;
        EXPECT_EQ(m_settings.boolean(key), row.boolean) << row.value;
        EXPECT_EQ(m_settings.dictionary(key), row.dictionary) << row.value;
    }
    EXPECT_EQ(m_settings.integer(u"other"_s), std::nullopt);
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
    EXPECT_EQ(contentsOf(m_file + u".unreadable"_s), "{\"key\": 1,,}");
    EXPECT_EQ(contentsOf(m_file + u".unreadable.2"_s), "[1]");
}

TEST_F(JsonSettingsTest, StayWholeWhenAWriteFails) {
    m_settings.setInteger(key, 1);
    const QByteArray before = contentsOf(m_file);
    // No file of this process grows beyond one byte, as on a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit fullDisk{.rlim_cur = 1, .rlim_max = limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &fullDisk);
    const std::string reason = reasonOfSetting(2);
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_TRUE(reason.starts_with("設定を保存できませんでした：File too large")) << reason;
    EXPECT_EQ(contentsOf(m_file), before);
}

TEST_F(JsonSettingsTest, SayWhyTheirFolderCouldNotBeMade) {
    putFile(m_home.filePath(u"KESTU"_s), "a file in the folder's place");
    EXPECT_EQ(m_settings.integer(key), std::nullopt);
    EXPECT_EQ(reasonOfSetting(1), "設定を保存できませんでした：Not a directory");
}

} // namespace
} // namespace kestu
