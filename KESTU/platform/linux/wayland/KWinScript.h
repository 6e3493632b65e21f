// SPDX-License-Identifier: GPL-3.0-or-later
//
// The script that KWin runs for us, and the object that it calls.
#pragma once

#include <QByteArray>
#include <QString>

namespace kestu::kwinScript {

inline constexpr QStringView path = u"/jp/kestu/KWinWindows";
inline constexpr QStringView interface = u"jp.kestu.KWinWindows";
/// With one text: the window in front as JSON, "null" when there is none.
inline constexpr QStringView method = u"InFront";

/// For Plasma 5.27 and 6. It calls the connection with this number (":1.42") and nobody else: a name that can
/// be owned again would have the bus start us from the grave.
[[nodiscard]] QByteArray source(const QString& busNumber);

} // namespace kestu::kwinScript
