// SPDX-License-Identifier: GPL-3.0-or-later
//
// The protocols by which compositors tell that nobody has touched a seat for some time: the common one, and
// the one that it came from. IdleNotifier knows what the news means.
#pragma once

#include "platform/linux/wayland/WaylandConnection.h"

#include <chrono>
#include <functional>
#include <memory>

struct wl_seat;

namespace kestu {

/// Tells until it is destroyed. Not to be destroyed from its own news.
class IdleNotification {
public:
    struct News {
        std::function<void()> idled;
        std::function<void()> resumed;
    };

    virtual ~IdleNotification() = default;
};

class IdleProtocol {
public:
    virtual ~IdleProtocol() = default;

    /// Null when `global` is none of them.
    [[nodiscard]] static std::unique_ptr<IdleProtocol> bind(WaylandConnection& connection,
                                                            const WaylandGlobal& global);

    /// Of the seat, which nobody has touched for `time`.
    [[nodiscard]] virtual std::unique_ptr<IdleNotification>
    notify(wl_seat* seat, std::chrono::milliseconds time, IdleNotification::News news) = 0;

    /// Else inhibitors silence it.
    [[nodiscard]] virtual bool looksAtInputAlone() const { return false; }

    /// Where a compositor offers both, this one says more.
    [[nodiscard]] virtual bool isPreferred() const { return false; }
};

} // namespace kestu
