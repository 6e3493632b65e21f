// SPDX-License-Identifier: GPL-3.0-or-later
//
// The per-user settings: values under keys. A value of another type than asked for reads as absent.
#pragma once

#include <QMap>
#include <QString>

#include <optional>

namespace kestu {

class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    /// What is wrong with the stored settings and what that means, for the user; empty when all is well.
    [[nodiscard]] virtual QString problem() const { return {}; }

    [[nodiscard]] virtual std::optional<int> integer(const QString& key) const = 0;
    [[nodiscard]] virtual std::optional<bool> boolean(const QString& key) const = 0;

    /// Entries whose value is not a string are dropped.
    [[nodiscard]] virtual std::optional<QMap<QString, QString>> dictionary(const QString& key) const = 0;

    /// @throws PlatformError when the value could not be stored.
    virtual void setInteger(const QString& key, int value) = 0;
    virtual void setBoolean(const QString& key, bool value) = 0;
    virtual void setDictionary(const QString& key, const QMap<QString, QString>& value) = 0;
};

} // namespace kestu
