// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one dialog that needs no window and no store: why KESTU cannot start.
#pragma once

#include <QString>

namespace kestu {

/// Shows `message` and waits until the user has closed it.
void showFailure(const QString& message);

} // namespace kestu
