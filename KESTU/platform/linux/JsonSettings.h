// SPDX-License-Identifier: GPL-3.0-or-later
//
// The settings as one small JSON file, which the user may read and edit. It is read anew at each question,
// so that an edit by hand or by another process counts at once and is not lost at the next write.
#pragma once

#include "platform/SettingsStore.h"

#include <QJsonObject>
#include <QJsonValue>

namespace kestu {

class JsonSettings final : public SettingsStore {
public:
    explicit JsonSettings(QString path);

    [[nodiscard]] std::optional<int> integer(const QString& key) const override;
    [[nodiscard]] std::optional<bool> boolean(const QString& key) const override;
    [[nodiscard]] std::optional<QMap<QString, QString>> dictionary(const QString& key) const override;

    /// What other keys hold stays. A file that cannot be read is kept aside first, as
    /// "settings.json.unreadable", so that nothing in it is lost.
    void setInteger(const QString& key, int value) override;
    void setBoolean(const QString& key, bool value) override;
    void setDictionary(const QString& key, const QMap<QString, QString>& value) override;

private:
    void store(const QString& key, const QJsonValue& value);
    void keepUnreadableAside() const;

    QString m_path;
};

/// KESTU/settings.json in the user's configuration folder.
[[nodiscard]] QString userSettingsPath();

} // namespace kestu
