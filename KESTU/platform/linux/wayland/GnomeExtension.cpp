// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/GnomeExtension.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>
#include <utility>

namespace kestu {

using namespace std::chrono_literals;

namespace {

const QString shellService = QStringLiteral("org.gnome.Shell");
const QString shellPath = QStringLiteral("/org/gnome/Shell");
const QString extensionsInterface = QStringLiteral("org.gnome.Shell.Extensions");
const QString saverPath = QStringLiteral("/org/gnome/ScreenSaver");
const QString saverInterface = QStringLiteral("org.gnome.ScreenSaver");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString uuid = QStringLiteral("kestu@kestu.example");

constexpr auto answerBound = 200ms;

// The shell's own numbers.
constexpr int stateActive = 1;
constexpr int stateError = 3;
constexpr int stateOutOfDate = 4;

/// Whether metadata.json names this version of the shell; an unknown one is given the benefit of the doubt.
bool isMadeFor(const QString& metadata, const QString& shellVersion) {
    QFile file(metadata);
    if (shellVersion.isEmpty() || !file.open(QFile::ReadOnly)) {
        return true;
    }
    const QJsonArray versions = QJsonDocument::fromJson(file.readAll())[u"shell-version"].toArray();
    return versions.isEmpty() || versions.contains(shellVersion.section(u'.', 0, 0));
}

QString noteOf(GnomeExtension::State state) {
    using State = GnomeExtension::State;
    switch (state) {
    case State::notInstalled:
        return QStringLiteral("GNOME の拡張機能「KESTU」がないため、記録されません。"
                              "KESTU のパッケージをインストールしてください。");
    case State::notKnown:
        return QStringLiteral("「許可する」を押すと、次のログインから記録されます。");
    case State::afterLogin:
        return QStringLiteral("次のログインから記録されます。");
    case State::off:
        return QStringLiteral("「許可する」を押すと記録されます。");
    case State::offByUser:
        return QStringLiteral("GNOME の拡張機能「KESTU」がオフになっています。"
                              "「許可する」を押すと記録されます。");
    case State::allOff:
        return QStringLiteral("GNOME の拡張機能がすべてオフになっています。"
                              "GNOME の「拡張機能」でオンにすると記録されます。");
    case State::outdated:
        return QStringLiteral("拡張機能「KESTU」がこのバージョンの GNOME に対応していないため、"
                              "記録されません。KESTU を更新してください。");
    case State::failed:
        return QStringLiteral("GNOME の拡張機能「KESTU」が動かないため、記録されません。"
                              "ログインし直してください。");
    case State::noShell:
    case State::starting:
    case State::resting:
    case State::active:
        break;
    }
    return {};
}

} // namespace

GnomeExtension::GnomeExtension(const QDBusConnection& sessionBus,
                               std::unique_ptr<GnomeShellSettings> settings, QStringList folders)
    : m_bus(sessionBus)
    , m_settings(std::move(settings))
    , m_folders(std::move(folders))
    , m_shell(m_bus, shellService) {
    listen(shellPath, extensionsInterface, QStringLiteral("ExtensionStateChanged"),
           SLOT(onStateChanged(QDBusMessage)));
    listen(saverPath, saverInterface, QStringLiteral("ActiveChanged"), SLOT(onLockChanged(QDBusMessage)));
    listen(shellPath, propertiesInterface, QStringLiteral("PropertiesChanged"),
           SLOT(onPropertiesChanged(QDBusMessage)));
    connect(&m_shell, &BusOwner::changed, this, [this] {
        m_info.reset();
        m_isLocked = false;
        askLater();
        Q_EMIT changed();
    });
    askNow();
}

void GnomeExtension::listen(const QString& path, const QString& interface, const QString& signal,
                            const char* slot) {
    m_bus.connect(shellService, path, interface, signal, this, slot);
}

std::vector<GnomeExtension::Question> GnomeExtension::questions() const {
    return {{.method = ofShell(shellPath, extensionsInterface, QStringLiteral("GetExtensionInfo")),
             .arguments = {uuid},
             .take = &GnomeExtension::takeInfo},
            {.method = ofShell(saverPath, saverInterface, QStringLiteral("GetActive")),
             .arguments = {},
             .take = &GnomeExtension::takeLock},
            {.method = ofShell(shellPath, propertiesInterface, QStringLiteral("Get")),
             .arguments = {shellService, QStringLiteral("ShellVersion")},
             .take = &GnomeExtension::takeVersion}};
}

void GnomeExtension::askNow() {
    if (shell().isEmpty()) {
        return;
    }
    const QDeadlineTimer deadline(answerBound);
    std::vector<std::pair<Question, QDBusPendingCall>> asked;
    for (const Question& question : questions()) {
        asked.emplace_back(question, askBus(m_bus, question.method, question.arguments, deadline));
    }
    bool isComplete = true;
    for (const auto& [question, call] : asked) {
        const auto answer = answerOf(call);
        isComplete = isComplete && answer;
        if (answer) {
            (this->*question.take)(*answer);
        }
    }
    if (!isComplete) {
        askLater(); // a shell that is starting has no time
    }
}

void GnomeExtension::askLater() {
    if (shell().isEmpty()) {
        return;
    }
    for (const Question& question : questions()) {
        callBusLater(m_bus, question.method, question.arguments, this,
                     [this, take = question.take](const QVariantList& answer) {
                         (this->*take)(answer);
                         Q_EMIT changed();
                     });
    }
}

void GnomeExtension::takeInfo(const QVariantList& answer) {
    m_info = qdbus_cast<QVariantMap>(answer.value(0));
}

void GnomeExtension::takeLock(const QVariantList& answer) {
    m_isLocked = answer.value(0).toBool();
}

void GnomeExtension::takeVersion(const QVariantList& answer) {
    m_shellVersion = answer.value(0).value<QDBusVariant>().variant().toString();
}

void GnomeExtension::onStateChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    if (arguments.value(0).toString() == uuid) {
        takeInfo(arguments.mid(1));
        Q_EMIT changed();
    }
}

