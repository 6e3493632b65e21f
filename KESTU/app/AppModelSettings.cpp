// SPDX-License-Identifier: GPL-3.0-or-later
//
// Recording, the settings, and what is asked of the system.
#include "app/AppModel.h"

#include "platform/Accessibility.h"
#include "platform/LoginItem.h"
#include "platform/Opener.h"
#include "platform/Platform.h"
#include "platform/PlatformError.h"
#include "platform/SettingsStore.h"
#include "platform/Workspace.h"

#include <QFileInfo>

#include <utility>

namespace kestu {
namespace {

namespace key {
const QString idleMinutes = QStringLiteral("idleMinutes");
const QString keepAliveEnabled = QStringLiteral("keepAliveEnabled");
const QString excludedApps = QStringLiteral("excludedApps");
const QString welcomeShown = QStringLiteral("welcomeShown");
const QString themeChoice = QStringLiteral("appearance");
const QString windowPlace = QStringLiteral("window");
} // namespace key

constexpr int defaultIdleMinutes = 3;

} // namespace

// Start and stop

void AppModel::loadSettings() {
    const SettingsStore& store = m_platform.settingsStore();
    const QString problem = store.problem(); // before the first setting is stored, which mends it
    if (!problem.isEmpty()) {
        setErrorMessage(problem);
    }
    const int minutes = store.integer(key::idleMinutes).value_or(0);
    setIdleMinutes(minutes >= 1 ? minutes : defaultIdleMinutes);
    setLaunchAtLogin(m_platform.loginItem().isEnabled());
    loadThemeChoice();
    setKeepAliveEnabled(store.boolean(key::keepAliveEnabled).value_or(true));
    setExcludedApps(store.dictionary(key::excludedApps).value_or(QMap<QString, QString>()));
}

void AppModel::start() {
    refreshAccessibility();
    m_tracker.start();
    mirrorTracking();
}

void AppModel::stop() {
    m_tracker.stop();
    mirrorTracking();
}

// Recording

void AppModel::toggleTracking() {
    const bool wasRunning = m_tracker.isRunning();
    wasRunning ? m_tracker.stop() : m_tracker.start();
    assign(m_userPaused, wasRunning, &AppModel::userPausedChanged);
    mirrorTracking();
    forgetFailures();
    reloadDay();
}

void AppModel::mirrorTracking() {
    assign(m_isTracking, m_tracker.isRunning(), &AppModel::isTrackingChanged);
}

// Settings. Each is stored also when it is the same: at the start that is how the tracker gets to know it.

void AppModel::setIdleMinutes(int minutes) {
    assign(m_idleMinutes, minutes, &AppModel::idleMinutesChanged);
    m_tracker.idleThreshold = std::chrono::minutes(minutes);
    tryPlatform([&] { m_platform.settingsStore().setInteger(key::idleMinutes, minutes); });
}

void AppModel::setKeepAliveEnabled(bool enabled) {
    assign(m_keepAliveEnabled, enabled, &AppModel::keepAliveEnabledChanged);
    m_tracker.policy.keepAliveEnabled = enabled;
    tryPlatform([&] { m_platform.settingsStore().setBoolean(key::keepAliveEnabled, enabled); });
}

void AppModel::excludeApp(const QString& bundleId, const QString& name) {
    QMap<QString, QString> apps = m_excludedApps;
    apps.insert(bundleId, name);
    setExcludedApps(apps);
}

void AppModel::includeApp(const QString& bundleId) {
    QMap<QString, QString> apps = m_excludedApps;
    apps.remove(bundleId);
    setExcludedApps(apps);
}

void AppModel::setExcludedApps(QMap<QString, QString> apps) {
    assign(m_excludedApps, std::move(apps), &AppModel::excludedAppsChanged);
    const QStringList bundleIds = m_excludedApps.keys();
    m_tracker.policy.excludedBundleIds = QSet<QString>(bundleIds.begin(), bundleIds.end());
    tryPlatform([&] { m_platform.settingsStore().setDictionary(key::excludedApps, m_excludedApps); });
}

QMap<QString, QString> AppModel::recordedApps() const {
    QMap<QString, QString> apps;
    for (const ResolvedActivity& item : m_dayItems) {
        const Activity& activity = item.activity;
        if (!activity.isManual && !activity.bundleId.isEmpty()) {
            apps.insert(activity.bundleId, activity.appName);
        }
    }
    return apps;
}

void AppModel::setLaunchAtLogin(bool enabled) {
    assign(m_launchAtLogin, enabled, &AppModel::launchAtLoginChanged);
    tryPlatform([this] { applyLaunchAtLogin(); }, QStringLiteral("ログイン時に起動の設定に失敗しました："));
}

void AppModel::applyLaunchAtLogin() {
    LoginItem& item = m_platform.loginItem();
    if (item.isEnabled() != m_launchAtLogin) {
        m_launchAtLogin ? item.enable() : item.disable();
    }
}

bool AppModel::welcomeShown() const {
    return m_platform.settingsStore().boolean(key::welcomeShown).value_or(false);
}

void AppModel::setWelcomeShown() {
    tryPlatform([this] { m_platform.settingsStore().setBoolean(key::welcomeShown, true); });
}

void AppModel::loadThemeChoice() {
    const int stored = m_platform.settingsStore().integer(key::themeChoice).value_or(0);
    for (const ThemeChoice choice : {ThemeChoice::system, ThemeChoice::light, ThemeChoice::dark}) {
        if (static_cast<int>(choice) == stored) {
            assign(m_themeChoice, choice, &AppModel::themeChoiceChanged);
        }
    }
}

void AppModel::setThemeChoice(ThemeChoice choice) {
    assign(m_themeChoice, choice, &AppModel::themeChoiceChanged);
    tryPlatform([&] { m_platform.settingsStore().setInteger(key::themeChoice, static_cast<int>(choice)); });
}

QMap<QString, QString> AppModel::windowPlace() const {
    return m_platform.settingsStore().dictionary(key::windowPlace).value_or(QMap<QString, QString>());
}

void AppModel::setWindowPlace(const QMap<QString, QString>& place) {
    if (place != windowPlace()) {
        tryPlatform([&] { m_platform.settingsStore().setDictionary(key::windowPlace, place); });
    }
}

// The system

void AppModel::requestAccessibility() {
    (void)m_platform.accessibility().request();
    refreshAccessibility();
}

void AppModel::refreshAccessibility() {
    const Abilities abilities = m_platform.accessibility().abilities();
    const bool isGranted = m_platform.accessibility().isGranted();
    const QString whyUnseen = m_platform.workspace().whyUnseen();
    // All of them before any is told: who hears of one reads the others, too.
    m_words = m_platform.words(abilities, dataFolder());
    const bool isOtherSession = std::exchange(m_abilities, abilities) != abilities;
    const bool isOtherGrant = std::exchange(m_accessibilityGranted, isGranted) != isGranted;
    const bool isOtherSight = std::exchange(m_whyUnseen, whyUnseen) != whyUnseen;
    if (isOtherSession) {
        Q_EMIT abilitiesChanged();
    }
    if (isOtherGrant) {
        Q_EMIT accessibilityGrantedChanged();
    }
    if (isOtherSight) {
        Q_EMIT whyUnseenChanged();
    }
}

void AppModel::refreshWhyUnseen() {
    if (m_platform.workspace().whyUnseen() != m_whyUnseen) {
        refreshAccessibility();
    }
}

void AppModel::openAccessibilitySettings() {
    tryPlatform([this] { m_platform.accessibility().openSettings(); });
}

void AppModel::openAddress(const QUrl& address) {
    tryPlatform([&] { m_platform.opener().openAddress(address); });
}

void AppModel::openPage(const QString& path) {
    tryPlatform([&] { m_platform.opener().openPage(path); });
}

QString AppModel::dataFolder() const {
    return QFileInfo(m_repository->database().path()).absolutePath();
}

void AppModel::openDataFolder() {
    tryPlatform([this] { m_platform.opener().openFolder(dataFolder()); });
}

void AppModel::checkForUpdates(std::function<void(const UpdateAnswer&)> answered) {
    m_platform.softwareUpdates().check(std::move(answered));
}

/// Runs `body`; its failure becomes the error message, behind `prefix`.
void AppModel::tryPlatform(const std::function<void()>& body, const QString& prefix) {
    try {
        body();
    } catch (const PlatformError& error) {
        setErrorMessage(prefix + error.description());
    }
}

} // namespace kestu
