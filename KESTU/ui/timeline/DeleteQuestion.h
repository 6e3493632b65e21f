// SPDX-License-Identifier: GPL-3.0-or-later
//
// Asks once before an activity is deleted by a key.
#pragma once

#include "classify/Resolution.h"

class QWidget;

namespace kestu {

class AppModel;

/// Over the content of `window`, which must not outlive `model`.
void askToDelete(QWidget& window, AppModel& model, const ResolvedActivity& item);

} // namespace kestu
