// SPDX-License-Identifier: GPL-3.0-or-later
//
// What follows the text of a link in a note: "(address)" or "(address "title")", and an address between angle
// brackets. Internal to NoteText.
#pragma once

#include <QString>

#include <optional>

namespace kestu {

/// Part of a note that was recognised.
struct NoteAddress {
    QString address;
    qsizetype end; // behind it
};

[[nodiscard]] bool isAsciiPunctuation(QChar sign);

/// The parenthesis that begins at `at`.
[[nodiscard]] std::optional<NoteAddress> linkTarget(QStringView text, qsizetype at);

/// "<https://example.com>" that begins at `at`.
[[nodiscard]] std::optional<NoteAddress> bracketedAddress(QStringView text, qsizetype at);

} // namespace kestu
