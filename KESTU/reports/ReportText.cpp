// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/ReportText.h"

#include <array>
#include <charconv>
#include <limits>

namespace kestu {
namespace {

QString twoDigits(int number) {
    const std::array digits{QChar(u'0' + number / 10), QChar(u'0' + number % 10)};
    return QString(digits.data(), digits.size());
}

} // namespace

QString fixedText(double number, int digits) {
    // Every digit of the greatest double, a sign, a point and as many digits again as anybody asks for.
    std::array<char, std::numeric_limits<double>::max_exponent10 + 16> text{};
    const auto written = std::to_chars(text.begin(), text.end(), number, std::chars_format::fixed, digits);
    return QString::fromLatin1(text.data(), written.ptr - text.data());
}

ReportText::ReportText(const ReportBuilder& report)
    : m_clock(report.calendar) {
    for (const Project& project : report.projects) {
        m_projectNames.insert(project.id, project.name);
    }
    for (const Tag& tag : report.tags) {
        m_tagNames.insert(tag.id, tag.name);
    }
}

QString ReportText::date(Instant instant) {
    constexpr QStringView weekdays = u"月火水木金土日";
    const QDate date = local(instant).date;
    return QStringLiteral("%1/%2/%3(%4)")
        .arg(QString::number(date.year()), twoDigits(date.month()), twoDigits(date.day()),
             QString(weekdays[date.dayOfWeek() - 1]));
}

QString ReportText::isoDate(Instant instant) {
    return local(instant).date.toString(Qt::ISODate);
}

QString ReportText::clock(Instant instant) {
    const int minutes = local(instant).secondOfDay / 60;
    return twoDigits(minutes / 60) + u':' + twoDigits(minutes % 60);
}

QString ReportText::projectName(const std::optional<ProjectId>& id) const {
    const QString unassigned = QStringLiteral("未分類");
    return id ? m_projectNames.value(*id, unassigned) : unassigned;
}

QString ReportText::tagName(TagId id) const {
    return m_tagNames.value(id, QStringLiteral("（削除済みのタグ）"));
}

LocalClock::LocalTime ReportText::local(Instant instant) {
    return m_clock.at(instant).value_or(LocalClock::LocalTime{.date = QDate(1970, 1, 1), .secondOfDay = 0});
}

} // namespace kestu
