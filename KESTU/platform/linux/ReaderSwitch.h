// SPDX-License-Identifier: GPL-3.0-or-later
//
// Our own windows on the accessibility bus. Qt looks once whether a screen reader is on; one that is switched
// on later would never hear of a program that starts with the session.
#pragma once

#include <QByteArray>
#include <QList>

namespace kestu {

/// Joins the bus in any case, as soon as there is one. To be called before there is a QApplication.
void offerWindowsToReaders();

/// What that leaves in the environment, and is not meant for programs that we start.
[[nodiscard]] QList<QByteArray> ownEnvironment();

} // namespace kestu
