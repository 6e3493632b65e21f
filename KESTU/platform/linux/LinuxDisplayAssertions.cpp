// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LinuxDisplayAssertions.h"

#include "platform/linux/Bus.h"
#include "platform/linux/InhibitorOwner.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDeadlineTimer>

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace kestu {

using namespace std::chrono_literals;

namespace {

constexpr auto answerBound = 300ms;

using Answer = std::optional<QVariantList>;
using HeldTypes = std::optional<QStringList>; // absent when the list could not be asked for

struct LoginInhibitor {
    QStringList what;
    QString mode;
    std::int64_t processId = 0;
};

/// From a(ssssuu): what, who, why, mode, user, process.
std::vector<LoginInhibitor> loginInhibitors(const QVariant& reply) {
    const auto list = reply.value<QDBusArgument>();
    std::vector<LoginInhibitor> inhibitors;
    if (list.currentSignature() != u"a(ssssuu)") {
        return inhibitors;
    }
    list.beginArray();
    while (!list.atEnd()) {
        QString what;
        QString who;
        QString why;
        QString mode;
        uint user = 0;
        uint process = 0;
        list.beginStructure();
        list >> what >> who >> why >> mode >> user >> process;
        list.endStructure();
        inhibitors.push_back({.what = what.split(u':'), .mode = mode, .processId = process});
    }
    list.endArray();
    return inhibitors;
}

void addType(QStringList& types, bool display, bool system) {
    if (display) {
        types << assertionType::preventUserIdleDisplaySleep.toString();
    } else if (system) {
        types << assertionType::preventUserIdleSystemSleep.toString();
    }
}

BusMethod sessionMethod(const QString& path, const QString& interface, const QString& method) {
    return {.service = QStringLiteral("org.gnome.SessionManager"),
            .path = path,
            .interface = interface,
            .method = method};
}

BusMethod policyMethod(const QString& method) {
    return {.service = QStringLiteral("org.kde.Solid.PowerManagement"),
            .path = QStringLiteral("/org/kde/Solid/PowerManagement/PolicyAgent"),
            .interface = QStringLiteral("org.kde.Solid.PowerManagement.PolicyAgent"),
            .method = method};
}

struct Lists {
    QDBusPendingCall atLogin;
    QDBusPendingCall inSession;
    QDBusPendingCall policies;
    QDBusPendingCall hasScreenPolicy;
    QDBusPendingCall atPower;
};

/// All at once: a service that hangs takes no time from the others.
Lists askForLists(const QDBusConnection& systemBus, const QDBusConnection& sessionBus,
                  const QDeadlineTimer& deadline) {
    constexpr uint screenPolicy = 4; // of KDE's kinds of inhibition the one that keeps the screen on
    const auto ask = [&](const QDBusConnection& bus, const BusMethod& method,
                         const QVariantList& arguments = {}) {
        return askBus(bus, method, arguments, deadline);
    };
    return {.atLogin = ask(systemBus, {.service = QStringLiteral("org.freedesktop.login1"),
                                       .path = QStringLiteral("/org/freedesktop/login1"),
                                       .interface = QStringLiteral("org.freedesktop.login1.Manager"),
                                       .method = QStringLiteral("ListInhibitors")}),
            .inSession = ask(sessionBus, sessionMethod(QStringLiteral("/org/gnome/SessionManager"),
                                                       QStringLiteral("org.gnome.SessionManager"),
                                                       QStringLiteral("GetInhibitors"))),
            .policies = ask(sessionBus, policyMethod(QStringLiteral("ListInhibitions"))),
            .hasScreenPolicy = ask(sessionBus, policyMethod(QStringLiteral("HasInhibition")), {screenPolicy}),
            .atPower =
                ask(sessionBus, {.service = QStringLiteral("org.freedesktop.PowerManagement"),
                                 .path = QStringLiteral("/org/freedesktop/PowerManagement/Inhibit"),
                                 .interface = QStringLiteral("org.freedesktop.PowerManagement.Inhibit"),
                                 .method = QStringLiteral("GetInhibitors")})};
}

HeldTypes heldAtLogin(const Answer& inhibitors, InhibitorOwner& owner) {
    if (!inhibitors || inhibitors->isEmpty()) {
        return std::nullopt;
    }
    QStringList types;
    for (const LoginInhibitor& inhibitor : loginInhibitors(inhibitors->first())) {
        if (inhibitor.mode == u"block" && owner.isProcess(inhibitor.processId)) {
            addType(types, inhibitor.what.contains(u"idle"), inhibitor.what.contains(u"sleep"));
        }
    }
    return types;
}

HeldTypes heldInSession(const Answer& inhibitors, InhibitorOwner& owner, const QDBusConnection& bus,
                        const QDeadlineTimer& deadline) {
    if (!inhibitors || inhibitors->isEmpty()) {
        return std::nullopt;
    }
    constexpr uint suspendFlag = 4;
    constexpr uint idleFlag = 8;
    const QString interface = QStringLiteral("org.gnome.SessionManager.Inhibitor");
    QStringList types;
    for (const QDBusObjectPath& inhibitor : qdbus_cast<QList<QDBusObjectPath>>(inhibitors->first())) {
        // One that is gone by now, or does not answer in time, holds nothing.
        const auto ask = [&](const QString& method) {
            const Answer answer =
                callBus(bus, sessionMethod(inhibitor.path(), interface, method), {}, deadline);
            return answer ? answer->value(0) : QVariant();
        };
        if (owner.isNamed(ask(QStringLiteral("GetAppId")).toString())) {
            const uint held = ask(QStringLiteral("GetFlags")).toUInt();
            addType(types, (held & idleFlag) != 0, (held & suspendFlag) != 0);
        }
    }
    return types;
}

/// From a(ss): who, why.
QStringList policyClients(const QVariant& reply) {
    const auto list = reply.value<QDBusArgument>();
    QStringList clients;
    if (list.currentSignature() != u"a(ss)") {
        return clients;
    }
    list.beginArray();
    while (!list.atEnd()) {
        QString who;
        QString why;
        list.beginStructure();
        list >> who >> why;
        list.endStructure();
        clients << who;
    }
    list.endArray();
    return clients;
}

QStringList displayIfNamed(const QStringList& clients, InhibitorOwner& owner) {
    const bool isNamed = std::any_of(clients.begin(), clients.end(),
                                     [&](const QString& client) { return owner.isNamed(client); });
    QStringList types;
    addType(types, isNamed, false);
    return types;
}

/// Which client keeps the screen on is not told, only whether any does.
HeldTypes heldByPolicy(const Answer& policies, const Answer& hasScreenPolicy, InhibitorOwner& owner) {
    if (!policies || policies->isEmpty()) {
        return std::nullopt;
    }
    const bool isScreenKept = hasScreenPolicy && hasScreenPolicy->value(0).toBool();
    return isScreenKept ? displayIfNamed(policyClients(policies->first()), owner) : QStringList();
}

/// Its inhibitions are of sleep by name; those services that list them leave the display on as well.
HeldTypes heldByPower(const Answer& clients, InhibitorOwner& owner) {
    if (!clients || clients->isEmpty()) {
        return std::nullopt;
    }
    return displayIfNamed(clients->first().toStringList(), owner);
}

HeldTypes heldByWindow(std::optional<bool> keepsDisplayOn) {
    if (!keepsDisplayOn) {
        return std::nullopt;
    }
    QStringList types;
    addType(types, *keepsDisplayOn, false);
    return types;
}

} // namespace

LinuxDisplayAssertions::LinuxDisplayAssertions(const QDBusConnection& systemBus,
                                               const QDBusConnection& sessionBus, OfSession ofSession,
                                               QString procRoot, ApplicationIds::EntrySource entries)
    : m_systemBus(systemBus)
    , m_sessionBus(sessionBus)
    , m_ofSession(std::move(ofSession))
    , m_procRoot(std::move(procRoot))
    , m_entries(std::move(entries)) {}

std::optional<QStringList> LinuxDisplayAssertions::heldBy(const FrontmostApplication& application) {
    const QDeadlineTimer deadline(answerBound);
    const Lists lists = askForLists(m_systemBus, m_sessionBus, deadline);
    InhibitorOwner owner(application, m_procRoot, m_entries);
    // The session manager first: its answer leads to further questions, and the time is the same for all.
    const HeldTypes all[] = {
        heldInSession(answerOf(lists.inSession), owner, m_sessionBus, deadline),
        heldAtLogin(answerOf(lists.atLogin), owner),
        heldByPolicy(answerOf(lists.policies), answerOf(lists.hasScreenPolicy), owner),
        heldByPower(answerOf(lists.atPower), owner),
        heldByWindow(m_ofSession ? m_ofSession(application, deadline) : std::nullopt),
    };
    HeldTypes held;
    for (const HeldTypes& types : all) {
        if (types) {
            held = held.value_or(QStringList()) + *types;
        }
    }
    if (held) {
        held->removeDuplicates();
    }
    return held;
}

} // namespace kestu
