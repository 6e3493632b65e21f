// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether a screen saver or locker of the desktop covers the windows (session bus). Nobody sees a window
// behind a saver, so one that does not lock counts as well. LinuxSystemEvents owns one.
#pragma once

#include "platform/linux/ScreenSaver.h"

#include <QDBusConnection>
#include <QObject>

#include <memory>
#include <vector>

namespace kestu {

class ScreenSavers final : public QObject {
    Q_OBJECT

public:
    /// Asks the savers that run, which takes 0.15 seconds at most; later answers are still heard.
    explicit ScreenSavers(const QDBusConnection& sessionBus);

    /// Asks them again, as at the start. One that does not answer in time counts as not active until it does.
    void ask();

    /// Whether any runs that would tell.
    [[nodiscard]] bool isAnyThere() const;
    [[nodiscard]] bool isActive() const;

Q_SIGNALS:
    void activeChanged(bool active);

private:
    void note();

    std::vector<std::unique_ptr<ScreenSaver>> m_savers;
    bool m_wasActive = false;
};

} // namespace kestu
