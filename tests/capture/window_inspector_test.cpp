// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/WindowInspector.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

class WindowInspectorTest : public testing::Test {
protected:
    static std::optional<Sample> sampleOf(WindowInspector& inspector) {
        const auto front = inspector.front();
        return front && !front->isIgnored ? std::optional(inspector.sample(*front)) : std::nullopt;
    }

    void show(const char* bundleId, const char* title) {
        workspace.front = {QString::fromUtf8(bundleId), u"名前"_s, 7};
        workspace.title = QString::fromUtf8(title);
    }

    test::FakeWorkspace workspace;
    test::FakeScripting scripting;
};

TEST_F(WindowInspectorTest, NamesWhatHasNoNameAndIgnoresWhatIsNeverRecorded) {
    WindowInspector inspector(workspace, scripting);
    EXPECT_FALSE(sampleOf(inspector));

    workspace.front = {{}, {}, 0};
    EXPECT_FALSE(sampleOf(inspector)) << "no process and no name: it has vanished";
    workspace.front = {{}, {}, 812};
    workspace.title = u"題"_s;
    EXPECT_EQ(sampleOf(inspector), (Sample{u"pid.812"_s, u"pid.812"_s, u"題"_s, {}}));
    workspace.front->localizedName = u"道具"_s;
    EXPECT_EQ(sampleOf(inspector)->appName, u"道具"_s);

    for (const char* ignored :
         {"com.apple.loginwindow", "com.apple.ScreenSaver.Engine", "com.apple.UserNotificationCenter",
          "com.apple.accessibility.universalAccessAuthWarn"}) {
        show(ignored, "");
        EXPECT_FALSE(sampleOf(inspector)) << ignored;
    }
}

TEST_F(WindowInspectorTest, AsksEachBrowserByItsOwnScript) {
    const char* const ofDocument = "return URL of front document";
    const char* const ofTab = "return URL of active tab of front window";
    const std::pair<const char*, const char*> rows[] = {
        {"com.apple.Safari", ofDocument},
        {"com.apple.SafariTechnologyPreview", ofDocument},
        {"com.google.Chrome", ofTab},
        {"com.google.Chrome.canary", ofTab},
        {"com.microsoft.edgemac", ofTab},
        {"com.brave.Browser", ofTab},
        {"com.vivaldi.Vivaldi", ofTab},
        {"company.thebrowser.Browser", ofTab},
        {"org.mozilla.firefox", "return the further statement"},
    };
    scripting.further = {{u"org.mozilla.firefox"_s, u"return the further statement"_s}};
    WindowInspector inspector(workspace, scripting);
    for (const auto& [bundleId, statement] : rows) {
        scripting.requests.clear();
        show(bundleId, "題");
        (void)sampleOf(inspector);
        ASSERT_EQ(scripting.requests.size(), 1U) << bundleId;
        EXPECT_EQ(scripting.requests[0].source.toStdString(),
                  std::string("with timeout of 1 seconds\n    tell application id \"") + bundleId + "\" to " +
                      statement + "\nend timeout");
        EXPECT_EQ(scripting.requests[0].processId, 7);
    }
}

TEST_F(WindowInspectorTest, AsksOncePerApplicationAndTitleAndRemembersAnAbsentAddressToo) {
    WindowInspector inspector(workspace, scripting);
    const struct {
        const char* bundleId;
        const char* title;
        std::optional<QString> answer;
        std::optional<QString> url; // what the sample then holds
        size_t questions;           // asked so far
    } rows[] = {
        {"com.google.Chrome", "一", u"https://example.jp/1"_s, u"https://example.jp/1"_s, 1},
        {"com.google.Chrome", "一", u"https://example.jp/2"_s, u"https://example.jp/1"_s, 1},
        {"com.vivaldi.Vivaldi", "一", u"https://example.jp/3"_s, u"https://example.jp/3"_s, 2},
        {"com.vivaldi.Vivaldi", "二", u""_s, {}, 3},
        {"com.vivaldi.Vivaldi", "二", u"https://example.jp/4"_s, {}, 3},
        {"org.example.Editor", "メモ", u"https://example.jp/5"_s, {}, 3},
        {"com.vivaldi.Vivaldi", "二", u"https://example.jp/6"_s, {}, 3},
        {"com.google.Chrome", "一", {}, {}, 4},
    };
    for (const auto& row : rows) {
        show(row.bundleId, row.title);
        scripting.answer = row.answer;
        EXPECT_EQ(sampleOf(inspector)->url, row.url) << row.answer.value_or(u"none"_s).toStdString();
        EXPECT_EQ(scripting.requests.size(), row.questions);
    }
}

} // namespace
} // namespace kestu
