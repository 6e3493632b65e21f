// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/PortalAppearance.h"

#include "platform/linux/Bus.h"

#include <QDBusVariant>

namespace kestu {
namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString schemeKey = QStringLiteral("color-scheme");

std::optional<ColorScheme> schemeIn(QVariant value) {
    // Read wraps the value twice, the signal once.
    while (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    switch (value.toUInt()) {
    case 1:
        return ColorScheme::dark;
    case 2:
        return ColorScheme::light;
    default:
        return std::nullopt;
    }
}

} // namespace

PortalAppearance::PortalAppearance(const QDBusConnection& sessionBus)
    : m_bus(sessionBus)
    , m_watcher(service, sessionBus, QDBusServiceWatcher::WatchForOwnerChange) {
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& newOwner) {
                set(std::nullopt);
                if (!newOwner.isEmpty()) {
                    ask();
                }
            });
    m_bus.connect(service, path, settingsInterface, QStringLiteral("SettingChanged"), this,
                  SLOT(onSettingChanged(QDBusMessage)));
    ask();
}

void PortalAppearance::ask() {
    callBusLater(
        m_bus,
        {.service = service, .path = path, .interface = settingsInterface, .method = QStringLiteral("Read")},
        {appearanceGroup, schemeKey}, this,
        [this](const QVariantList& reply) { set(reply.isEmpty() ? std::nullopt : schemeIn(reply.first())); });
}

void PortalAppearance::onSettingChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    const bool isScheme = message.signature() == u"ssv" && arguments.at(0).toString() == appearanceGroup &&
                          arguments.at(1).toString() == schemeKey;
    if (isScheme) {
        set(schemeIn(arguments.at(2)));
    }
}

void PortalAppearance::set(std::optional<ColorScheme> scheme) {
    if (m_scheme != scheme) {
        m_scheme = scheme;
        Q_EMIT colorSchemeChanged();
    }
}

} // namespace kestu
