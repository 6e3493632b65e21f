// SPDX-License-Identifier: GPL-3.0-or-later
//
// One question to the package service, from the transaction that it opens for it to the answer. Deletes
// itself after the answer; PackageKitUpdates owns those that still wait.
#pragma once

#include "platform/SoftwareUpdates.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>

namespace kestu {

class UpdateCheck final : public QObject {
    Q_OBJECT

public:
    UpdateCheck(const QDBusConnection& systemBus, std::function<void(const UpdateAnswer&)> answered,
                QObject* owner);

    void start(std::chrono::milliseconds patience);

private Q_SLOTS:
    void onPackage(uint info, const QString& packageId, const QString& summary);
    void onErrorCode(uint code, const QString& details);
    void onFinished(uint exit, uint runtime);

private:
    void ask(const QDBusMessage& question, std::function<void(const QDBusMessage&)> replied);
    void openTransaction();
    void listenAndAsk(const QString& transaction);
    void finish(const UpdateAnswer& answer);

    QDBusConnection m_bus;
    std::function<void(const UpdateAnswer&)> m_answered; // empty once it was called
};

} // namespace kestu
