// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/LinuxDisplayAssertions.h"

#include "platform/linux/Bus.h"
#include "platform/linux/ProcessTree.h"

#include <QDBusArgument>
#include <QDBusObjectPath>

#include <chrono>
#include <utility>
#include <vector>

namespace kestu {

using namespace std::chrono_literals;

namespace {

constexpr auto answerBound = 300ms;

/// Process 1 starts everything: taken as an application it would hold every inhibitor of the machine.
constexpr std::int64_t firstApplicationProcess = 2;

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

QString withoutDesktopSuffix(const QString& id) {
    const auto suffix = QStringLiteral(".desktop");
    return id.endsWith(suffix, Qt::CaseInsensitive) ? id.chopped(suffix.size()) : id;
}

} // namespace

LinuxDisplayAssertions::LinuxDisplayAssertions(const QDBusConnection& systemBus,
                                               const QDBusConnection& sessionBus, QString procRoot)
    : m_systemBus(systemBus)
    , m_sessionBus(sessionBus)
    , m_procRoot(std::move(procRoot)) {}

std::optional<QStringList> LinuxDisplayAssertions::heldBy(const FrontmostApplication& application) {
    const QDeadlineTimer deadline(answerBound);
    const HeldTypes atLogin = heldAtLogin(application, deadline);
    const HeldTypes inSession = heldInSession(application, deadline);
    if (!atLogin && !inSession) {
        return std::nullopt;
    }
    QStringList types = atLogin.value_or(QStringList()) + inSession.value_or(QStringList());
    types.removeDuplicates();
    return types;
}

LinuxDisplayAssertions::HeldTypes LinuxDisplayAssertions::heldAtLogin(const FrontmostApplication& application,
                                                                      const QDeadlineTimer& deadline) const {
    const auto reply = callBus(m_systemBus,
                               {.service = QStringLiteral("org.freedesktop.login1"),
                                .path = QStringLiteral("/org/freedesktop/login1"),
                                .interface = QStringLiteral("org.freedesktop.login1.Manager"),
                                .method = QStringLiteral("ListInhibitors")},
                               {}, deadline);
    if (!reply || reply->isEmpty()) {
        return std::nullopt;
    }
    QStringList types;
    for (const LoginInhibitor& inhibitor : loginInhibitors(reply->first())) {
        if (inhibitor.mode == u"block" && application.processId >= firstApplicationProcess &&
            descendsFrom(m_procRoot, inhibitor.processId, application.processId)) {
            addType(types, inhibitor.what.contains(u"idle"), inhibitor.what.contains(u"sleep"));
        }
    }
    return types;
}

LinuxDisplayAssertions::HeldTypes
LinuxDisplayAssertions::heldInSession(const FrontmostApplication& application,
                                      const QDeadlineTimer& deadline) const {
    const QString service = QStringLiteral("org.gnome.SessionManager");
    const auto ask = [&](const QString& path, const QString& interface, const QString& method) {
        const auto reply = callBus(
            m_sessionBus, {.service = service, .path = path, .interface = interface, .method = method}, {},
            deadline);
        return reply && !reply->isEmpty() ? std::optional(reply->first()) : std::nullopt;
    };
    const auto inhibitors =
        ask(QStringLiteral("/org/gnome/SessionManager"), service, QStringLiteral("GetInhibitors"));
    if (!inhibitors) {
        return std::nullopt;
    }
    constexpr uint suspendFlag = 4;
    constexpr uint idleFlag = 8;
    const QString interface = QStringLiteral("org.gnome.SessionManager.Inhibitor");
    QStringList types;
    for (const QDBusObjectPath& inhibitor : qdbus_cast<QList<QDBusObjectPath>>(*inhibitors)) {
        // One that is gone by now, or does not answer in time, holds nothing.
        const auto id = ask(inhibitor.path(), interface, QStringLiteral("GetAppId"));
        if (id && names(id->toString(), application)) {
            const auto flags = ask(inhibitor.path(), interface, QStringLiteral("GetFlags"));
            const uint held = flags ? flags->toUInt() : 0;
            addType(types, (held & idleFlag) != 0, (held & suspendFlag) != 0);
        }
    }
    return types;
}

/// Clients call themselves what they like: a desktop entry's name or the path of their program. Anything
/// that is not surely this application is taken for another one.
bool LinuxDisplayAssertions::names(const QString& inhibitorId,
                                   const FrontmostApplication& application) const {
    if (inhibitorId.startsWith(u'/')) {
        return application.processId >= firstApplicationProcess &&
               inhibitorId == executableOf(m_procRoot, application.processId);
    }
    const QString wanted = withoutDesktopSuffix(application.bundleId.value_or(QString()));
    return !wanted.isEmpty() && withoutDesktopSuffix(inhibitorId).compare(wanted, Qt::CaseInsensitive) == 0;
}

} // namespace kestu
