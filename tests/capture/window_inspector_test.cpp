// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/WindowInspector.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

class WindowInspectorTest : public testing::Test {
protected:
    WindowInspectorTest() {
        scripting.further = {{u"org.mozilla.firefox"_s, u"return URL of front document"_s}};
    }

    void show(const char* bundleId, const char* title) {
        workspace.front = FrontmostApplication{
            .bundleId = QString::fromUtf8(bundleId), .localizedName = u"名前"_s, .processId = 7};
        workspace.title = QString::fromUtf8(title);
    }

    test::FakeWorkspace workspace;
    test::FakeScripting scripting;
};

TEST_F(WindowInspectorTest, NamesWhatHasNoNameAndIgnoresWhatIsNeverRecorded) {
    WindowInspector inspector(workspace, scripting);
    EXPECT_FALSE(inspector.sample());

    workspace.front = FrontmostApplication{.bundleId = {}, .localizedName = {}, .processId = 812};
    workspace.title = u"題"_s;
    EXPECT_EQ(inspector.sample(), (Sample{u"pid.812"_s, u"pid.812"_s, u"題"_s, std::nullopt}));
    workspace.front->localizedName = u"道具"_s;
    EXPECT_EQ(inspector.sample()->appName, u"道具"_s);

    for (const char* ignored :
         {"com.apple.loginwindow", "com.apple.ScreenSaver.Engine", "com.apple.UserNotificationCenter",
          "com.apple.accessibility.universalAccessAuthWarn"}) {
        show(ignored, "");
        EXPECT_FALSE(inspector.sample()) << ignored;
    }
}

TEST_F(WindowInspectorTest, AsksEachBrowserByItsOwnScript) {
    const struct {
        const char* bundleId;
        const char* statement; // null for no question
    } rows[] = {
        {"com.apple.Safari", "return URL of front document"},
        {"com.apple.SafariTechnologyPreview", "return URL of front document"},
        {"com.google.Chrome", "return URL of active tab of front window"},
        {"com.google.Chrome.canary", "return URL of active tab of front window"},
        {"com.microsoft.edgemac", "return URL of active tab of front window"},
        {"com.brave.Browser", "return URL of active tab of front window"},
        {"com.vivaldi.Vivaldi", "return URL of active tab of front window"},
        {"company.thebrowser.Browser", "return URL of active tab of front window"},
        {"org.mozilla.firefox", "return URL of front document"},
        {"org.example.Editor", nullptr},
    };
    WindowInspector inspector(workspace, scripting);
    for (const auto& row : rows) {
        scripting.requests.clear();
        show(row.bundleId, "題");
        EXPECT_FALSE(inspector.sample()->url);
        if (row.statement == nullptr) {
            EXPECT_TRUE(scripting.requests.empty());
            continue;
        }
        ASSERT_EQ(scripting.requests.size(), 1U) << row.bundleId;
        const std::string source = std::string("with timeout of 1 seconds\n    tell application id \"") +
                                   row.bundleId + "\" to " + row.statement + "\nend timeout";
        EXPECT_EQ(scripting.requests[0].source.toStdString(), source);
        EXPECT_EQ(scripting.requests[0].processId, 7);
    }
}

TEST_F(WindowInspectorTest, AsksOncePerApplicationAndTitleAndRemembersAnAbsentAddressToo) {
    WindowInspector inspector(workspace, scripting);
    const struct {
        const char* bundleId;
        const char* title;
        const char* answer; // null for none
        const char* url;    // what the sample then holds
        size_t questions;   // asked so far
    } rows[] = {
        {"com.google.Chrome", "一", "https://example.jp/1", "https://example.jp/1", 1},
        {"com.google.Chrome", "一", "https://example.jp/2", "https://example.jp/1", 1},
        {"com.vivaldi.Vivaldi", "一", "https://example.jp/3", "https://example.jp/3", 2},
        {"com.vivaldi.Vivaldi", "二", "", nullptr, 3},
        {"com.vivaldi.Vivaldi", "二", "https://example.jp/4", nullptr, 3},
        {"org.example.Editor", "メモ", "https://example.jp/5", nullptr, 3},
        {"com.vivaldi.Vivaldi", "二", "https://example.jp/6", nullptr, 3},
        {"com.google.Chrome", "一", nullptr, nullptr, 4},
    };
    for (const auto& row : rows) {
        show(row.bundleId, row.title);
        scripting.answer.reset();
        if (row.answer != nullptr) {
            scripting.answer = QString::fromUtf8(row.answer);
        }
        const auto sample = inspector.sample();
        EXPECT_EQ(sample->url.has_value(), row.url != nullptr) << row.title;
        EXPECT_EQ(sample->url.value_or(QString()), QString::fromUtf8(row.url)) << row.title;
        EXPECT_EQ(scripting.requests.size(), row.questions);
    }
}

} // namespace
} // namespace kestu
