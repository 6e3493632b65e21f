// SPDX-License-Identifier: GPL-3.0-or-later
//
// Writing a file so that it is there whole or not at all.
#pragma once

#include <QByteArray>
#include <QFileDevice>
#include <QString>

#include <optional>

namespace kestu {

/// Puts a file with `contents` in the place of whatever is at `path`; a new one gets `permissions`, or what
/// the process gives its files. The system's reason when that fails; the old file is then as it was.
[[nodiscard]] std::optional<QString>
replaceFile(const QString& path, const QByteArray& contents,
            std::optional<QFileDevice::Permissions> permissions = std::nullopt);

} // namespace kestu
