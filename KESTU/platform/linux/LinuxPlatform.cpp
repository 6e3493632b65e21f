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
#include "platform/linux/X11Desktop.h"
#include "platform/linux/X11DisplayPower.h"
#include "platform/linux/X11Input.h"

#include <QCoreApplication>
#include <QDBusConnection>

namespace kestu {
namespace {

/// A session whose windows cannot be seen: nothing is in front, and so nothing wrong is recorded.
class UnseenDesktop final : public Workspace {
public:
    explicit UnseenDesktop(QString why)
        : m_why(std::move(why)) {}

    [[nodiscard]] QString whyUnseen() override { return m_why; }
    [[nodiscard]] std::optional<FrontmostApplication> frontmostApplication() override { return std::nullopt; }
    [[nodiscard]] QString focusedWindowTitle(std::int64_t) override { return {}; }

private:
    QString m_why;
};

class UnseenInput final : public UserInput {
public:
    [[nodiscard]] Seconds secondsSinceLastInput() override { return Seconds{0}; }
};

class UnknownDisplayPower final : public DisplayPower {
public:
    [[nodiscard]] State state() override { return State::unknown; }
};

bool isWaylandSession() {
    // XWayland sets DISPLAY too, and shows X11 programs only: what the session is, these two say.
    return qEnvironmentVariable("XDG_SESSION_TYPE") == u"wayland" ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

class LinuxPlatform final : public Platform {
public:
    /// The connections are absent where the session's windows cannot be seen; `whyUnseen` says why then.
    LinuxPlatform(std::unique_ptr<Xcb> forEvents, std::unique_ptr<Xcb> forQuestions, const QString& whyUnseen)
        : m_forEvents(std::move(forEvents))
        , m_forQuestions(std::move(forQuestions))
        , m_displayPower(makeDisplayPower())
        , m_systemEvents(QDBusConnection::systemBus(), QDBusConnection::sessionBus(), *m_displayPower)
        , m_workspace(makeWorkspace(whyUnseen))
        , m_userInput(makeUserInput())
        , m_displayAssertions(QDBusConnection::systemBus(), QDBusConnection::sessionBus())
        , m_accessibilityBus(QDBusConnection::sessionBus())
        , m_browserAddress(m_accessibilityBus)
        , m_settings(userSettingsPath())
        , m_loginItem(userAutostartFolder(), QCoreApplication::applicationFilePath())
        , m_accessibility(m_accessibilityBus, m_forEvents != nullptr)
        , m_softwareUpdates(QDBusConnection::systemBus())
        , m_appearance(
              QDBusConnection::sessionBus(), [this] { return connectAgain(); }, toolkitSettingsFiles()) {}

    [[nodiscard]] Workspace& workspace() override { return *m_workspace; }
    [[nodiscard]] BrowserScripting& browserScripting() override { return m_browserAddress; }
    [[nodiscard]] UserInput& userInput() override { return *m_userInput; }
    [[nodiscard]] DisplayAssertions& displayAssertions() override { return m_displayAssertions; }
    [[nodiscard]] SystemEvents& systemEvents() override { return m_systemEvents; }
    [[nodiscard]] SettingsStore& settingsStore() override { return m_settings; }
    [[nodiscard]] LoginItem& loginItem() override { return m_loginItem; }
    [[nodiscard]] Opener& opener() override { return m_opener; }
    [[nodiscard]] Accessibility& accessibility() override { return m_accessibility; }
    [[nodiscard]] SoftwareUpdates& softwareUpdates() override { return m_softwareUpdates; }
    [[nodiscard]] Appearance& appearance() override { return m_appearance; }

private:
    [[nodiscard]] std::unique_ptr<Xcb> connectAgain() const {
        QString why;
        return m_forEvents ? Xcb::connect(why) : nullptr;
    }

    [[nodiscard]] std::unique_ptr<DisplayPower> makeDisplayPower() const {
        if (!m_forQuestions) {
            return std::make_unique<UnknownDisplayPower>();
        }
        return std::make_unique<X11DisplayPower>(*m_forQuestions);
    }

    [[nodiscard]] std::unique_ptr<Workspace> makeWorkspace(const QString& whyUnseen) {
        if (!m_forEvents) {
            return std::make_unique<UnseenDesktop>(whyUnseen);
        }
        auto desktop = std::make_unique<X11Desktop>(*m_forEvents, [this] { return m_systemEvents.isHeld(); });
        QObject::connect(desktop.get(), &X11Desktop::activeWindowChanged, &m_systemEvents,
                         &LinuxSystemEvents::noteActivation);
        QObject::connect(desktop.get(), &X11Desktop::titleChanged, &m_systemEvents,
                         &LinuxSystemEvents::noteTitle);
        return desktop;
    }

    [[nodiscard]] std::unique_ptr<UserInput> makeUserInput() const {
        if (!m_forQuestions) {
            return std::make_unique<UnseenInput>();
        }
        return std::make_unique<X11Input>(*m_forQuestions);
    }

    // Two connections, because the reply to a question takes events off the wire that nobody then sees.
    std::unique_ptr<Xcb> m_forEvents;
    std::unique_ptr<Xcb> m_forQuestions;
    std::unique_ptr<DisplayPower> m_displayPower;
    LinuxSystemEvents m_systemEvents;
    std::unique_ptr<Workspace> m_workspace;
    std::unique_ptr<UserInput> m_userInput;
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

bool isDisplayReachable() {
    QString why;
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") || Xcb::connect(why) != nullptr;
}

LinuxPlatformStart startLinuxPlatform() {
    QString why;
    std::unique_ptr<Xcb> forEvents;
    std::unique_ptr<Xcb> forQuestions;
    if (isWaylandSession()) {
        why = QStringLiteral("Wayland のセッションではウィンドウを見ることができないため、記録されません。"
                             "X11 のセッションでお使いください。");
    } else if ((forEvents = Xcb::connect(why))) {
        forQuestions = Xcb::connect(why);
    }
    if (!forQuestions) {
        forEvents.reset();
    }
    auto platform = std::make_unique<LinuxPlatform>(std::move(forEvents), std::move(forQuestions), why);
    return {.platform = std::move(platform), .warning = why};
}

} // namespace kestu
