// SPDX-License-Identifier: GPL-3.0-or-later
//
// How the self-painted buttons report themselves to assistive technology. Internal to the controls.
#pragma once

namespace kestu {

/// To be called when the first button is made.
void installButtonAccess();

} // namespace kestu
