// SPDX-License-Identifier: GPL-3.0-or-later
//
// A desktop that does what the test says, and a clock that stands still until it is moved.
#pragma once

#include "base/Time.h"
#include "platform/BrowserScripting.h"
#include "platform/DisplayAssertions.h"
#include "platform/Platform.h"
#include "platform/SystemEvents.h"
#include "platform/UserInput.h"
#include "platform/Workspace.h"

#include <functional>
#include <stdexcept>
#include <vector>

namespace kestu::test {

struct FakeClock {
    Instant now = instantAt(1'772'600'000);

    [[nodiscard]] Clock clock() {
        return [this] { return now; };
    }
};

struct FakeWorkspace final : Workspace {
    std::optional<FrontmostApplication> front;
    QString title;
    int questions = 0;
    std::function<void()> whileAsked;

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

struct FakePlatform final : Platform {
    FakeWorkspace fakeWorkspace;
    FakeScripting fakeScripting;
    FakeInput fakeInput;
    FakeAssertions fakeAssertions;
    SystemEvents events;

    [[nodiscard]] Workspace& workspace() override { return fakeWorkspace; }
    [[nodiscard]] BrowserScripting& browserScripting() override { return fakeScripting; }
    [[nodiscard]] UserInput& userInput() override { return fakeInput; }
    [[nodiscard]] DisplayAssertions& displayAssertions() override { return fakeAssertions; }
    [[nodiscard]] SystemEvents& systemEvents() override { return events; }
    [[nodiscard]] SettingsStore& settingsStore() override {
        throw std::logic_error("capture has no settings");
    }
    [[nodiscard]] LoginItem& loginItem() override { throw std::logic_error("capture has no login item"); }
    [[nodiscard]] Opener& opener() override { throw std::logic_error("capture opens nothing"); }
};

} // namespace kestu::test
