// SPDX-License-Identifier: GPL-3.0-or-later
//
// The forms in which both reports write times and names. Made once for each report.
#pragma once

#include "base/LocalClock.h"
#include "reports/ReportBuilder.h"

#include <QHash>
#include <QString>

#include <optional>

namespace kestu {

/// `number` with so many digits behind the point, in every locale as printf writes it in C: the exact value
/// is rounded, and a tie goes to the even digit (QString::number rounds ties up).
[[nodiscard]] QString fixedText(double number, int digits);

class ReportText final {
public:
    /// `report` outlives this.
    explicit ReportText(const ReportBuilder& report);

    /// "2026/11/16(月)"; as Japanese writes it, whatever the process's locale.
    [[nodiscard]] QString date(Instant instant);

    /// "2026-11-16".
    [[nodiscard]] QString isoDate(Instant instant);

    /// "09:05".
    [[nodiscard]] QString clock(Instant instant);

    [[nodiscard]] QString projectName(const std::optional<ProjectId>& id) const;
    [[nodiscard]] QString tagName(TagId id) const;

    [[nodiscard]] LocalClock& localClock() { return m_clock; }

private:
    [[nodiscard]] LocalClock::LocalTime local(Instant instant);

    LocalClock m_clock;
    QHash<ProjectId, QString> m_projectNames;
    QHash<TagId, QString> m_tagNames;
};

} // namespace kestu
