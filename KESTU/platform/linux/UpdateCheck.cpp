// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/UpdateCheck.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QStringList>
#include <QTimer>

#include <utility>

namespace kestu {
namespace {

const QString packageName = QStringLiteral("kestu");
const QString service = QStringLiteral("org.freedesktop.PackageKit");
const QString transactionInterface = QStringLiteral("org.freedesktop.PackageKit.Transaction");
constexpr uint exitSuccess = 1;
constexpr quint64 noFilter = 0;
const UpdateAnswer noAnswer{.kind = UpdateAnswer::Kind::unavailable, .version = {}};

QDBusMessage transactionQuestion() {
    return QDBusMessage::createMethodCall(service, QStringLiteral("/org/freedesktop/PackageKit"), service,
                                          QStringLiteral("CreateTransaction"));
}

} // namespace

UpdateCheck::UpdateCheck(const QDBusConnection& systemBus, std::function<void(const UpdateAnswer&)> answered,
                         QObject* owner)
    : QObject(owner)
    , m_bus(systemBus)
    , m_answered(std::move(answered)) {}

void UpdateCheck::start(std::chrono::milliseconds patience) {
    using namespace std::chrono_literals;
    // Without a bus a call never ends, not even with an error.
    const bool canAsk = m_bus.isConnected();
    QTimer::singleShot(canAsk ? patience : 0ms, this, [this] { finish(noAnswer); });
    if (canAsk) {
        openTransaction();
    }
}

/// An error to a question ends the check.
void UpdateCheck::ask(const QDBusMessage& question, std::function<void(const QDBusMessage&)> replied) {
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, replied = std::move(replied)] {
        watcher->deleteLater();
        if (watcher->isError()) {
            finish(noAnswer);
        } else {
            replied(watcher->reply());
        }
    });
}

void UpdateCheck::openTransaction() {
    ask(transactionQuestion(), [this](const QDBusMessage& reply) {
        if (reply.signature() == u"o") {
            listenAndAsk(reply.arguments().first().value<QDBusObjectPath>().path());
        } else {
            finish(noAnswer);
        }
    });
}

/// Listens first: a service that knows the answer already gives it with the reply.
void UpdateCheck::listenAndAsk(const QString& transaction) {
    m_bus.connect(service, transaction, transactionInterface, QStringLiteral("Package"), this,
                  SLOT(onPackage(uint, QString, QString)));
    m_bus.connect(service, transaction, transactionInterface, QStringLiteral("ErrorCode"), this,
                  SLOT(onErrorCode(uint, QString)));
    m_bus.connect(service, transaction, transactionInterface, QStringLiteral("Finished"), this,
                  SLOT(onFinished(uint, uint)));
    QDBusMessage question = QDBusMessage::createMethodCall(service, transaction, transactionInterface,
                                                           QStringLiteral("GetUpdates"));
    question << QVariant::fromValue(noFilter);
    ask(question, [](const QDBusMessage&) {}); // the answer comes in the signals
}

void UpdateCheck::onPackage(uint /*info*/, const QString& packageId, const QString& /*summary*/) {
    const QStringList parts = packageId.split(u';'); // name;version;architecture;data
    if (parts.size() == 4 && parts.first() == packageName) {
        finish({.kind = UpdateAnswer::Kind::available, .version = parts.at(1)});
    }
}

void UpdateCheck::onErrorCode(uint /*code*/, const QString& /*details*/) {
    finish(noAnswer);
}

void UpdateCheck::onFinished(uint exit, uint /*runtime*/) {
    finish(exit == exitSuccess ? UpdateAnswer{.kind = UpdateAnswer::Kind::upToDate, .version = {}}
                               : noAnswer);
}

void UpdateCheck::finish(const UpdateAnswer& answer) {
    if (const auto answered = std::exchange(m_answered, nullptr)) {
        deleteLater();
        answered(answer); // may delete our owner, and so this
    }
}

} // namespace kestu
