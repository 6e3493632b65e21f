// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ScreenSavers.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace kestu {

using namespace std::chrono_literals;

namespace {

constexpr auto answerBound = 150ms;

// Each of them has one object with one interface, and all three names are the same.
constexpr std::array<QStringView, 5> saverServices{
    u"org.freedesktop.ScreenSaver", u"org.gnome.ScreenSaver", u"org.cinnamon.ScreenSaver",
    u"org.mate.ScreenSaver",        u"org.xfce.ScreenSaver",
};

QString pathOf(QStringView service) {
    return u'/' + service.toString().replace(u'.', u'/');
}

} // namespace

ScreenSavers::ScreenSavers(const QDBusConnection& sessionBus) {
    for (const QStringView service : saverServices) {
        QStringList paths{pathOf(service)};
        if (service == saverServices.front()) {
            paths << QStringLiteral("/ScreenSaver"); // KDE's locker tells at both
        }
        m_savers.push_back(
            std::make_unique<ScreenSaver>(sessionBus, service.toString(), paths, service.toString()));
    }
    // GNOME Shell itself: org.gnome.ScreenSaver only passes its words on, and runs only when somebody asked.
    const QString gnome = QStringLiteral("org.gnome.ScreenSaver");
    m_savers.push_back(std::make_unique<ScreenSaver>(
        sessionBus, QStringLiteral("org.gnome.Shell.ScreenShield"), QStringList{pathOf(gnome)}, gnome));
    for (const auto& saver : m_savers) {
        connect(saver.get(), &ScreenSaver::changed, this, &ScreenSavers::note);
    }
    ask();
}

void ScreenSavers::ask() {
    const QDeadlineTimer deadline(answerBound);
    for (const auto& saver : m_savers) {
        saver->ask(deadline);
    }
}

bool ScreenSavers::isAnyThere() const {
    return std::ranges::any_of(m_savers, [](const auto& saver) { return saver->isThere(); });
}

bool ScreenSavers::isActive() const {
    return std::ranges::any_of(m_savers, [](const auto& saver) { return saver->isActive(); });
}

void ScreenSavers::note() {
    const bool active = isActive();
    if (std::exchange(m_wasActive, active) != active) {
        Q_EMIT activeChanged(active);
    }
}

} // namespace kestu
