// SPDX-License-Identifier: GPL-3.0-or-later
//
// How names and notes are cleaned and compared. Blank characters are the tab and every Unicode space
// separator (the ideographic space among them); white space is these and the line breaks.
#pragma once

#include <QString>

namespace kestu {

/// `text` without leading and trailing blank characters; line breaks stay.
[[nodiscard]] QString trimmedBlanks(const QString& text);

/// `text` without leading and trailing blank characters and line breaks.
[[nodiscard]] QString trimmedWhiteSpace(const QString& text);

/// What makes two category names the same: trimmed of blank characters and lower-cased.
[[nodiscard]] QString matchingKey(const QString& name);

/// A number with as many digits as it needs, and at least one behind the point: "3000.0".
[[nodiscard]] QString decimalText(double number);

/// `text` as comparisons see it: lower-cased by Unicode's rules, whatever the locale, and composed, so that
/// canonically equivalent texts are equal.
[[nodiscard]] QString foldedText(const QString& text);

} // namespace kestu
