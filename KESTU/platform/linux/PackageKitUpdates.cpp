// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/PackageKitUpdates.h"

#include "platform/linux/UpdateCheck.h"

#include <utility>

namespace kestu {

PackageKitUpdates::PackageKitUpdates(const QDBusConnection& systemBus, std::chrono::milliseconds patience)
    : m_bus(systemBus)
    , m_patience(patience) {}

void PackageKitUpdates::check(std::function<void(const UpdateAnswer&)> answered) {
    (new UpdateCheck(m_bus, std::move(answered), &m_checks))->start(m_patience);
}

} // namespace kestu
