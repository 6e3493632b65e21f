// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/AccessibleSight.h"

#include "platform/linux/Bus.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>

namespace kestu {
namespace {

using namespace std::chrono_literals;

constexpr auto oneProgram = 100ms;

QList<Accessible> activeAmong(AccessibilityBus& bus, const Accessible& program,
                              const QDeadlineTimer& deadline) {
    const QDeadlineTimer own(std::min<std::chrono::nanoseconds>(
        oneProgram, std::chrono::nanoseconds(deadline.remainingTimeNSecs())));
    const QList<Accessible> windows =
        accessible::readAccessibles(bus.ask(accessible::childrenQuestion(program), own));
    QList<QDBusMessage> questions;
    for (const Accessible& window : windows) {
        questions << accessible::statesQuestion(window);
    }
    const QList<QDBusMessage> replies = bus.askAll(questions, own);
    QList<Accessible> active;
    for (qsizetype i = 0; i < windows.size(); ++i) {
        if (accessible::readIsActive(replies.at(i))) {
            active << windows.at(i);
        }
    }
    return active;
}

} // namespace

std::int64_t gnomeShellProcess(const QDBusConnection& sessionBus) {
    const auto reply = callBus(sessionBus,
                               {.service = QStringLiteral("org.freedesktop.DBus"),
                                .path = QStringLiteral("/org/freedesktop/DBus"),
                                .interface = QStringLiteral("org.freedesktop.DBus"),
                                .method = QStringLiteral("GetConnectionUnixProcessID")},
                               {QStringLiteral("org.gnome.Shell")}, QDeadlineTimer(50ms));
    return reply && !reply->isEmpty() ? reply->first().toUInt() : 0;
}

Sight sightOf(AccessibilityBus& bus, std::int64_t shell, const Accessible& former,
              const QDeadlineTimer& deadline) {
    Sight sight;
    for (const auto& [root, processId] : bus.programs(deadline)) {
        // We cannot answer ourselves while we ask, and no window of the shell is the user's.
        if (processId <= 0 || processId == QCoreApplication::applicationPid() || processId == shell) {
            continue;
        }
        try {
            for (const Accessible& window : activeAmong(bus, root, deadline)) {
                sight.active << AccessibleFront{.object = window, .processId = processId, .name = {}};
            }
        } catch (const NoAnswer&) {
            sight.isFormerBusy |= root.service == former.service;
        }
    }
    if (sight.active.size() == 1) {
        AccessibleFront& front = sight.active.first();
        front.name = accessible::readName(bus.ask(accessible::nameQuestion(front.object), deadline));
    }
    return sight;
}

} // namespace kestu
