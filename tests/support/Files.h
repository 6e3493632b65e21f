// SPDX-License-Identifier: GPL-3.0-or-later
//
// Files as tests put them down and look at them.
#pragma once

#include <QByteArray>
#include <QString>

namespace kestu::test {

/// Writes the file anew, with the folders that it needs.
void putFile(const QString& path, const QByteArray& contents);

/// The file's contents; empty when it cannot be read.
[[nodiscard]] QByteArray contentsOf(const QString& path);

} // namespace kestu::test
