// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ReaderSwitch.h"

namespace kestu {
namespace {

constexpr const char* joinAlways = "QT_LINUX_ACCESSIBILITY_ALWAYS_ON";
bool isOurs = false; // not the user's own

} // namespace

void offerWindowsToReaders() {
    if (!qEnvironmentVariableIsSet(joinAlways)) {
        isOurs = qputenv(joinAlways, "1");
    }
}

QList<QByteArray> ownEnvironment() {
    return isOurs ? QList<QByteArray>{joinAlways} : QList<QByteArray>{};
}

} // namespace kestu
