// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/GnomeWindows.h"

#include "platform/linux/wayland/FakeShell.h"
#include "support/Files.h"
#include "support/PrivateBus.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <limits>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::FakeShell;
using test::ShellSettings;
using test::waitUntil;
using State = GnomeExtension::State;
using Kind = Ability::Kind;

class GnomeWindowsTest : public testing::Test {
protected:
    GnomeWindowsTest() { m_settings.enabled << test::extensionId; }

    std::unique_ptr<GnomeShellSettings> settings() {
        return std::make_unique<test::FakeShellSettings>(m_settings);
    }

    std::unique_ptr<GnomeWindows> watch() {
        return std::make_unique<GnomeWindows>(m_bus.connect(), settings(), QStringList{m_folder.path()},
                                              400ms);
    }

    void install(const QByteArray& shellVersions) const {
        test::putFile(m_folder.filePath(test::extensionId + u"/metadata.json"_s),
                      R"({"shell-version": [)" + shellVersions + "]}");
    }

    static bool titleBecomes(GnomeWindows& windows, const QString& title) {
        return waitUntil([&] { return windows.front() && windows.front()->title == title; });
    }

    test::PrivateBus m_bus;
    QTemporaryDir m_folder;
    ShellSettings m_settings;
};

TEST_F(GnomeWindowsTest, TellsTheFocusedWindowAndItsTitles) {
    FakeShell shell(m_bus.connect(), m_settings, FakeShell::active);
    shell.setWindow(FakeShell::window(1, u"at start"_s));
    const auto windows = watch();
    EXPECT_EQ(windows->ability().kind, Kind::yes);
    ASSERT_TRUE(titleBecomes(*windows, u"at start"_s));
    EXPECT_EQ(windows->front()->facts, (WindowFacts{.wmInstance = u"org.example.Editor"_s,
                                                    .wmClass = u"org.example.Editor"_s,
                                                    .processId = 4711}));
    const QSignalSpy fronts(windows.get(), &WindowSource::frontChanged);
    const QSignalSpy titles(windows.get(), &WindowSource::titleChanged);
    shell.tell(FakeShell::window(1, u"other title"_s));
    EXPECT_TRUE(waitUntil([&] { return titles.count() == 1; }));
    shell.tell(FakeShell::window(2, u"other window"_s));
    EXPECT_TRUE(waitUntil([&] { return fronts.count() == 1; }));
    EXPECT_EQ(windows->front()->title, u"other window");
    QVariantMap film = FakeShell::window(2, u"other window"_s);
    film[u"isFullscreen"_s] = true;
    shell.tell(film);
    EXPECT_TRUE(waitUntil([&] { return windows->front()->isFullscreen; }));
    shell.tell(QVariantMap());
    EXPECT_TRUE(waitUntil([&] { return !windows->front(); }));
}

TEST_F(GnomeWindowsTest, TakesALockedScreenForNothingMissing) {
    FakeShell shell(m_bus.connect(), m_settings, FakeShell::active);
    shell.setWindow(FakeShell::window(1, u"A"_s));
    const auto windows = watch();
    ASSERT_TRUE(titleBecomes(*windows, u"A"_s));
    const QSignalSpy abilities(windows.get(), &WindowSource::abilityChanged);
    shell.lock(true);
    EXPECT_TRUE(waitUntil([&] { return !windows->front(); }));
    EXPECT_FALSE(waitUntil([&] { return windows->ability().kind != Kind::yes; }, 600));
    shell.lock(false);
    EXPECT_TRUE(titleBecomes(*windows, u"A"_s));
    EXPECT_EQ(abilities.count(), 0);
}

TEST_F(GnomeWindowsTest, BelievesNobodyButTheShell) {
    QDBusConnection stranger = m_bus.connect();
    ASSERT_TRUE(stranger.registerService(u"jp.kestu.FocusedWindow"_s));
    FakeShell shell(m_bus.connect(), m_settings, FakeShell::inactive);
    const auto windows = watch();
    auto signal =
        QDBusMessage::createSignal(u"/jp/kestu/FocusedWindow"_s, u"jp.kestu.FocusedWindow"_s, u"Changed"_s);
    signal << FakeShell::window(9, u"a stranger's"_s);
    stranger.send(signal);
    EXPECT_TRUE(waitUntil([&] { return windows->ability().note.contains(u"応答がない"); }));
    EXPECT_FALSE(windows->front());
    stranger.unregisterService(u"jp.kestu.FocusedWindow"_s);
    shell.setWindow(FakeShell::window(1, u"the shell's"_s));
    shell.become(FakeShell::active);
    EXPECT_TRUE(titleBecomes(*windows, u"the shell's"_s));
    EXPECT_EQ(windows->ability(), Ability{.kind = Kind::yes});
}

