// SPDX-License-Identifier: GPL-3.0-or-later
//
// The user's last input, as Mutter counts it (GNOME): a real question at every tick. What keeps the display
// awake does not touch it. WaylandSession owns one.
#pragma once

#include "platform/UserInput.h"
#include "platform/linux/BusQuestions.h"

#include <QDBusConnection>

#include <memory>

namespace kestu {

class MutterIdle final : public UserInput {
public:
    /// Null where nobody offers it.
    [[nodiscard]] static std::unique_ptr<MutterIdle> open(const QDBusConnection& sessionBus);

    /// Takes 0.1 seconds at most, and after that nothing until the shell answers again.
    [[nodiscard]] Seconds secondsSinceLastInput() override;

private:
    explicit MutterIdle(const QDBusConnection& sessionBus);

    BusQuestions m_bus;
};

} // namespace kestu
