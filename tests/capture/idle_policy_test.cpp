// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/IdlePolicy.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

TEST(IdlePolicy, KeepsTheUserPresentForMeetingsVideosAndAHeldDisplay) {
    const struct {
        QString bundleId;
        std::optional<QString> url;
        bool isHeld;
        bool keeps;
    } rows[] = {
        {u"org.example.Editor"_s, {}, false, false},
        {u"org.example.Editor"_s, {}, true, true},
        {u"us.zoom.xos"_s, {}, false, true},
        {u"US.zoom.xos"_s, {}, false, false},
        {u"org.videolan.vlc"_s, {}, false, true},
        {u"firefox"_s, u"https://WWW.YouTube.com/watch?v=1"_s, false, true},
        {u"firefox"_s, u"https://live.a.nicovideo.jp/"_s, false, true},
        {u"firefox"_s, u"https://myyoutube.com/"_s, false, false},
        {u"firefox"_s, u"https://youtube.com.example.jp/"_s, false, false},
        {u"firefox"_s, u"https://[broken"_s, false, false},
        {u"firefox"_s, u"https://[broken"_s, true, true},
    };
    for (const auto& row : rows) {
        const Sample sample{row.bundleId, {}, {}, row.url};
        EXPECT_EQ(IdlePolicy{}.keepsAlive(sample, row.isHeld), row.keeps)
            << row.bundleId.toStdString() << " " << row.url.value_or(QString()).toStdString();
        EXPECT_FALSE((IdlePolicy{false, {}}.keepsAlive(sample, true)));
    }
    EXPECT_FALSE(IdlePolicy{}.keepsAlive(std::nullopt, true));
}

TEST(FrontmostPreventsDisplaySleep, CountsDisplayAssertionsOnlyAndUnknownAsNo) {
    const QString display = assertionType::preventUserIdleDisplaySleep.toString();
    const QString noDisplaySleep = assertionType::noDisplaySleepAssertion.toString();
    const QString system = assertionType::preventUserIdleSystemSleep.toString();
    const std::pair<std::optional<QStringList>, bool> rows[] = {
        {std::nullopt, false},
        {{{system}}, false},
        {{{system, display}}, true},
        {{{noDisplaySleep}}, true},
    };
    test::FakeWorkspace workspace;
    test::FakeAssertions assertions;
    assertions.types = {display};
    EXPECT_FALSE(frontmostPreventsDisplaySleep(workspace, assertions)) << "nobody is in front";
    workspace.front.emplace();
    for (const auto& [types, prevents] : rows) {
        assertions.types = types;
        EXPECT_EQ(frontmostPreventsDisplaySleep(workspace, assertions), prevents)
            << types.value_or(QStringList()).join(u' ').toStdString();
    }
}

} // namespace
} // namespace kestu
