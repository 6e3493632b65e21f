// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ReportExport.h"

#include "base/AtomicFile.h"

namespace kestu {

QString extensionOf(ReportFormat format) {
    return format == ReportFormat::csv ? QStringLiteral("csv") : QStringLiteral("md");
}

QString textOf(const ReportBuilder& report, ReportFormat format) {
    return format == ReportFormat::csv ? report.csv() : report.markdown();
}

std::optional<QString> saveReport(const QString& path, const QString& text) {
    const auto reason = replaceFile(path, text.toUtf8());
    return reason ? std::optional(QStringLiteral("保存できませんでした：") + *reason) : std::nullopt;
}

} // namespace kestu
