// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/AccessibleWindows.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kestu {

using namespace std::chrono_literals;

namespace {

constexpr auto wholeLook = 300ms;
constexpr auto nameAnswer = 100ms;
constexpr auto confirmation = 50ms;
constexpr auto confirmationLasts = 1s;
constexpr auto longestSilence = 3s;
constexpr auto betweenLooks = 50ms; // however often windows change
constexpr auto betweenTries = 5s;   // to reach the bus

// After an event: at once, when slow programs have set their marks, and when a new one has joined the bus.
constexpr std::array<std::chrono::milliseconds, 3> looksAfterEvent{0ms, 200ms, 1000ms};

const QString registryService = QStringLiteral("org.a11y.atspi.Registry");
const QString launcherService = QStringLiteral("org.a11y.Bus");
const QString launcherPath = QStringLiteral("/org/a11y/bus");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString propertiesChanged = QStringLiteral("PropertiesChanged");

} // namespace

AccessibleWindows::AccessibleWindows(const QDBusConnection& sessionBus, std::chrono::milliseconds grace)
    : m_session(sessionBus)
    , m_grace(grace)
    , m_bus(sessionBus, {accessible::windowActivation, accessible::windowDeactivation, accessible::windowEnd,
                         accessible::nameChange}) {
    for (QTimer* timer : {&m_start, &m_nextLook, &m_nextName}) {
        timer->setSingleShot(true);
    }
    m_nextName.setInterval(betweenLooks);
    connect(&m_start, &QTimer::timeout, this, &AccessibleWindows::begin);
    connect(&m_nextLook, &QTimer::timeout, this, &AccessibleWindows::look);
    connect(&m_nextName, &QTimer::timeout, this, &AccessibleWindows::readName);
    m_owners.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    connect(&m_owners, &QDBusServiceWatcher::serviceOwnerChanged, this, &AccessibleWindows::onWindowEvent);
}

AccessibleWindows::~AccessibleWindows() = default;

QString AccessibleWindows::name() const {
    return QStringLiteral("アクセシビリティ");
}

Ability AccessibleWindows::ability() const {
    switch (m_state) {
    case State::resting:
        break;
    case State::noBus:
        return {.note = QStringLiteral("アクセシビリティの仕組み（at-spi2-core）が動いていません。"
                                       "X11 のセッションなら記録できます。")};
    case State::telling: {
        const QString unseen =
            QStringLiteral("自分のウィンドウをアクセシビリティに知らせないプログラム（一部のターミナル、"
                           "ゲーム、動画プレーヤーなど）は記録されません。");
        return {.kind = Ability::Kind::partly,
                .note = m_isSwitchedOn
                            ? unseen
                            : unseen + QStringLiteral("「許可する」を押すと、ブラウザや Qt のプログラムも"
                                                      "記録されるようになります。"),
                .mayBeRequested = !m_isSwitchedOn};
    }
    }
    return {};
}

std::optional<SeenWindow> AccessibleWindows::front() {
    const Moment now = Moment::clock::now();
    if (!m_front || now - m_confirmedAt < confirmationLasts) {
        return m_front;
    }
    if (!isListening()) {
        lookSoon(0ms);
        return std::nullopt;
    }
    // A window that dies does not always say so, and one that is not on the bus never says that it came.
    try {
        const QDBusMessage states =
            m_bus.ask(accessible::statesQuestion(m_window), QDeadlineTimer(confirmation));
        m_confirmedAt = now;
        if (!accessible::readIsActive(states)) {
            onWindowEvent();
            return std::nullopt;
        }
    } catch (const NoAnswer&) {
        // A busy program is still where it was. Of one that hangs nobody knows.
        return now - m_confirmedAt < longestSilence ? m_front : std::nullopt;
    }
    return m_front;
}

void AccessibleWindows::setNeeded(bool needed) {
    if (std::exchange(m_isNeeded, needed) == needed) {
        return;
    }
    if (needed) {
        m_start.start(m_grace);
    } else {
        end();
        m_state = State::resting;
    }
}

void AccessibleWindows::request() {
    if (m_state == State::resting) {
        return;
    }
    setSwitchedOn(m_bus.isEnabled());
    lookSoon(0ms);
}

void AccessibleWindows::begin() {
    try {
        (void)m_bus.programs(QDeadlineTimer(wholeLook)); // opens the bus
    } catch (const NoAnswer&) {
        // None; or one that is slow, and may be open by now.
    }
    const auto bus = m_bus.connection();
    if (!bus) {
        m_start.start(betweenTries);
        become(State::noBus);
        return;
    }
    listenOnBus(*bus);
    m_isSwitchedOn = m_bus.isEnabled();
    m_session.connect(launcherService, launcherPath, propertiesInterface, propertiesChanged, this,
                      SLOT(onSwitched(QString, QVariantMap, QStringList)));
    become(State::telling);
    onWindowEvent();
}

void AccessibleWindows::listenOnBus(QDBusConnection bus) {
    for (const auto& event :
         {QStringLiteral("Activate"), QStringLiteral("Deactivate"), QStringLiteral("Destroy")}) {
        bus.connect(QString(), QString(), accessible::windowEvents, event, this, SLOT(onWindowEvent()));
    }
    const Accessible root = accessible::registryRoot();
    bus.connect(root.service, root.path, accessible::objectEvents, QStringLiteral("ChildrenChanged"), this,
                SLOT(onWindowEvent()));
    bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                SLOT(onDisconnected()));
    m_heardOn = bus.name();
    m_owners.setConnection(bus);
    m_owners.addWatchedService(registryService);
}

