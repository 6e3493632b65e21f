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

QString saveFailure() {
    return QStringLiteral("設定を保存できませんでした");
}

} // namespace

JsonSettings::JsonSettings(QString path)
    : m_path(std::move(path)) {}

JsonSettings::State JsonSettings::read() const {
    if (const auto settings = readSettings(m_path)) {
        if (!settings->isEmpty()) {
            rememberAsGood(*settings);
        }
        return {.settings = *settings};
    }
    const auto lastGood = QFileInfo::exists(m_lastGoodPath) ? readSettings(m_lastGoodPath) : std::nullopt;
    return {.settings = lastGood.value_or(QJsonObject()), .isUnreadable = true, .isLost = !lastGood};
}

QJsonValue JsonSettings::setting(const QString& key) const {
    return read().settings.value(key);
}

QString JsonSettings::problem() const {
    const State state = read();
    if (!state.isUnreadable) {
        return {};
    }
    const QString consequence =
        state.isLost ? QStringLiteral("控えも読み込めないため、初期設定に戻ります。「記録しないアプリ」を設定"
                                      "し直してください。")
                     : QStringLiteral("最後に読み込めた設定で続けます。");
    return QStringLiteral(
               "設定ファイルを読み込めませんでした。%1元のファイルは、名前に「.unreadable」を付けて"
               "同じフォルダーに残します：%2")
        .arg(consequence, m_path);
}

void JsonSettings::rememberAsGood(const QJsonObject& settings) const {
    if (!m_lastGood) {
        m_lastGood = readSettings(m_lastGoodPath);
    }
    if (m_lastGood == settings) {
        return;
    }
    try {
        replaceUserFile(m_lastGoodPath, QJsonDocument(settings).toJson(), saveFailure());
        m_lastGood = settings;
    } catch (const PlatformError&) {
        // The settings themselves are well; the next reading tries again.
    }
}

std::optional<int> JsonSettings::integer(const QString& key) const {
    const QJsonValue value = setting(key);
    const double number = value.toDouble();
    if (!value.isDouble() || number != std::trunc(number) || number < std::numeric_limits<int>::min() ||
        number > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    return static_cast<int>(number);
}

std::optional<bool> JsonSettings::boolean(const QString& key) const {
    const QJsonValue value = setting(key);
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<QMap<QString, QString>> JsonSettings::dictionary(const QString& key) const {
    const QJsonValue value = setting(key);
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
    State state = read();
    // Each setting is stored again at every start; only a change is worth a write to the disk.
    if (!state.isUnreadable && state.settings.value(key) == value) {
        return;
    }
    state.settings.insert(key, value);
    if (state.isUnreadable) {
        replaceUnreadable(state.settings);
    } else {
        replaceUserFile(m_path, QJsonDocument(state.settings).toJson(), saveFailure());
    }
    rememberAsGood(state.settings);
}

void JsonSettings::replaceUnreadable(const QJsonObject& settings) const {
    QString aside = m_path + QStringLiteral(".unreadable");
    for (int number = 2; QFileInfo::exists(aside) || QFileInfo(aside).isSymLink(); ++number) {
        aside = QStringLiteral("%1.unreadable.%2").arg(m_path).arg(number);
    }
    QFile file(m_path);
    if (!file.rename(aside)) {
        throw PlatformError(saveFailure() + QStringLiteral("：") + file.errorString());
    }
    try {
        replaceUserFile(m_path, QJsonDocument(settings).toJson(), saveFailure());
    } catch (const PlatformError&) {
        file.rename(m_path); // no file at all would read as no settings
        throw;
    }
}

QString userSettingsPath() {
    return userConfigHome() + QStringLiteral("/KESTU/settings.json");
}

} // namespace kestu
