// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/GnomeWindows.h"

#include "platform/linux/Bus.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QVariantMap>

#include <chrono>
#include <utility>

namespace kestu {

using namespace std::chrono_literals;

namespace {

const QString service = QStringLiteral("jp.kestu.FocusedWindow"); // and the interface
const QString path = QStringLiteral("/jp/kestu/FocusedWindow");

constexpr uint knownVersion = 1;

/// Nothing for a value of another type: whoever sends it is not our extension.
template<typename T>
T valueIn(const QVariantMap& window, const QString& key) {
    const QVariant value = window.value(key);
    return value.metaType() == QMetaType::fromType<T>() ? value.value<T>() : T{};
}

QString nameIn(const QVariantMap& window, const QString& key) {
    return believableName(valueIn<QString>(window, key));
}

/// The extension reads the clock that we measure by; now, where it says something else.
Moment momentIn(const QVariantMap& window) {
    constexpr std::chrono::microseconds farthest = std::chrono::years(30); // awake
    const std::chrono::microseconds at(valueIn<qlonglong>(window, QStringLiteral("at")));
    return at > 0us && at < farthest ? Moment(at) : Moment::clock::now();
}

WindowFacts factsIn(const QVariantMap& window) {
    WindowFacts facts{.wmInstance = nameIn(window, QStringLiteral("instance")),
                      .wmClass = nameIn(window, QStringLiteral("class")),
                      .gtkApplicationId = nameIn(window, QStringLiteral("gtk")),
                      .isDesktop = valueIn<bool>(window, QStringLiteral("isDesktop")),
                      .processId = believableProcessId(valueIn<int>(window, QStringLiteral("pid")))};
    // The shell's own idea of the application is no better than ours, but for a window without anything else.
    const bool hasNothing = facts.wmInstance.isEmpty() && facts.wmClass.isEmpty() &&
                            facts.gtkApplicationId.isEmpty() && facts.processId == 0;
    if (hasNothing) {
        facts.wmClass = nameIn(window, QStringLiteral("sandbox"));
    }
    return facts;
}

} // namespace

GnomeWindows::GnomeWindows(const QDBusConnection& sessionBus, std::unique_ptr<GnomeShellSettings> settings,
                           QStringList extensionFolders, std::chrono::milliseconds patience)
    : m_bus(sessionBus)
    , m_extension(m_bus, std::move(settings), std::move(extensionFolders))
    , m_owner(m_bus, service) {
    connect(&m_news, &WindowNews::frontChanged, this, &WindowSource::frontChanged);
    connect(&m_news, &WindowNews::titleChanged, this, &WindowSource::titleChanged);
    connect(&m_owner, &BusOwner::changed, this, &GnomeWindows::follow);
    connect(&m_extension, &GnomeExtension::changed, this, [this] {
        if (m_state == State::telling) {
            noteAbility();
        } else {
            follow(); // the shell may be another one, or has let the extension run
        }
    });
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    connect(&m_patience, &QTimer::timeout, this, [this] { become(State::late); });
    m_bus.connect(service, path, service, QStringLiteral("Changed"), this, SLOT(onChanged(QDBusMessage)));
    follow();
    m_told = ability();
}

Ability GnomeWindows::ability() const {
    Ability prepared = m_extension.ability();
    const bool shouldTell =
        prepared.kind == Ability::Kind::yes && m_extension.state() != GnomeExtension::State::resting;
    if (m_state == State::telling) {
        return {.kind = Ability::Kind::yes};
    }
    if (m_state == State::foreign) {
        return {.note = QStringLiteral("動いている GNOME の拡張機能「KESTU」の版が違うため、記録されません。"
                                       "ログインし直してください。")};
    }
    if (m_state == State::late && shouldTell) {
        return {.note = QStringLiteral("GNOME の拡張機能「KESTU」から応答がないため、記録されません。"
                                       "ログインし直してください。")};
    }
    return prepared;
}

/// Our name may be anybody's: the extension runs within the shell.
void GnomeWindows::follow() {
    const bool isShell = !m_owner.number().isEmpty() && m_owner.number() == m_extension.shell();
    m_news.end();
    become(State::waiting);
    if (!m_extension.shell().isEmpty()) {
        m_patience.start();
    }
    if (!isShell) {
        return;
    }
    const BusMethod version{.service = m_owner.number(),
                            .path = path,
                            .interface = QStringLiteral("org.freedesktop.DBus.Properties"),
                            .method = QStringLiteral("Get")};
    callBusLater(m_bus, version, {service, QStringLiteral("Version")}, this,
                 [this, asked = m_owner.number()](const QVariantList& answer) {
                     if (asked != m_owner.number() || m_state == State::telling) {
                         return;
                     }
                     const QVariant told = answer.value(0).value<QDBusVariant>().variant();
                     const bool isKnown =
                         told.metaType() == QMetaType::fromType<uint>() && told.toUInt() == knownVersion;
                     become(isKnown ? State::telling : State::foreign);
                     if (isKnown) {
                         askForWindow();
                     }
                 });
}

void GnomeWindows::askForWindow() {
    m_news.begin();
    callBusLater(
        m_bus,
        {.service = m_owner.number(), .path = path, .interface = service, .method = QStringLiteral("Get")},
        {}, this, [this, asked = m_owner.number()](const QVariantList& answer) {
            if (asked == m_owner.number()) {
                take(answer.value(0));
            }
        });
}

void GnomeWindows::become(State state) {
    m_state = state;
    if (state != State::waiting) {
        m_patience.stop();
    }
    noteAbility();
}

void GnomeWindows::noteAbility() {
    const Ability now = ability();
    if (std::exchange(m_told, now) != now) {
        Q_EMIT abilityChanged();
    }
}

void GnomeWindows::onChanged(const QDBusMessage& message) {
    if (m_state == State::telling && message.service() == m_owner.number()) {
        take(message.arguments().value(0));
    }
}

void GnomeWindows::take(const QVariant& told) {
    const auto argument = told.value<QDBusArgument>();
    const bool isMap = argument.currentSignature() == u"a{sv}";
    const QVariantMap window = isMap ? qdbus_cast<QVariantMap>(argument) : QVariantMap();
    const auto id = valueIn<qulonglong>(window, QStringLiteral("id"));
    if (id == 0) {
        m_news.take(std::nullopt); // no window, or a lie
        return;
    }
    m_news.take(ToldWindow{.key = QString::number(id),
                           .facts = factsIn(window),
                           .title = valueIn<QString>(window, QStringLiteral("title")),
                           .isFullscreen = valueIn<bool>(window, QStringLiteral("isFullscreen")),
                           .at = momentIn(window)});
}

} // namespace kestu
