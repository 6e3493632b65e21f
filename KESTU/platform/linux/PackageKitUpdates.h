// SPDX-License-Identifier: GPL-3.0-or-later
//
// Asks the system's package service (org.freedesktop.PackageKit on the system bus) whether a newer version of
// our own package waits. Questions only: what they cannot do is change the system. Owned by the Linux
// platform.
#pragma once

#include "platform/SoftwareUpdates.h"

#include <QDBusConnection>
#include <QObject>

#include <chrono>

namespace kestu {

class PackageKitUpdates final : public SoftwareUpdates {
public:
    /// `patience` is how long one check may take before it counts as unanswered.
    explicit PackageKitUpdates(const QDBusConnection& systemBus,
                               std::chrono::milliseconds patience = std::chrono::seconds(30));
    PackageKitUpdates(const PackageKitUpdates&) = delete;
    PackageKitUpdates& operator=(const PackageKitUpdates&) = delete;

    /// Starts the package service when it does not run: somebody waits for what it says.
    void check(std::function<void(const UpdateAnswer&)> answered) override;

private:
    QDBusConnection m_bus;
    std::chrono::milliseconds m_patience;
    QObject m_checks; // the parent of those that run, which therefore end with this
};

} // namespace kestu
