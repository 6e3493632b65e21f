// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/WindowInspector.h"

#include "platform/BrowserScripting.h"
#include "platform/Workspace.h"

#include <algorithm>
#include <array>

namespace kestu {
namespace {

// System processes that are never recorded.
constexpr std::array<QStringView, 4> ignoredBundleIds{
    u"com.apple.loginwindow",
    u"com.apple.ScreenSaver.Engine",
    u"com.apple.UserNotificationCenter",
    u"com.apple.accessibility.universalAccessAuthWarn",
};

QHash<QString, QString> browserScripts(const BrowserScripting& scripting) {
    const QString ofDocument = QStringLiteral("return URL of front document");
    const QString ofTab = QStringLiteral("return URL of active tab of front window");
    QHash<QString, QString> scripts{
        {QStringLiteral("com.apple.Safari"), ofDocument},
        {QStringLiteral("com.apple.SafariTechnologyPreview"), ofDocument},
        {QStringLiteral("com.google.Chrome"), ofTab},
        {QStringLiteral("com.google.Chrome.canary"), ofTab},
        {QStringLiteral("com.microsoft.edgemac"), ofTab},
        {QStringLiteral("com.brave.Browser"), ofTab},
        {QStringLiteral("com.vivaldi.Vivaldi"), ofTab},
        {QStringLiteral("company.thebrowser.Browser"), ofTab},
    };
    for (const BrowserScript& further : scripting.furtherBrowsers()) {
        scripts.insert(further.bundleId, further.statement);
    }
    return scripts;
}

QString scriptSource(const QString& bundleId, const QString& statement) {
    return QStringLiteral("with timeout of 1 seconds\n    tell application id \"%1\" to %2\nend timeout")
        .arg(bundleId, statement);
}

} // namespace

WindowInspector::WindowInspector(Workspace& workspace, BrowserScripting& scripting)
    : m_workspace(workspace)
    , m_scripting(scripting)
    , m_browserScripts(browserScripts(scripting)) {}

std::optional<WindowInFront> WindowInspector::front() {
    const auto front = m_workspace.frontmostApplication();
    if (!front || (!front->bundleId && front->processId == 0)) {
        return std::nullopt;
    }
    const QString bundleId = front->bundleId.value_or(QStringLiteral("pid.%1").arg(front->processId));
    return WindowInFront{.bundleId = bundleId,
                         .appName = front->localizedName.value_or(bundleId),
                         .title = m_workspace.focusedWindowTitle(front->processId),
                         .processId = front->processId,
                         .inFrontFor = front->inFrontFor,
                         .titledFor = front->titledFor,
                         .isOwnPanel = front->isOwnPanel,
                         .isIgnored =
                             std::ranges::find(ignoredBundleIds, bundleId) != ignoredBundleIds.end()};
}

Sample WindowInspector::sample(const WindowInFront& front) {
    return {.bundleId = front.bundleId,
            .appName = front.appName,
            .title = front.title,
            .url = browserURL(front.bundleId, front.title, front.processId)};
}

std::optional<QString> WindowInspector::browserURL(const QString& bundleId, const QString& title,
                                                   std::int64_t processId) {
    const auto statement = m_browserScripts.constFind(bundleId);
    if (statement == m_browserScripts.constEnd()) {
        return std::nullopt;
    }
    if (!m_urlCache || m_urlCache->bundleId != bundleId || m_urlCache->title != title) {
        auto url = m_scripting.run({.source = scriptSource(bundleId, *statement),
                                    .bundleId = bundleId,
                                    .title = title,
                                    .processId = processId});
        if (url && url->isEmpty()) {
            url.reset();
        }
        m_urlCache = UrlCache{.bundleId = bundleId, .title = title, .url = std::move(url)};
    }
    return m_urlCache->url;
}

} // namespace kestu
