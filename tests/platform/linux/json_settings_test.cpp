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
#include <sys/stat.h>
#include <unistd.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::contentsOf;
using test::putFile;

const QString key = u"key"_s;

/// Root may read everything, so it steps aside while this lives; anybody else cannot, and need not.
class WithoutRoot final {
public:
    explicit WithoutRoot(const QStringList& paths) {
        constexpr uid_t nobody = 65534;
        for (const QString& path : ::geteuid() == 0 ? paths : QStringList()) {
            EXPECT_EQ(::chown(QFile::encodeName(path).constData(), nobody, nobody), 0);
        }
        EXPECT_TRUE(::geteuid() != 0 || ::seteuid(nobody) == 0);
    }
    ~WithoutRoot() { EXPECT_EQ(::seteuid(m_user), 0); }
    WithoutRoot(const WithoutRoot&) = delete;
    WithoutRoot& operator=(const WithoutRoot&) = delete;

private:
    uid_t m_user = ::geteuid();
};

class JsonSettingsTest : public testing::Test {
protected:
    std::string reasonOfSetting(int value) {
        return test::reasonOf([&] { m_settings.setInteger(key, value); });
    }

    void expectFailureOnFullDisk() {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        const rlimit fullDisk{.rlim_cur = 1, .rlim_max = limit.rlim_max}; // no file grows beyond one byte
        setrlimit(RLIMIT_FSIZE, &fullDisk);
        const std::string reason = reasonOfSetting(2);
        setrlimit(RLIMIT_FSIZE, &limit);
        EXPECT_TRUE(reason.starts_with("設定を保存できませんでした：File too large")) << reason;
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

TEST_F(JsonSettingsTest, GoOnWithTheLastGoodStateAndKeepEveryUnreadableFileAside) {
    const QString lastGood = m_file + u".last-good"_s;
    const QByteArray edited = R"({"key": 3, "apps": {"a": "A"}})";
    const struct {
        const char* name;
        QByteArray contents;
        QByteArray otherContents = {}; // of the last good state
        bool isClosed = false;
    } rows[] = {
        {"cut off", edited.first(20)},        {"empty", ""},
        {"not JSON", "{\"key\": 1,,}"},       {"no object", "[1]"},
        {"not to be read", edited, {}, true}, {"neither of both", "", "{"},
    };
    int broken = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        putFile(m_file, edited); // by the user
        EXPECT_EQ(JsonSettings(m_file).problem(), QString());
        putFile(m_file, row.contents);
        const bool isLost = !row.otherContents.isEmpty();
        if (isLost) {
            putFile(lastGood, row.otherContents);
        }
        std::optional<WithoutRoot> reader;
        if (row.isClosed) {
            reader.emplace(QStringList{m_home.path(), QFileInfo(m_file).path(), m_file, lastGood});
            ASSERT_EQ(::chmod(QFile::encodeName(m_file).constData(), 0), 0);
        }

        JsonSettings settings(m_file);
        EXPECT_TRUE(settings.problem().contains(isLost ? u"設定し直してください"_s : u"最後に読み込めた"_s));
        EXPECT_EQ(settings.dictionary(u"apps"_s).has_value(), !isLost);
        settings.setInteger(key, 3);
        EXPECT_EQ(settings.problem(), QString());
        EXPECT_EQ(JsonSettings(m_file).dictionary(u"apps"_s).has_value(), !isLost);
        const QString aside = m_file + (++broken == 1 ? u".unreadable"_s : u".unreadable.%1"_s.arg(broken));
        ::chmod(QFile::encodeName(aside).constData(), 0600);
        EXPECT_EQ(contentsOf(aside), row.contents);
        EXPECT_EQ(QFileInfo(lastGood).permissions() & 0x0077, 0);
    }
}

TEST_F(JsonSettingsTest, StayUnreadableWhenTheyCannotBeMended) {
    m_settings.setInteger(key, 1);
    putFile(m_file, "{");
    expectFailureOnFullDisk();
    EXPECT_EQ(contentsOf(m_file), "{");
    EXPECT_EQ(m_settings.integer(key), 1);
}

TEST_F(JsonSettingsTest, AsideNamesAreNeverTakenTwice) {
    for (const char* text : {"{\"key\": 1,,}", "[1]"}) {
        putFile(m_file, text);
        m_settings.setInteger(key, 4);
    }
    EXPECT_EQ(contentsOf(m_file + u".unreadable"_s), "{\"key\": 1,,}");
    EXPECT_EQ(contentsOf(m_file + u".unreadable.2"_s), "[1]");
}

TEST_F(JsonSettingsTest, StayWholeWhenAWriteFails) {
    m_settings.setInteger(key, 1);
    const QByteArray before = contentsOf(m_file);
    expectFailureOnFullDisk();
    EXPECT_EQ(contentsOf(m_file), before);
}

TEST_F(JsonSettingsTest, SayWhyTheirFolderCouldNotBeMade) {
    putFile(m_home.filePath(u"KESTU"_s), "a file in the folder's place");
    EXPECT_EQ(m_settings.integer(key), std::nullopt);
    EXPECT_EQ(reasonOfSetting(1), "設定を保存できませんでした：Not a directory");
}

} // namespace
} // namespace kestu
