// SPDX-License-Identifier: GPL-3.0-or-later
//
// How the desktop looks, from whoever tells: the portal; without it the theme that XSettings names, and what
// the toolkit's own settings say. The tray's colours are the tray's. Owned by the Linux platform.
#pragma once

#include "platform/Appearance.h"
#include "platform/linux/ManagerProperty.h"
#include "platform/linux/PortalAppearance.h"

#include <QStringList>

namespace kestu {

class DesktopAppearance final : public Appearance {
public:
    /// `connect` gives a connection to the X server, or null where there is none. The files are the toolkit's
    /// settings, those that count most first.
    DesktopAppearance(const QDBusConnection& sessionBus, const std::function<std::unique_ptr<Xcb>()>& connect,
                      QStringList toolkitFiles);

    [[nodiscard]] std::optional<ColorScheme> colorScheme() const override;
    [[nodiscard]] std::optional<Rgb> trayInk() const override;

private:
    void noteScheme();
    [[nodiscard]] QString themeName() const;

    PortalAppearance m_portal;
    QStringList m_toolkitFiles;
    std::unique_ptr<ManagerProperty> m_settings;
    std::unique_ptr<ManagerProperty> m_tray;
    QString m_firstTheme;
    std::optional<ColorScheme> m_told;
};

/// The toolkit's settings files of this user and system.
[[nodiscard]] QStringList toolkitSettingsFiles();

/// The name of the theme in the property of an XSettings manager; empty when it holds none.
[[nodiscard]] QString themeNameIn(const QByteArray& settings);

/// Whether themes of such a name are dark.
[[nodiscard]] bool isDarkTheme(const QString& name);

} // namespace kestu