TEST_F(GnomeWindowsTest, DoesNotTakeAnotherVersionOfTheExtensionForOurs) {
    for (const QVariant& version : {QVariant(2U), QVariant(0U), QVariant(1), QVariant(u"1"_s)}) {
        SCOPED_TRACE(version.toString().toStdString() + version.typeName());
        FakeShell shell(m_bus.connect(), m_settings, FakeShell::active);
        shell.setVersion(version);
        const auto windows = watch();
        EXPECT_TRUE(waitUntil([&] { return windows->ability().note.contains(u"版が違う"); }));
        shell.tell(FakeShell::window(1, u"A"_s));
        EXPECT_FALSE(waitUntil([&] { return windows->front().has_value(); }, 50));
    }
}

TEST_F(GnomeWindowsTest, ReadsALieAsNothing) {
    FakeShell shell(m_bus.connect(), m_settings, FakeShell::active);
    shell.setWindow(FakeShell::window(1, u"true"_s));
    const auto windows = watch();
    const auto liesWith = [](const QString& key, const QVariant& value) {
        QVariantMap window = FakeShell::window(2, u"lie"_s);
        window[key] = value;
        return window;
    };
    const struct {
        const char* name;
        QVariant told;
    } noWindows[] = {
        {"no map", u"window"_s},
        {"no id", liesWith(u"id"_s, QVariant(0ULL))},
        {"an id of another type", liesWith(u"id"_s, u"2"_s)},
    };
    for (const auto& [name, told] : noWindows) {
        SCOPED_TRACE(name);
        shell.tell(FakeShell::window(1, u"true"_s));
        ASSERT_TRUE(titleBecomes(*windows, u"true"_s));
        shell.tell(told);
        EXPECT_TRUE(waitUntil([&] { return !windows->front(); }));
    }

    QVariantMap odd = FakeShell::window(3, {});
    odd[u"title"_s] = 17;
    odd[u"pid"_s] = -1;
    odd[u"class"_s] = u"bad\u0007name"_s;
    odd[u"instance"_s] = QString(1 << 20, u'x');
    odd[u"at"_s] = std::numeric_limits<qlonglong>::max();
    shell.tell(odd);
    ASSERT_TRUE(waitUntil([&] { return windows->front().has_value(); }));
    EXPECT_EQ(windows->front()->facts, WindowFacts());
    EXPECT_EQ(windows->front()->title, QString());
    EXPECT_LT(Moment::clock::now() - windows->front()->since, 5s);
    EXPECT_EQ(windows->ability().kind, Kind::yes);
}

TEST_F(GnomeWindowsTest, IsNotHurtByAFlood) {
    FakeShell shell(m_bus.connect(), m_settings, FakeShell::active);
    shell.setWindow(FakeShell::window(1, u"first"_s));
    const auto windows = watch();
    ASSERT_TRUE(titleBecomes(*windows, u"first"_s));
    const QSignalSpy fronts(windows.get(), &WindowSource::frontChanged);
    constexpr int signalsToSend = 2000;
    const Moment begin = Moment::clock::now();
    for (int i = 0; i < signalsToSend; ++i) {
        shell.tell(FakeShell::window(qulonglong(2 + i % 2), u"flood"_s));
    }
    shell.tell(FakeShell::window(4, u"last"_s));
    ASSERT_TRUE(titleBecomes(*windows, u"last"_s));
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Moment::clock::now() - begin);
    EXPECT_TRUE(waitUntil([&] { return fronts.count() > 0; }));
    EXPECT_LE(fronts.count(), 2 + took / 50ms);
}