void GnomeExtension::onLockChanged(const QDBusMessage& message) {
    takeLock(message.arguments());
    Q_EMIT changed();
}

void GnomeExtension::onPropertiesChanged(const QDBusMessage& message) {
    if (message.arguments().value(0).toString() == extensionsInterface) {
        Q_EMIT changed(); // all user extensions were switched on or off
    }
}

GnomeExtension::State GnomeExtension::state() const {
    if (shell().isEmpty()) {
        return State::noShell;
    }
    if (!m_info) {
        return State::starting;
    }
    if (m_info->isEmpty()) {
        return stateOfUnknown();
    }
    const int state = m_info->value(QStringLiteral("state")).toInt();
    if (state == stateOutOfDate) {
        return State::outdated;
    }
    if (!m_settings->allowsExtensions()) {
        return State::allOff;
    }
    if (state == stateActive) {
        return State::active;
    }
    if (!isSwitchedOn()) {
        return m_settings->disabledExtensions().contains(uuid) ? State::offByUser : State::off;
    }
    if (state == stateError) {
        return State::failed;
    }
    return m_isLocked ? State::resting : State::starting;
}

/// The shell looks for extensions when it starts, and never again.
GnomeExtension::State GnomeExtension::stateOfUnknown() const {
    for (const QString& folder : m_folders) {
        const QString metadata = folder + u'/' + uuid + QStringLiteral("/metadata.json");
        if (!QFileInfo::exists(metadata)) {
            continue;
        }
        if (!isMadeFor(metadata, m_shellVersion)) {
            return State::outdated;
        }
        if (!m_settings->allowsExtensions()) {
            return State::allOff;
        }
        return isSwitchedOn() ? State::afterLogin : State::notKnown;
    }
    return State::notInstalled;
}

bool GnomeExtension::isSwitchedOn() const {
    return m_settings->enabledExtensions().contains(uuid) && !m_settings->disabledExtensions().contains(uuid);
}

Ability GnomeExtension::ability() const {
    const State now = state();
    switch (now) {
    case State::starting:
    case State::resting:
    case State::active:
        return {.kind = Ability::Kind::yes};
    case State::afterLogin:
        return {.kind = Ability::Kind::afterLogin, .note = noteOf(now)};
    case State::notKnown:
    case State::off:
    case State::offByUser:
        return {.note = noteOf(now), .mayBeRequested = true};
    default:
        return {.note = noteOf(now)};
    }
}

void GnomeExtension::request() {
    switch (state()) {
    case State::notKnown:
        m_settings->enable(uuid); // the shell refuses what it does not know
        Q_EMIT changed();
        break;
    case State::off:
    case State::offByUser:
        callBusLater(m_bus, ofShell(shellPath, extensionsInterface, QStringLiteral("EnableExtension")),
                     {uuid}, this, [this](const QVariantList&) { askLater(); });
        break;
    default:
        break; // nothing that a program could or should do
    }
}

BusMethod GnomeExtension::ofShell(const QString& path, const QString& interface,
                                  const QString& method) const {
    return {.service = shell(), .path = path, .interface = interface, .method = method};
}

} // namespace kestu
