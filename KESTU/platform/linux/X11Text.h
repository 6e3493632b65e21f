// SPDX-License-Identifier: GPL-3.0-or-later
//
// The text encodings of X window properties, as text.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace kestu {

enum class X11Encoding { utf8, latin1, compoundText };

/// The text of a property's first element (a NUL separates elements). Bytes that are no UTF-8 become
/// replacement characters; compound text in a character set that is not known here is absent.
[[nodiscard]] std::optional<QString> decodedX11Text(const QByteArray& bytes, X11Encoding encoding);

} // namespace kestu
