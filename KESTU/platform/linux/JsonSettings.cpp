// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/JsonSettings.h"

#include "platform/PlatformError.h"
#include "platform/linux/UserFile.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <cmath>
#include <limits>

namespace kestu {
namespace {

/// Absent when the file cannot be read or does not hold an object; empty when there is no file yet.
std::optional<QJsonObject> readSettings(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return file.exists() ? std::nullopt : std::optional<QJsonObject>(std::in_place);
    }
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

QJsonValue settingIn(const QString& path, const QString& key) {
    return readSettings(path).value_or(QJsonObject()).value(key);
}

QString saveFailure() {
    return QStringLiteral("設定を保存できませんでした");
}

} // namespace

JsonSettings::JsonSettings(QString path)
    : m_path(std::move(path)) {}

std::optional<int> JsonSettings::integer(const QString& key) const {
    const QJsonValue value = settingIn(m_path, key);
    const double number = value.toDouble();
    if (!value.isDouble() || number != std::trunc(number) || number < std::numeric_limits<int>::min() ||
        number > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    return static_cast<int>(number);
}

std::optional<bool> JsonSettings::boolean(const QString& key) const {
    const QJsonValue value = settingIn(m_path, key);
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<QMap<QString, QString>> JsonSettings::dictionary(const QString& key) const {
    const QJsonValue value = settingIn(m_path, key);
    if (!value.isObject()) {
        return std::nullopt;
    }
    QMap<QString, QString> strings;
    const QJsonObject object = value.toObject();
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        if (entry->isString()) {
            strings.insert(entry.key(), entry->toString());
        }
    }
    return strings;
}

void JsonSettings::setInteger(const QString& key, int value) {
    store(key, value);
}

void JsonSettings::setBoolean(const QString& key, bool value) {
    store(key, value);
}

void JsonSettings::setDictionary(const QString& key, const QMap<QString, QString>& value) {
    QJsonObject object;
    for (auto entry = value.begin(); entry != value.end(); ++entry) {
        object.insert(entry.key(), entry.value());
    }
    store(key, object);
}

void JsonSettings::store(const QString& key, const QJsonValue& value) {
    auto settings = readSettings(m_path);
    if (!settings) {
        keepUnreadableAside();
        settings.emplace();
    }
    // Each setting is stored again at every start; only a change is worth a write to the disk.
    if (settings->value(key) == value) {
        return;
    }
    settings->insert(key, value);
    replaceUserFile(m_path, QJsonDocument(*settings).toJson(), saveFailure());
}

void JsonSettings::keepUnreadableAside() const {
    QString aside = m_path + QStringLiteral(".unreadable");
    for (int number = 2; QFileInfo::exists(aside) || QFileInfo(aside).isSymLink(); ++number) {
        aside = QStringLiteral("%1.unreadable.%2").arg(m_path).arg(number);
    }
    QFile file(m_path);
    if (!file.rename(aside)) {
        throw PlatformError(saveFailure() + QStringLiteral("：") + file.errorString());
    }
}

QString userSettingsPath() {
    return userConfigHome() + QStringLiteral("/KESTU/settings.json");
}

} // namespace kestu
