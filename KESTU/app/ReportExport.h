// SPDX-License-Identifier: GPL-3.0-or-later
//
// How a finished report leaves the application: the two formats, and writing one of them to a file. Shared by
// the command line and the report screen.
#pragma once

#include "reports/ReportBuilder.h"

#include <QString>

#include <optional>

namespace kestu {

enum class ReportFormat { markdown, csv };

/// "md" and "csv".
[[nodiscard]] QString extensionOf(ReportFormat format);

[[nodiscard]] QString textOf(const ReportBuilder& report, ReportFormat format);

/// Writes the text whole or not at all; what to tell the user when that fails.
[[nodiscard]] std::optional<QString> saveReport(const QString& path, const QString& text);

} // namespace kestu
