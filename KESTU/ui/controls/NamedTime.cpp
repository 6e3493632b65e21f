// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/NamedTime.h"

#include <QRegularExpression>

namespace kestu {
namespace {

constexpr qsizetype longestName = 60; // of a time, in letters

std::optional<QDate> dateIn(const QRegularExpressionMatch& match, int year) {
    const auto number = [&match](const char* name) {
        return match.captured(QString::fromLatin1(name)).toInt();
    };
    if (const QString compact = match.captured(QStringLiteral("compactDate")); !compact.isEmpty()) {
        return QDate::fromString(compact, QStringLiteral("yyyyMMdd"));
    }
    return number("year") > 0 ? QDate(number("year"), number("month"), number("day"))
                              : QDate(year, number("monthAlone"), number("dayAlone"));
}

QTime timeIn(const QRegularExpressionMatch& match) {
    const auto part = [&match](const char* name) { return match.captured(QString::fromLatin1(name)); };
    if (const QString compact = part("compactTime"); !compact.isEmpty()) {
        return {compact.chopped(2).toInt(), compact.right(2).toInt()};
    }
    int hour = part("hour").toInt();
    const int minute = part("half").isEmpty() ? part("minute").toInt() + part("spelt").toInt() : 30;
    const QString half = (part("before") + part("after")).toLower();
    if (!half.isEmpty()) {
        const bool isMorning = half == QStringLiteral("am") || half == QStringLiteral("午前");
        if (hour > 12) {
            return {};
        }
        hour = hour % 12 + (isMorning ? 0 : 12);
    }
    return {hour, minute};
}

const QRegularExpression& timeNames() {
    static const QRegularExpression pattern(
        QStringLiteral("^(?<date>(?:(?<year>\\d{4})[年/.-](?<month>\\d{1,2})[月/.-](?<day>\\d{1,2})日?"
                       "|(?<monthAlone>\\d{1,2})[月/](?<dayAlone>\\d{1,2})日?|(?<compactDate>\\d{8}))"
                       "(?:\\s*\\([日月火水木金土]\\)|\\s*[日月火水木金土]曜日?)?(?:$|[\\s,T]+|(?<!\\d)))?"
                       "(?<time>(?!\\d{1,2}$)(?:(?<before>午前|午後|am|pm)\\s*)?(?<hour>\\d{1,2})"
                       "(?::(?<minute>\\d{2})(?::\\d{2}(?:\\.\\d+)?)?|時(?:(?<spelt>\\d{1,2})分(?:\\d{1,2}秒)"
                       "?|(?<half>半))?)?"
                       "(?:\\s*(?<after>am|pm))?|(?<compactTime>\\d{3,4}))?$"),
        QRegularExpression::CaseInsensitiveOption);
    return pattern;
}

} // namespace

std::optional<NamedTime> namedTime(const QString& text, int year) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || trimmed.size() > longestName) {
        return std::nullopt;
    }
    const auto match = timeNames().match(trimmed.normalized(QString::NormalizationForm_KC));
    NamedTime named;
    if (!match.captured(QStringLiteral("date")).isEmpty()) {
        named.date = dateIn(match, year);
    }
    if (!match.captured(QStringLiteral("time")).isEmpty()) {
        named.time = timeIn(match);
    }
    const bool isNamed = (named.date || named.time) && (!named.date || named.date->isValid()) &&
                         (!named.time || named.time->isValid());
    return isNamed ? std::optional(named) : std::nullopt;
}

} // namespace kestu
