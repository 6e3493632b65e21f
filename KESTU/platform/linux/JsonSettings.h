// SPDX-License-Identifier: GPL-3.0-or-later
//
// The settings as one small JSON file, which the user may read and edit. It is read anew at each question,
// so that an edit by hand or by another process counts at once and is not lost at the next write. Beside it
// lies the last state that was read or written well ("settings.json.last-good"), which counts while the file
// cannot be read: a broken file must not switch off what is never to be recorded.
#pragma once

#include "platform/SettingsStore.h"

#include <QJsonObject>
#include <QJsonValue>

namespace kestu {

class JsonSettings final : public SettingsStore {
public:
    explicit JsonSettings(QString path);

    [[nodiscard]] QString problem() const override;

    [[nodiscard]] std::optional<int> integer(const QString& key) const override;
    [[nodiscard]] std::optional<bool> boolean(const QString& key) const override;
    [[nodiscard]] std::optional<QMap<QString, QString>> dictionary(const QString& key) const override;

    /// What other keys hold stays. A file that cannot be read is kept aside first, as
    /// "settings.json.unreadable", so that nothing in it is lost.
    void setInteger(const QString& key, int value) override;
    void setBoolean(const QString& key, bool value) override;
    void setDictionary(const QString& key, const QMap<QString, QString>& value) override;

private:
    struct State {
        QJsonObject settings;
        bool isUnreadable = false; // the file; the settings are then the last good ones
        bool isLost = false;       // those cannot be read either
    };
    [[nodiscard]] State read() const;
    [[nodiscard]] QJsonValue setting(const QString& key) const;
    void rememberAsGood(const QJsonObject& settings) const;
    void store(const QString& key, const QJsonValue& value);
    void replaceUnreadable(const QJsonObject& settings) const;

    QString m_path;
    QString m_lastGoodPath = m_path + QStringLiteral(".last-good");
    mutable std::optional<QJsonObject> m_lastGood; // as far as it is known to lie there
};

/// KESTU/settings.json in the user's configuration folder.
[[nodiscard]] QString userSettingsPath();

} // namespace kestu
