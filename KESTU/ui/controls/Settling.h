// SPDX-License-Identifier: GPL-3.0-or-later
//
// Left to events, each level of nested layouts waits for the one within it, and what was changed is painted
// squeezed for a moment before it finds its place.
#pragma once

class QWidget;

namespace kestu {

/// Lays out everything in `widget` at once, from the inside out.
void settle(QWidget& widget);

} // namespace kestu