/// Leaves the bus with all that was listened for there.
void AccessibleWindows::end() {
    for (QTimer* timer : {&m_start, &m_nextLook, &m_nextName}) {
        timer->stop();
    }
    m_session.disconnect(launcherService, launcherPath, propertiesInterface, propertiesChanged, this,
                         SLOT(onSwitched(QString, QVariantMap, QStringList)));
    m_owners.setWatchedServices({});
    m_owners.setConnection(m_session); // it would keep the other one open
    m_bus.close();
    m_window = {};
    m_front.reset();
}

void AccessibleWindows::become(State state) {
    if (std::exchange(m_state, state) != state) {
        Q_EMIT abilityChanged();
    }
}

void AccessibleWindows::onDisconnected() {
    if (m_state != State::telling) {
        return;
    }
    end();
    m_start.start(m_grace);
    become(State::noBus);
    Q_EMIT frontChanged();
}

void AccessibleWindows::onSwitched(const QString& /*interface*/, const QVariantMap& changed,
                                   const QStringList& /*invalidated*/) {
    const QVariant value = changed.value(QStringLiteral("IsEnabled"));
    if (value.isValid()) {
        setSwitchedOn(value.toBool());
    }
}

void AccessibleWindows::setSwitchedOn(bool on) {
    if (std::exchange(m_isSwitchedOn, on) != on) {
        Q_EMIT abilityChanged();
    }
}

void AccessibleWindows::onWindowEvent() {
    m_eventAt = Moment::clock::now();
    m_looks = 0;
    const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(m_eventAt - m_lookedAt);
    lookSoon(std::clamp<std::chrono::milliseconds>(betweenLooks - since, 0ms, betweenLooks));
}

void AccessibleWindows::lookSoon(std::chrono::milliseconds pause) {
    if (!m_nextLook.isActive() || m_nextLook.remainingTimeAsDuration() > pause) {
        m_nextLook.start(pause);
    }
}

/// A question opens a bus that has ended anew, where nobody listens yet.
bool AccessibleWindows::isListening() const {
    const auto bus = m_bus.connection();
    return bus && bus->name() == m_heardOn;
}

void AccessibleWindows::look() {
    if (!isListening()) {
        onDisconnected();
        return;
    }
    Sight sight;
    try {
        sight = sightOf(m_bus, gnomeShellProcess(m_session), m_window, QDeadlineTimer(wholeLook));
    } catch (const NoAnswer&) {
        // What cannot be asked is not known.
    }
    m_lookedAt = Moment::clock::now();
    ++m_looks;
    const bool isSettled = m_looks > 1 && sight.active.size() == 1;
    if (m_looks < static_cast<int>(looksAfterEvent.size()) && !isSettled) {
        m_nextLook.start(looksAfterEvent[static_cast<std::size_t>(m_looks)]);
    }
    if (sight.active.isEmpty() && sight.isFormerBusy) {
        return; // for now; front() does not believe it for long
    }
    m_confirmedAt = m_lookedAt;
    // Two that both say so are one too many: then nobody knows.
    take(sight.active.size() == 1 ? std::optional(sight.active.first()) : std::nullopt);
}

void AccessibleWindows::take(const std::optional<AccessibleFront>& active) {
    const bool isSame = active && m_front && active->object == m_window;
    if (isSame && active->name == m_front->title) {
        return;
    }
    if (isSame) {
        m_front->title = active->name;
        m_front->titledSince = Moment::clock::now();
        Q_EMIT titleChanged();
        return;
    }
    if (!active && !m_front) {
        return;
    }
    follow(m_window, false);
    m_window = active ? active->object : Accessible{};
    follow(m_window, true);
    m_front.reset();
    if (active) {
        m_front = SeenWindow{.facts = {.processId = active->processId},
                             .title = active->name,
                             .since = m_eventAt,
                             .titledSince = m_eventAt};
    }
    Q_EMIT frontChanged();
}

/// Only the names of this one window are heard: every label of every program has one.
void AccessibleWindows::follow(const Accessible& window, bool isFollowed) {
    auto bus = m_bus.connection();
    if (!bus || window.service.isEmpty()) {
        return;
    }
    const QString change = QStringLiteral("PropertyChange");
    if (isFollowed) {
        bus->connect(window.service, window.path, accessible::objectEvents, change, this, SLOT(onRenamed()));
        m_owners.addWatchedService(window.service);
    } else {
        bus->disconnect(window.service, window.path, accessible::objectEvents, change, this,
                        SLOT(onRenamed()));
        m_owners.removeWatchedService(window.service);
    }
}

void AccessibleWindows::onRenamed() {
    if (!m_nextName.isActive()) {
        m_renamedAt = Moment::clock::now();
        m_nextName.start();
    }
}

void AccessibleWindows::readName() {
    if (!m_front || !isListening()) {
        return;
    }
    try {
        const QString name =
            accessible::readName(m_bus.ask(accessible::nameQuestion(m_window), QDeadlineTimer(nameAnswer)));
        if (name != m_front->title) {
            m_front->title = name;
            m_front->titledSince = m_renamedAt;
            Q_EMIT titleChanged();
        }
    } catch (const NoAnswer&) {
        // A busy program; the next look will tell.
    }
}

} // namespace kestu
