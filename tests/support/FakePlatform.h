// SPDX-License-Identifier: GPL-3.0-or-later
//
// A desktop that does what the test says, and a clock that stands still until it is moved.
#pragma once

#include "base/Time.h"
#include "platform/Accessibility.h"
#include "platform/Appearance.h"
#include "platform/BrowserScripting.h"
#include "platform/DisplayAssertions.h"
#include "platform/LoginItem.h"
#include "platform/Opener.h"
#include "platform/Platform.h"
#include "platform/PlatformError.h"
#include "platform/SettingsStore.h"
#include "platform/SoftwareUpdates.h"
#include "platform/SystemEvents.h"
#include "platform/UserInput.h"
#include "platform/Workspace.h"

#include <functional>
#include <utility>
#include <vector>

namespace kestu::test {

struct FakeClock {
    Instant now = instantAt(1'772'600'000);
    Seconds wasSetBy{0};

    /// Sets the wall clock, as a person or a time server does: no time passes.
    void setBy(Seconds step) {
        now += step;
        wasSetBy += step;
    }
    [[nodiscard]] Clock clock() {
        return [this] { return now; };
    }
    [[nodiscard]] Uptime uptime() {
        return [this] { return now.time_since_epoch() - wasSetBy; };
    }
};

struct FakeWorkspace final : Workspace {
    std::optional<FrontmostApplication> front;
    QString title;
    QString unseen;
    int questions = 0;
    std::function<void()> whileAsked;

    [[nodiscard]] QString whyUnseen() override { return unseen; }

    [[nodiscard]] std::optional<FrontmostApplication> frontmostApplication() override {
        ++questions;
        if (whileAsked) {
            whileAsked();
        }
        return front;
    }
    [[nodiscard]] QString focusedWindowTitle(std::int64_t processId) override {
        return front && front->processId == processId ? title : QString();
    }
};

struct FakeScripting final : BrowserScripting {
    std::vector<BrowserScript> further;
    std::optional<QString> answer;
    std::vector<AddressRequest> requests;

    [[nodiscard]] std::vector<BrowserScript> furtherBrowsers() const override { return further; }
    [[nodiscard]] std::optional<QString> run(const AddressRequest& request) override {
        requests.push_back(request);
        return answer;
    }
};

struct FakeInput final : UserInput {
    Seconds idle{0};

    [[nodiscard]] Seconds secondsSinceLastInput() override { return idle; }
};

struct FakeAssertions final : DisplayAssertions {
    std::optional<QStringList> types = QStringList();

    [[nodiscard]] std::optional<QStringList> heldBy(const FrontmostApplication&) override { return types; }
};

/// Keeps values; with a refusal every write fails with it.
struct FakeSettings final : SettingsStore {
    QMap<QString, int> integers;
    QMap<QString, bool> booleans;
    QMap<QString, QMap<QString, QString>> dictionaries;
    QString refusal;
    QString unreadable;

    [[nodiscard]] QString problem() const override { return unreadable; }

    [[nodiscard]] std::optional<int> integer(const QString& key) const override {
        return stored(integers, key);
    }
    [[nodiscard]] std::optional<bool> boolean(const QString& key) const override {
        return stored(booleans, key);
    }
    [[nodiscard]] std::optional<QMap<QString, QString>> dictionary(const QString& key) const override {
        return stored(dictionaries, key);
    }
    void setInteger(const QString& key, int value) override { store(integers, key, value); }
    void setBoolean(const QString& key, bool value) override { store(booleans, key, value); }
    void setDictionary(const QString& key, const QMap<QString, QString>& value) override {
        store(dictionaries, key, value);
    }

private:
    template<class Value>
    [[nodiscard]] static std::optional<Value> stored(const QMap<QString, Value>& values, const QString& key) {
        return values.contains(key) ? std::optional(values[key]) : std::nullopt;
    }
    template<class Value>
    void store(QMap<QString, Value>& values, const QString& key, const Value& value) const {
        if (!refusal.isEmpty()) {
            throw PlatformError(refusal);
        }
        values[key] = value;
    }
};

struct FakeLoginItem final : LoginItem {
    bool enabled = false;
    QString refusal;

