// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/MutterDisplayPower.h"

#include "platform/linux/Bus.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QDeadlineTimer>
#include <QVariantMap>

#include <chrono>
#include <utility>

namespace kestu {

using namespace std::chrono_literals;

namespace {

const QString service = QStringLiteral("org.gnome.Mutter.DisplayConfig"); // and the interface
const QString path = QStringLiteral("/org/gnome/Mutter/DisplayConfig");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString powerMode = QStringLiteral("PowerSaveMode");

/// 0 is on, 1 to 3 are the ways of being off, and below that nobody knows.
DisplayPower::State stateOf(const QVariant& mode) {
    bool isNumber = false;
    const int number = mode.toInt(&isNumber);
    if (!isNumber || number < 0 || number > 3) {
        return DisplayPower::State::unknown;
    }
    return number == 0 ? DisplayPower::State::on : DisplayPower::State::asleep;
}

} // namespace

std::unique_ptr<MutterDisplayPower> MutterDisplayPower::open(const QDBusConnection& sessionBus) {
    auto power = std::unique_ptr<MutterDisplayPower>(new MutterDisplayPower(sessionBus));
    return power->m_owner.number().isEmpty() ? nullptr : std::move(power);
}

MutterDisplayPower::MutterDisplayPower(const QDBusConnection& sessionBus)
    : m_bus(sessionBus)
    , m_owner(m_bus, service) {
    m_bus.connect(service, path, propertiesInterface, QStringLiteral("PropertiesChanged"), this,
                  SLOT(onPropertiesChanged(QDBusMessage)));
    connect(&m_owner, &BusOwner::changed, this, [this] {
        take({}); // a new one, or none, knows nothing of the old one's displays
        askLater();
    });
    const auto mode = busProperty(m_bus, service, path, service, powerMode, QDeadlineTimer(100ms));
    m_state = mode ? stateOf(*mode) : State::unknown;
    if (!mode) {
        askLater();
    }
}

void MutterDisplayPower::askLater() {
    callBusLater(
        m_bus,
        {.service = service, .path = path, .interface = propertiesInterface, .method = QStringLiteral("Get")},
        {service, powerMode}, this,
        [this](const QVariantList& answer) { take(answer.value(0).value<QDBusVariant>().variant()); });
}

void MutterDisplayPower::onPropertiesChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    const auto changes = qdbus_cast<QVariantMap>(arguments.value(1));
    if (arguments.value(0).toString() == service && changes.contains(powerMode)) {
        take(changes.value(powerMode));
    }
}

void MutterDisplayPower::take(const QVariant& mode) {
    const State now = stateOf(mode);
    if (std::exchange(m_state, now) != now) {
        Q_EMIT changed();
    }
}

} // namespace kestu
