// SPDX-License-Identifier: GPL-3.0-or-later
//
// GNOME Shell on a bus of the test's own, as far as extensions and the lock go, and our extension within it;
// and the user's settings of extensions.
#pragma once

#include "platform/linux/wayland/GnomeShellSettings.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QVariantMap>

namespace kestu::test {

inline const QString extensionId = QStringLiteral("kestu@kestu.example");

struct ShellSettings {
    bool allows = true;
    QStringList enabled{};
    QStringList disabled{};
};

class FakeShellSettings final : public GnomeShellSettings {
public:
    explicit FakeShellSettings(ShellSettings& settings)
        : m_settings(settings) {}

    [[nodiscard]] bool allowsExtensions() const override { return m_settings.allows; }
    [[nodiscard]] QStringList enabledExtensions() const override { return m_settings.enabled; }
    [[nodiscard]] QStringList disabledExtensions() const override { return m_settings.disabled; }
    bool enable(const QString& extension) override {
        m_settings.disabled.removeAll(extension);
        m_settings.enabled << extension;
        return true;
    }

private:
    ShellSettings& m_settings;
};

class FakeShell final : public QDBusVirtualObject {
public:
    /// The shell's own numbers; `none` is an extension that it does not know.
    enum ExtensionState { none = 0, active = 1, inactive = 2, error = 3, outOfDate = 4, initialized = 6 };

    FakeShell(QDBusConnection bus, ShellSettings& settings, ExtensionState state);
    ~FakeShell() override;

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

    /// What the extension says of its version, instead of 1.
    void setVersion(const QVariant& version) { m_version = version; }
    /// What it answers to the first question.
    void setWindow(const QVariantMap& window) { m_window = window; }

    /// As the shell does it: the extension comes or goes, and everybody is told.
    void become(ExtensionState state);
    void lock(bool isLocked);

    /// The extension's signal, with whatever it may say.
    void tell(const QVariant& window);

    [[nodiscard]] int enableCalls() const { return m_enableCalls; }
    [[nodiscard]] const QDBusConnection& bus() const { return m_bus; }

    [[nodiscard]] static QVariantMap window(qulonglong id, const QString& title);

private:
    [[nodiscard]] QDBusMessage answer(const QDBusMessage& message);
    [[nodiscard]] QVariantMap info() const;
    void enable();

    QDBusConnection m_bus;
    ShellSettings& m_settings;
    ExtensionState m_state;
    bool m_isLocked = false;
    int m_enableCalls = 0;
    QVariant m_version = 1U;
    QVariantMap m_window;
};

} // namespace kestu::test
