// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether somebody shows status notifier items, the only trays of Wayland sessions. Qt may be asked only once
// there is one: some versions of it keep their first answer.
#pragma once

class QDBusConnection;

namespace kestu {

/// Answers within 0.3 seconds.
[[nodiscard]] bool isStatusNotifierTrayThere(const QDBusConnection& sessionBus);

} // namespace kestu
