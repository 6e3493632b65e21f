// SPDX-License-Identifier: GPL-3.0-or-later
//
// Words for those who have the screen read to them, about what changes away from the focus.
#pragma once

class QString;
class QWidget;

namespace kestu {

/// Has `text` read out once, if a reader is there and the window of `source` is the one that is worked in.
void announce(QWidget& source, const QString& text);

} // namespace kestu
