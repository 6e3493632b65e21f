// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/IdlePolicy.h"

#include "platform/DisplayAssertions.h"
#include "platform/Workspace.h"

#include <algorithm>
#include <array>

namespace kestu {
namespace {

// Applications in which a call keeps the user present.
constexpr std::array<QStringView, 8> meetingAppIds{
    u"us.zoom.xos",
    u"com.microsoft.teams",
    u"com.microsoft.teams2",
    u"com.apple.FaceTime",
    u"com.cisco.webexmeetingsapp",
    u"com.webex.meetingmanager",
    u"com.hnc.Discord",
    u"com.tinyspeck.slackmacgap.huddle",
};

// Players and video editors.
constexpr std::array<QStringView, 7> videoAppIds{
    u"com.apple.QuickTimePlayerX", u"com.apple.TV", u"com.colliderli.iina",
    u"org.videolan.vlc",           u"io.mpv",       u"com.apple.FinalCut",
    u"com.apple.iMovieApp",
};

// The public web hosts of video and meeting services, without "www.".
constexpr std::array<QStringView, 13> videoSiteHosts{
    u"youtube.com", u"m.youtube.com",  u"netflix.com",    u"primevideo.com",  u"tver.jp",
    u"abema.tv",    u"nicovideo.jp",   u"twitch.tv",      u"meet.google.com", u"teams.microsoft.com",
    u"zoom.us",     u"video.unext.jp", u"disneyplus.com",
};

constexpr std::array displaySleepTypes{assertionType::preventUserIdleDisplaySleep,
                                       assertionType::noDisplaySleepAssertion};

bool holds(const auto& table, QStringView text) {
    return std::ranges::find(table, text) != table.end();
}

bool isVideoSite(const QString& host) {
    return std::ranges::any_of(videoSiteHosts, [&host](QStringView listed) {
        return host == listed || (host.endsWith(listed) && host.chopped(listed.size()).endsWith(u'.'));
    });
}

} // namespace

bool IdlePolicy::keepsAlive(const std::optional<Sample>& sample, bool displaySleepHeld) const {
    if (!keepAliveEnabled || !sample) {
        return false;
    }
    if (displaySleepHeld || holds(meetingAppIds, sample->bundleId) || holds(videoAppIds, sample->bundleId)) {
        return true;
    }
    const std::optional<QString> host = sample->domain();
    return host && isVideoSite(*host);
}

bool frontmostPreventsDisplaySleep(Workspace& workspace, DisplayAssertions& assertions) {
    const auto front = workspace.frontmostApplication();
    if (!front) {
        return false;
    }
    const auto types = assertions.heldBy(*front);
    return types &&
           std::ranges::any_of(*types, [](const QString& type) { return holds(displaySleepTypes, type); });
}

} // namespace kestu
