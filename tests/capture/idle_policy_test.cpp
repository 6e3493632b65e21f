// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/IdlePolicy.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace kestu {
namespace {

TEST(IdlePolicy, KeepsTheUserPresentForMeetingsVideosAndAHeldDisplay) {
    const struct {
        const char* bundleId;
        const char* url; // null for none
        bool isHeld;
        bool keeps;
    } rows[] = {
        {"org.example.Editor", nullptr, false, false},
        {"org.example.Editor", nullptr, true, true},
        {"us.zoom.xos", nullptr, false, true},
        {"US.zoom.xos", nullptr, false, false},
        {"org.videolan.vlc", nullptr, false, true},
        {"org.mozilla.firefox", "https://WWW.YouTube.com/watch?v=1", false, true},
        {"org.mozilla.firefox", "https://m.youtube.com/", false, true},
        {"org.mozilla.firefox", "https://live.a.nicovideo.jp/", false, true},
        {"org.mozilla.firefox", "https://myyoutube.com/", false, false},
        {"org.mozilla.firefox", "https://youtube.com.example.jp/", false, false},
        {"org.mozilla.firefox", "https://docs.google.com/", false, false},
        {"org.mozilla.firefox", "about:blank", false, false},
        {"org.mozilla.firefox", "https://[broken", false, false},
        {"org.mozilla.firefox", "https://[broken", true, true},
    };
    for (const auto& row : rows) {
        Sample sample;
        sample.bundleId = QString::fromUtf8(row.bundleId);
        if (row.url != nullptr) {
            sample.url = QString::fromUtf8(row.url);
        }
        EXPECT_EQ(IdlePolicy{}.keepsAlive(sample, row.isHeld), row.keeps) << row.bundleId << " " << row.url;
        EXPECT_FALSE(
            (IdlePolicy{.keepAliveEnabled = false, .excludedBundleIds = {}}.keepsAlive(sample, true)));
    }
    EXPECT_FALSE(IdlePolicy{}.keepsAlive(std::nullopt, true));
}

TEST(FrontmostPreventsDisplaySleep, CountsDisplayAssertionsOnlyAndUnknownAsNo) {
    const QString display = assertionType::preventUserIdleDisplaySleep.toString();
    const QString noDisplaySleep = assertionType::noDisplaySleepAssertion.toString();
    const QString system = assertionType::preventUserIdleSystemSleep.toString();
    const struct {
        std::optional<QStringList> types;
        bool prevents;
    } rows[] = {
        {std::nullopt, false},
        {QStringList(), false},
        {QStringList{system}, false},
        {QStringList{system, display}, true},
        {QStringList{noDisplaySleep}, true},
    };
    test::FakeWorkspace workspace;
    test::FakeAssertions assertions;
    for (const auto& row : rows) {
        assertions.types = row.types;
        workspace.front.reset();
        EXPECT_FALSE(frontmostPreventsDisplaySleep(workspace, assertions));
        workspace.front.emplace();
        EXPECT_EQ(frontmostPreventsDisplaySleep(workspace, assertions), row.prevents);
    }
}

} // namespace
} // namespace kestu
