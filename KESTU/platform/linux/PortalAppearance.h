// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the desktop portal (session bus) says about light and dark. Never waits for it: unknown at first, and
// colorSchemeChanged when the answer arrives. Part of the desktop's appearance.
#pragma once

#include "platform/Appearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>

namespace kestu {

class PortalAppearance final : public QObject {
    Q_OBJECT

public:
    explicit PortalAppearance(const QDBusConnection& sessionBus);

    [[nodiscard]] std::optional<ColorScheme> colorScheme() const { return m_scheme; }

Q_SIGNALS:
    void colorSchemeChanged();

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
