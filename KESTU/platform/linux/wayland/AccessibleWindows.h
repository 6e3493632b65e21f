// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window in front as programs themselves tell it to assistive technology. Only some programs do, so this
// is for sessions where nobody better can be asked. A window that is not on the accessibility bus leaves none
// marked as active, so that it is unknown and never taken for another one. WaylandDesktop owns one.
#pragma once

#include "platform/linux/AccessibilityBus.h"
#include "platform/linux/wayland/AccessibleSight.h"
#include "platform/linux/wayland/WindowSource.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QTimer>

#include <chrono>
#include <optional>

namespace kestu {

class AccessibleWindows final : public WindowSource {
    Q_OBJECT

public:
    /// `grace` is how long better sources have for coming up before this one begins to ask.
    explicit AccessibleWindows(const QDBusConnection& sessionBus,
                               std::chrono::milliseconds grace = std::chrono::seconds(1));
    ~AccessibleWindows() override;

    [[nodiscard]] QString name() const override;
    [[nodiscard]] Ability ability() const override;
    [[nodiscard]] std::optional<SeenWindow> front() override;
    void setNeeded(bool needed) override;
    void request() override;

private Q_SLOTS:
    void onWindowEvent();
    void onRenamed();
    void onSwitched(const QString& interface, const QVariantMap& changed, const QStringList& invalidated);
    void onDisconnected();

private:
    enum class State { resting, telling, noBus };

    void begin();
    void end();
    void become(State state);
    void setSwitchedOn(bool on);
    void listenOnBus(QDBusConnection bus);
    [[nodiscard]] bool isListening() const;
    void follow(const Accessible& window, bool isFollowed);
    void lookSoon(std::chrono::milliseconds pause);
    void look();
    void readName();
    void take(const std::optional<AccessibleFront>& active);

    QDBusConnection m_session;
    std::chrono::milliseconds m_grace;
    AccessibilityBus m_bus;
    QString m_heardOn;            // the connection on which we listen
    QDBusServiceWatcher m_owners; // on the accessibility bus: the registry, and the program in front
    State m_state = State::resting;
    bool m_isNeeded = false;
    bool m_isSwitchedOn = false; // programs are told to join the bus
    std::optional<SeenWindow> m_front;
    Accessible m_window; // that is in front
    Moment m_eventAt{};  // when something last happened to any window
    Moment m_renamedAt{};
    Moment m_lookedAt{};
    Moment m_confirmedAt{}; // when it was last certain what is in front
    int m_looks = 0;        // since then
    QTimer m_start;
    QTimer m_nextLook;
    QTimer m_nextName;
};

} // namespace kestu