TEST_F(GnomeWindowsTest, KnowsHowItStandsWithTheExtension) {
    const QString id = test::extensionId;
    const struct {
        const char* name;
        FakeShell::ExtensionState known;
        const char* installedFor; // the shell's versions; null when no file is there
        ShellSettings settings;
        State state;
        Kind kind;
    } cases[] = {
        {"runs", FakeShell::active, nullptr, {.enabled = {id}}, State::active, Kind::yes},
        {"never switched on", FakeShell::initialized, nullptr, {}, State::off, Kind::no},
        {"switched off", FakeShell::inactive, nullptr, {.disabled = {id}}, State::offByUser, Kind::no},
        {"on and off",
         FakeShell::inactive,
         nullptr,
         {.enabled = {id}, .disabled = {id}},
         State::offByUser,
         Kind::no},
        {"all off",
         FakeShell::inactive,
         nullptr,
         {.allows = false, .enabled = {id}},
         State::allOff,
         Kind::no},
        {"broken", FakeShell::error, nullptr, {.enabled = {id}}, State::failed, Kind::no},
        {"of another shell", FakeShell::outOfDate, nullptr, {.enabled = {id}}, State::outdated, Kind::no},
        {"nowhere", FakeShell::none, nullptr, {.enabled = {id}}, State::notInstalled, Kind::no},
        {"new", FakeShell::none, R"("43", "44")", {}, State::notKnown, Kind::no},
        {"new and on", FakeShell::none, R"("43")", {.enabled = {id}}, State::afterLogin, Kind::afterLogin},
        {"new, all off",
         FakeShell::none,
         R"("43")",
         {.allows = false, .enabled = {id}},
         State::allOff,
         Kind::no},
        {"new, too new", FakeShell::none, R"("45", "4")", {.enabled = {id}}, State::outdated, Kind::no},
    };
    for (const auto& [name, known, installedFor, settingsThen, state, kind] : cases) {
        SCOPED_TRACE(name);
        m_settings = settingsThen;
        QFile::remove(m_folder.filePath(id + u"/metadata.json"_s));
        if (installedFor != nullptr) {
            install(installedFor);
        }
        const FakeShell shell(m_bus.connect(), m_settings, known);
        const GnomeExtension extension(m_bus.connect(), settings(), {m_folder.path()});
        EXPECT_TRUE(waitUntil([&, wanted = state] { return extension.state() == wanted; }, 2000))
            << "is " << static_cast<int>(extension.state());
        EXPECT_EQ(extension.ability().kind, kind);
        EXPECT_EQ(extension.ability().note.isEmpty(), kind == Kind::yes);
    }
    const GnomeExtension withoutShell(m_bus.connect(), settings(), {m_folder.path()});
    EXPECT_EQ(withoutShell.ability(), Ability());
}

TEST_F(GnomeWindowsTest, SwitchesTheExtensionOnWhenTheUserWishesIt) {
    m_settings = {.disabled = {test::extensionId}};
    FakeShell shell(m_bus.connect(), m_settings, FakeShell::inactive);
    shell.setWindow(FakeShell::window(1, u"A"_s));
    const auto windows = watch();
    const QSignalSpy abilities(windows.get(), &WindowSource::abilityChanged);
    ASSERT_TRUE(waitUntil([&] { return windows->ability().note.contains(u"オフになっています"); }));
    windows->request();
    EXPECT_TRUE(titleBecomes(*windows, u"A"_s));
    EXPECT_EQ(windows->ability(), Ability{.kind = Kind::yes});
    EXPECT_GE(abilities.count(), 1);
}

TEST_F(GnomeWindowsTest, PreparesTheNextLoginWhereTheShellDoesNotKnowTheExtensionYet) {
    m_settings = {};
    install(R"("43")");
    const FakeShell shell(m_bus.connect(), m_settings, FakeShell::none);
    const auto windows = watch();
    ASSERT_TRUE(waitUntil([&] { return windows->ability().note.contains(u"次のログイン"); }));
    EXPECT_EQ(windows->ability().kind, Kind::no);
    windows->request();
    EXPECT_EQ(windows->ability().kind, Kind::afterLogin);
    EXPECT_EQ(m_settings.enabled, QStringList{test::extensionId});
    EXPECT_EQ(shell.enableCalls(), 0);
}

/// From the first line of the interface to the end of the class: all but how the shell loads it.
QByteArray bodyOf(const QString& variant) {
    const QByteArray script =
        test::contentsOf(QStringLiteral(KESTU_GNOME_EXTENSION) + u'/' + variant + u"/extension.js"_s);
    const qsizetype begin = script.indexOf("const NAME");
    const qsizetype end = script.indexOf("\n}\n", script.indexOf("class FocusedWindow"));
    return begin < 0 || end < 0 ? QByteArray() : script.sliced(begin, end - begin);
}

TEST(GnomeExtensionFilesTest, AreTheSameForOldAndNewShellsAndSpeakAsTheRecorderListens) {
    EXPECT_EQ(bodyOf(u"imports"_s), bodyOf(u"modules"_s));
    EXPECT_TRUE(bodyOf(u"imports"_s).contains("const NAME = 'jp.kestu.FocusedWindow';"));
    EXPECT_TRUE(bodyOf(u"imports"_s).contains("const PATH = '/jp/kestu/FocusedWindow';"));
    QVariantList versions;
    for (const QString& variant : {u"imports"_s, u"modules"_s}) {
        const auto metadata = QJsonDocument::fromJson(
            test::contentsOf(QStringLiteral(KESTU_GNOME_EXTENSION) + u'/' + variant + u"/metadata.json"_s));
        EXPECT_EQ(metadata[u"uuid"].toString(), test::extensionId);
        versions += metadata[u"shell-version"].toArray().toVariantList();
    }
    EXPECT_EQ(versions, (QVariantList{u"43"_s, u"44"_s, u"45"_s, u"46"_s, u"47"_s, u"48"_s, u"49"_s}));
}

} // namespace
} // namespace kestu
