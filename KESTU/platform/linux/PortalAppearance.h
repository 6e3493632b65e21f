// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the desktop portal (session bus) says about light and dark. Never waits for it: unknown at first, and
// colorSchemeChanged when the answer arrives. Owned by the Linux platform.
#pragma once

#include "platform/Appearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>

namespace kestu {

class PortalAppearance final : public Appearance {
    Q_OBJECT

public:
    explicit PortalAppearance(const QDBusConnection& sessionBus);

    [[nodiscard]] std::optional<ColorScheme> colorScheme() const override { return m_scheme; }

private Q_SLOTS:
    // The whole message: a slot that takes a QDBusVariant hears nothing when it is connected before anything
    // else in the process has used that type.
    void onSettingChanged(const QDBusMessage& message);

private:
    void ask();
    void set(std::optional<ColorScheme> scheme);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    std::optional<ColorScheme> m_scheme;
};

} // namespace kestu
