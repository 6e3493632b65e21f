// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/DesktopAccessibility.h"

#include "platform/PlatformError.h"
#include "platform/linux/AccessibilityBus.h"
#include "platform/linux/DesktopSession.h"
#include "platform/linux/LinuxSystemEvents.h"
#include "platform/linux/ReaderSwitch.h"

#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <array>

namespace kestu {
namespace {

struct SettingsProgram {
    QStringView desktop; // as XDG_CURRENT_DESKTOP names it
    QStringView program;
    QStringView page; // its argument; may be empty
};

// In the order of preference. Budgie calls itself "Budgie:GNOME", so its own program goes before GNOME's.
constexpr std::array<SettingsProgram, 7> settingsPrograms{{
    {.desktop = u"Budgie", .program = u"budgie-control-center", .page = u"universal-access"},
    {.desktop = u"GNOME", .program = u"gnome-control-center", .page = u"universal-access"},
    {.desktop = u"KDE", .program = u"systemsettings", .page = u"kcm_access"},
    {.desktop = u"KDE", .program = u"systemsettings5", .page = u"kcm_access"},
    {.desktop = u"X-Cinnamon", .program = u"cinnamon-settings", .page = u"universal-access"},
    {.desktop = u"MATE", .program = u"mate-at-properties", .page = {}},
    {.desktop = u"XFCE", .program = u"xfce4-accessibility-settings", .page = {}},
}};

constexpr std::array<SettingsProgram, 2> extensionPrograms{{
    {.desktop = u"GNOME", .program = u"gnome-extensions-app", .page = {}},
    {.desktop = u"GNOME", .program = u"extension-manager", .page = {}},
}};

bool start(const SettingsProgram& settings) {
    const QString path = QStandardPaths::findExecutable(settings.program.toString());
    const QStringList page = settings.page.isEmpty() ? QStringList() : QStringList(settings.page.toString());
    QProcess process;
    process.setProgram(path);
    process.setArguments(page);
    process.setWorkingDirectory(QDir::homePath());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QByteArray& variable : ownEnvironment()) {
        environment.remove(QString::fromLatin1(variable));
    }
    process.setProcessEnvironment(environment);
    return !path.isEmpty() && process.startDetached();
}

} // namespace

DesktopAccessibility::DesktopAccessibility(AccessibilityBus& bus, DesktopSession& session,
                                           const LinuxSystemEvents& events)
    : m_bus(bus)
    , m_session(session)
    , m_events(events) {
    connect(&m_session, &DesktopSession::abilitiesChanged, this, &Accessibility::abilitiesChanged);
}

bool DesktopAccessibility::isGranted() {
    return m_session.titles().kind == Ability::Kind::yes;
}

bool DesktopAccessibility::request() {
    // Refused or not, titles are read as before: addresses are a further thing.
    m_bus.enable();
    m_session.request();
    return isGranted();
}

Abilities DesktopAccessibility::abilities() {
    const Ability windows = m_session.windows();
    return {.source = m_session.source(),
            .windows = windows,
            .titles = m_session.titles(),
            .addresses = addresses(windows.kind),
            .idle = m_session.idle(),
            .lock = m_events.lock()};
}

Ability DesktopAccessibility::addresses(Ability::Kind windows) {
    if (windows == Ability::Kind::no || windows == Ability::Kind::afterLogin) {
        return {.kind = windows,
                .note = QStringLiteral("ウィンドウがわからないあいだは、ページの URL も記録できません。")};
    }
    if (!m_bus.isOffered()) {
        return {.note = QStringLiteral("ブラウザの URL を読み取るには、at-spi2-core パッケージを"
                                       "インストールしてください。")};
    }
    if (m_bus.isEnabled()) {
        return {.kind = Ability::Kind::yes};
    }
    if (windows == Ability::Kind::partly) { // browsers themselves are not seen then
        return {.note = QStringLiteral("「許可する」を押すと、読み取れるようになります。"),
                .mayBeRequested = true};
    }
    return {.kind = Ability::Kind::yes,
            .note = QStringLiteral("ブラウザが前面に来ると、アクセシビリティがオンになります。")};
}

void DesktopAccessibility::openSettings() {
    const QStringList running = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':');
    const auto isRunning = [&running](const SettingsProgram& settings) {
        return running.contains(settings.desktop, Qt::CaseInsensitive);
    };
    if (m_session.windows().kind != Ability::Kind::yes &&
        std::ranges::any_of(extensionPrograms, [&isRunning](const SettingsProgram& settings) {
            return isRunning(settings) && start(settings);
        })) {
        return;
    }
    for (const bool isOfRunning : {true, false}) {
        for (const SettingsProgram& settings : settingsPrograms) {
            if (isRunning(settings) == isOfRunning && start(settings)) {
                return;
            }
        }
    }
    throw PlatformError(QStringLiteral("アクセシビリティの設定画面が見つかりませんでした。"));
}

} // namespace kestu
