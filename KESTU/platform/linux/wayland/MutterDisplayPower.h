// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether Mutter (GNOME) has switched the displays off to save power. WaylandSession owns one.
#pragma once

#include "platform/linux/DisplayPower.h"
#include "platform/linux/wayland/BusOwner.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariant>

#include <memory>

namespace kestu {

class MutterDisplayPower final : public DisplayPower {
    Q_OBJECT

public:
    /// Null where nobody offers it. Takes 0.2 seconds at most.
    [[nodiscard]] static std::unique_ptr<MutterDisplayPower> open(const QDBusConnection& sessionBus);

    [[nodiscard]] State state() override { return m_state; }
    [[nodiscard]] bool tellsChanges() const override { return true; }

private Q_SLOTS:
    void onPropertiesChanged(const QDBusMessage& message);

private:
    explicit MutterDisplayPower(const QDBusConnection& sessionBus);
    void askLater();
    void take(const QVariant& mode);

    QDBusConnection m_bus;
    BusOwner m_owner;
    State m_state = State::unknown;
};

} // namespace kestu
