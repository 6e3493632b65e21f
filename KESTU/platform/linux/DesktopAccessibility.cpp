// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/DesktopAccessibility.h"

#include "platform/PlatformError.h"
#include "platform/linux/AccessibilityBus.h"
#include "platform/linux/DesktopSession.h"
#include "platform/linux/ReaderSwitch.h"

#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QString>
#include <QStringList>

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

DesktopAccessibility::DesktopAccessibility(AccessibilityBus& bus, DesktopSession& session)
    : m_bus(bus)
    , m_session(session) {}

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
    const bool isBusOn = m_bus.isEnabled();
    return {.source = m_session.source(),
            .windows = m_session.windows(),
            .titles = m_session.titles(),
            .addresses = {.kind = isBusOn ? Ability::Kind::yes : Ability::Kind::no},
            .idle = m_session.idle(),
            .lock = {.kind = Ability::Kind::yes}};
}

void DesktopAccessibility::openSettings() {
    const QStringList running = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':');
    for (const bool isOfRunning : {true, false}) {
        for (const SettingsProgram& settings : settingsPrograms) {
            if (running.contains(settings.desktop, Qt::CaseInsensitive) == isOfRunning && start(settings)) {
                return;
            }
        }
    }
    throw PlatformError(QStringLiteral("アクセシビリティの設定画面が見つかりませんでした。"));
}

} // namespace kestu
