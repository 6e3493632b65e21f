// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LinuxPlatform.h"

#include "platform/linux/AccessibilityBus.h"
#include "platform/linux/AutostartEntry.h"
#include "platform/linux/BrowserAddress.h"
#include "platform/linux/DesktopAccessibility.h"
#include "platform/linux/DesktopAppearance.h"
#include "platform/linux/DesktopOpener.h"
#include "platform/linux/JsonSettings.h"
#include "platform/linux/LinuxDisplayAssertions.h"
#include "platform/linux/LinuxSystemEvents.h"
#include "platform/linux/PackageKitUpdates.h"
#include "platform/linux/SessionKind.h"
#include "platform/linux/Unknown.h"
#include "platform/linux/X11Session.h"
#include "platform/linux/wayland/WaylandSession.h"

#include <QCoreApplication>
#include <QDBusConnection>

namespace kestu {
namespace {

/// A session whose windows cannot be seen: nothing is in front, and so nothing wrong is recorded.
class UnseenSession final : public DesktopSession, Workspace {
public:
    explicit UnseenSession(QString why)
        : m_why(std::move(why)) {}

    [[nodiscard]] Workspace& workspace() override { return *this; }
    [[nodiscard]] UserInput& userInput() override { return m_input; }
    [[nodiscard]] DisplayPower& displayPower() override { return m_displayPower; }
    [[nodiscard]] QString source() const override { return {}; }
    [[nodiscard]] Ability windows() override { return {.kind = Ability::Kind::no, .note = m_why}; }
    [[nodiscard]] Ability titles() override { return windows(); }
    [[nodiscard]] Ability idle() override { return {}; }

    [[nodiscard]] QString whyUnseen() override { return m_why; }
    [[nodiscard]] std::optional<FrontmostApplication> frontmostApplication() override { return std::nullopt; }
    [[nodiscard]] QString focusedWindowTitle(std::int64_t) override { return {}; }

private:
    QString m_why;
    UnknownInput m_input;
    UnknownDisplayPower m_displayPower;
};

std::unique_ptr<DesktopSession> openSession(DesktopSession::IsHeld isHeld) {
    if (isWaylandSession()) {
        return std::make_unique<WaylandSession>(QDBusConnection::sessionBus(), std::move(isHeld));
    }
    QString why;
    if (auto session = X11Session::open(std::move(isHeld), why)) {
        return session;
    }
    return std::make_unique<UnseenSession>(why);
}

class LinuxPlatform final : public Platform {
public:
    LinuxPlatform()
        : m_session(openSession([this] { return m_systemEvents.isHeld(); })) // asked later
        , m_systemEvents(QDBusConnection::systemBus(), QDBusConnection::sessionBus(),
                         m_session->displayPower())
        , m_displayAssertions(QDBusConnection::systemBus(), QDBusConnection::sessionBus(),
                              [this](const FrontmostApplication& front, const QDeadlineTimer& deadline) {
                                  return m_session->keepsDisplayOn(front, deadline);
                              })
        , m_accessibilityBus(QDBusConnection::sessionBus())
        , m_browserAddress(m_accessibilityBus)
        , m_settings(userSettingsPath())
        , m_loginItem(userAutostartFolder(), QCoreApplication::applicationFilePath())
        , m_accessibility(m_accessibilityBus, *m_session, m_systemEvents)
        , m_softwareUpdates(QDBusConnection::systemBus())
        , m_appearance(QDBusConnection::sessionBus(), connectForAppearance, toolkitSettingsFiles()) {
        QObject::connect(m_session.get(), &DesktopSession::activated, &m_systemEvents,
                         &LinuxSystemEvents::noteActivation);
        QObject::connect(m_session.get(), &DesktopSession::titleChanged, &m_systemEvents,
                         &LinuxSystemEvents::noteTitle);
    }

    [[nodiscard]] Workspace& workspace() override { return m_session->workspace(); }
    [[nodiscard]] BrowserScripting& browserScripting() override { return m_browserAddress; }
    [[nodiscard]] UserInput& userInput() override { return m_session->userInput(); }
    [[nodiscard]] DisplayAssertions& displayAssertions() override { return m_displayAssertions; }
    [[nodiscard]] SystemEvents& systemEvents() override { return m_systemEvents; }
    [[nodiscard]] SettingsStore& settingsStore() override { return m_settings; }
    [[nodiscard]] LoginItem& loginItem() override { return m_loginItem; }
    [[nodiscard]] Opener& opener() override { return m_opener; }
    [[nodiscard]] Accessibility& accessibility() override { return m_accessibility; }
    [[nodiscard]] SoftwareUpdates& softwareUpdates() override { return m_softwareUpdates; }
    [[nodiscard]] Appearance& appearance() override { return m_appearance; }
    [[nodiscard]] SystemWords words(const Abilities& abilities, const QString& dataFolder) const override {
        return linuxWords(abilities, dataFolder);
    }

private:
    static std::unique_ptr<Xcb> connectForAppearance() {
        QString why;
        return isWaylandSession() ? nullptr : Xcb::connect(why);
    }

    std::unique_ptr<DesktopSession> m_session;
    LinuxSystemEvents m_systemEvents;
    LinuxDisplayAssertions m_displayAssertions;
    AccessibilityBus m_accessibilityBus;
    BrowserAddress m_browserAddress;
    JsonSettings m_settings;
    AutostartEntry m_loginItem;
    DesktopOpener m_opener;
    DesktopAccessibility m_accessibility;
    PackageKitUpdates m_softwareUpdates;
    DesktopAppearance m_appearance;
};

} // namespace

std::unique_ptr<Platform> startLinuxPlatform() {
    return std::make_unique<LinuxPlatform>();
}

} // namespace kestu
