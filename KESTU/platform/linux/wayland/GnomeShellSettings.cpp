// SPDX-License-Identifier: GPL-3.0-or-later
#include <gio/gio.h>

#include "platform/linux/wayland/GnomeShellSettings.h"

#include <memory>

namespace kestu {
namespace {

constexpr auto schemaName = "org.gnome.shell";
constexpr auto enabledKey = "enabled-extensions";
constexpr auto disabledKey = "disabled-extensions";

struct Release {
    void operator()(GSettings* settings) const { g_object_unref(settings); }
    void operator()(GSettingsSchema* schema) const { g_settings_schema_unref(schema); }
    void operator()(gchar** texts) const { g_strfreev(texts); }
};

using Settings = std::unique_ptr<GSettings, Release>;

/// Null where the schema is not installed: opening it all the same would end the program.
Settings shellSettings() {
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    const std::unique_ptr<GSettingsSchema, Release> schema(
        source != nullptr ? g_settings_schema_source_lookup(source, schemaName, TRUE) : nullptr);
    return Settings(schema ? g_settings_new_full(schema.get(), nullptr, nullptr) : nullptr);
}

QStringList listIn(const Settings& settings, const char* key) {
    QStringList list;
    if (settings) {
        const std::unique_ptr<gchar*, Release> texts(g_settings_get_strv(settings.get(), key));
        for (gchar** text = texts.get(); *text != nullptr; ++text) {
            list << QString::fromUtf8(*text);
        }
    }
    return list;
}

bool write(const Settings& settings, const char* key, const QStringList& list) {
    QList<QByteArray> texts;
    QList<const gchar*> pointers;
    for (const QString& text : list) {
        texts << text.toUtf8();
        pointers << texts.constLast().constData();
    }
    pointers << nullptr;
    return g_settings_set_strv(settings.get(), key, pointers.constData()) != FALSE;
}

} // namespace

bool DesktopShellSettings::allowsExtensions() const {
    const Settings settings = shellSettings();
    return !settings || g_settings_get_boolean(settings.get(), "disable-user-extensions") == FALSE;
}

QStringList DesktopShellSettings::enabledExtensions() const {
    return listIn(shellSettings(), enabledKey);
}

QStringList DesktopShellSettings::disabledExtensions() const {
    return listIn(shellSettings(), disabledKey);
}

bool DesktopShellSettings::enable(const QString& extension) {
    const Settings settings = shellSettings();
    if (!settings) {
        return false;
    }
    QStringList disabled = listIn(settings, disabledKey);
    if (disabled.removeAll(extension) > 0 && !write(settings, disabledKey, disabled)) {
        return false;
    }
    QStringList enabled = listIn(settings, enabledKey);
    return enabled.contains(extension) || write(settings, enabledKey, enabled << extension);
}

} // namespace kestu