    [[nodiscard]] bool isEnabled() const override { return enabled; }
    void enable() override { set(true); }
    void disable() override { set(false); }

private:
    void set(bool value) {
        if (!refusal.isEmpty()) {
            throw PlatformError(refusal);
        }
        enabled = value;
    }
};

struct FakeOpener final : Opener {
    QStringList folders;
    QList<QUrl> addresses;
    QStringList pages;

    void openFolder(const QString& path) override { folders << path; }
    void openAddress(const QUrl& address) override { addresses << address; }
    void openPage(const QString& path) override { pages << path; }
};

struct FakeAccessibility final : Accessibility {
    bool granted = true;
    bool grantsOnRequest = false;
    int requests = 0;
    int settingsOpened = 0;
    Abilities able{.source = QStringLiteral("X11"),
                   .windows = {.kind = Ability::Kind::yes},
                   .titles = {.kind = Ability::Kind::yes},
                   .addresses = {.kind = Ability::Kind::yes},
                   .idle = {.kind = Ability::Kind::yes},
                   .lock = {.kind = Ability::Kind::yes}};

    /// The session changes under way.
    void become(const Abilities& other) {
        able = other;
        granted = able.titles.kind == Ability::Kind::yes;
        Q_EMIT abilitiesChanged();
    }

    [[nodiscard]] Abilities abilities() override { return able; }
    [[nodiscard]] bool isGranted() override { return granted; }
    [[nodiscard]] bool request() override {
        ++requests;
        granted = granted || grantsOnRequest;
        return granted;
    }
    void openSettings() override { ++settingsOpened; }
};

/// Answers when the test says so.
struct FakeUpdates final : SoftwareUpdates {
    std::vector<std::function<void(const UpdateAnswer&)>> asked;

    void check(std::function<void(const UpdateAnswer&)> answered) override {
        asked.push_back(std::move(answered));
    }
};

struct FakeAppearance final : Appearance {
    std::optional<ColorScheme> scheme;

    [[nodiscard]] std::optional<ColorScheme> colorScheme() const override { return scheme; }
    [[nodiscard]] std::optional<Rgb> trayInk() const override { return std::nullopt; }
    void set(ColorScheme to) {
        scheme = to;
        Q_EMIT colorSchemeChanged();
    }
};

struct FakeSystemEvents final : SystemEvents {
    bool held = false;

    [[nodiscard]] bool isHeldNow() override { return held; }
};

struct FakePlatform : Platform {
    FakeWorkspace fakeWorkspace;
    FakeScripting fakeScripting;
    FakeInput fakeInput;
    FakeAssertions fakeAssertions;
    FakeSettings fakeSettings;
    FakeLoginItem fakeLoginItem;
    FakeOpener fakeOpener;
    FakeAccessibility fakeAccessibility;
    FakeUpdates fakeUpdates;
    FakeAppearance fakeAppearance;
    FakeSystemEvents events;

    /// From now on no window can be seen, and that is why.
    void loseSight(const QString& why, Ability::Kind kind = Ability::Kind::no) {
        fakeWorkspace.unseen = why;
        fakeWorkspace.front.reset();
        Abilities unseen;
        unseen.windows = unseen.titles = {.kind = kind, .note = why};
        fakeAccessibility.become(unseen);
    }

    [[nodiscard]] Workspace& workspace() override { return fakeWorkspace; }
    [[nodiscard]] BrowserScripting& browserScripting() override { return fakeScripting; }
    [[nodiscard]] UserInput& userInput() override { return fakeInput; }
    [[nodiscard]] DisplayAssertions& displayAssertions() override { return fakeAssertions; }
    [[nodiscard]] SystemEvents& systemEvents() override { return events; }
    [[nodiscard]] SettingsStore& settingsStore() override { return fakeSettings; }
    [[nodiscard]] LoginItem& loginItem() override { return fakeLoginItem; }
    [[nodiscard]] Opener& opener() override { return fakeOpener; }
    [[nodiscard]] Accessibility& accessibility() override { return fakeAccessibility; }
    [[nodiscard]] SoftwareUpdates& softwareUpdates() override { return fakeUpdates; }
    [[nodiscard]] Appearance& appearance() override { return fakeAppearance; }
    [[nodiscard]] SystemWords words(const Abilities& abilities, const QString& dataFolder) const override {
        return linuxWords(abilities, dataFolder);
    }
};

} // namespace kestu::test
