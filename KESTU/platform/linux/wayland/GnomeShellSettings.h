// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the user's settings say of GNOME Shell's extensions.
#pragma once

#include <QString>
#include <QStringList>

namespace kestu {

class GnomeShellSettings {
public:
    virtual ~GnomeShellSettings() = default;

    /// Whether the user lets any extensions run.
    [[nodiscard]] virtual bool allowsExtensions() const = 0;

    [[nodiscard]] virtual QStringList enabledExtensions() const = 0;
    [[nodiscard]] virtual QStringList disabledExtensions() const = 0;

    /// Has the shell load it with the next login, also one that it does not know yet. False when the settings
    /// cannot be changed.
    virtual bool enable(const QString& extension) = 0;
};

/// The desktop's own settings. Where there is no GNOME they allow all, name nothing and cannot be changed.
class DesktopShellSettings final : public GnomeShellSettings {
public:
    [[nodiscard]] bool allowsExtensions() const override;
    [[nodiscard]] QStringList enabledExtensions() const override;
    [[nodiscard]] QStringList disabledExtensions() const override;
    bool enable(const QString& extension) override;
};

} // namespace kestu
