// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/DateTimeEntry.h"

#include "ui/controls/NamedTime.h"

#include <QDateTime>
#include <QTimeZone>

#include <algorithm>

namespace kestu {
namespace {

using Section = DateTimeEntry::Section;
using Parts = DateTimeEntry::Parts;

constexpr int firstYear = 1970;
constexpr int lastYear = 2999;
constexpr qsizetype mostDigits = 4; // of one section, or of hour and minute
constexpr int longestLeap = 1500;   // in minutes, over what the clocks of any zone leave out

int& at(Parts& parts, Section section) {
    return parts.at(static_cast<std::size_t>(section));
}

Parts partsOf(const WallTime& value) {
    return {value.date.year(), value.date.month(), value.date.day(), value.time.hour(), value.time.minute()};
}

/// None for a day that the calendar does not have.
std::optional<WallTime> valueOf(const Parts& parts) {
    const WallTime value{.date = QDate(parts[0], parts[1], parts[2]), .time = QTime(parts[3], parts[4])};
    const bool isValid =
        value.date.isValid() && value.time.isValid() && parts[0] >= firstYear && parts[0] <= lastYear;
    return isValid ? std::optional(value) : std::nullopt;
}

QDateTime dateTimeOf(const WallTime& value) {
    return {value.date, value.time, QTimeZone::utc()};
}

QString wantedIn(Section section) {
    switch (section) {
    case Section::year:
        return QStringLiteral("年は %1 から %2 までの4桁で入力してください。").arg(firstYear).arg(lastYear);
    case Section::month:
        return QStringLiteral("月は 1 から 12 で入力してください。");
    case Section::day:
        return QStringLiteral("日は 1 から 31 で入力してください。");
    case Section::hour:
    case Section::minute:
        break;
    }
    return QStringLiteral("時刻は 0:00 から 23:59 で入力してください。");
}

/// How many of the digits are the hour's, as 9|30, 13|0, 14|30 and 2|5; none where they are no time.
std::optional<qsizetype> hourDigits(const QString& digits) {
    const auto isTime = [&digits](qsizetype hours) {
        return digits.left(hours).toInt() <= 23 && digits.mid(hours).toInt() <= 59 &&
               digits.size() - hours <= 2;
    };
    const QList<qsizetype> preferred = digits.size() == 3 ? QList<qsizetype>{1, 2} : QList<qsizetype>{2, 1};
    for (const qsizetype hours : preferred) {
        if (hours <= digits.size() && isTime(hours)) {
            return hours;
        }
    }
    return digits.size() == 1 ? std::optional<qsizetype>(1) : std::nullopt;
}

/// Whether the digits are such a section, or may become one.
bool fits(Section section, const QString& digits) {
    const int number = digits.toInt();
    const bool isNumber = digits.size() < 2 || (digits.size() == 2 && number > 0);
    switch (section) {
    case Section::year:
        return digits.size() <= 4;
    case Section::month:
        return isNumber && number <= 12;
    case Section::day:
        return isNumber && number <= 31;
    case Section::hour:
        return hourDigits(digits).has_value();
    case Section::minute:
        return digits.size() <= 2 && number <= 59;
    }
    return false;
}

} // namespace

void DateTimeEntry::set(const WallTime& value) {
    hold(value);
    m_digits.clear();
    m_isEdited = false;
}

void DateTimeEntry::hold(const WallTime& value) {
    m_value = value;
    m_parts = partsOf(value);
    m_complaint.clear();
    m_isHalfTyped = false;
    m_isWrong = false;
    m_isEdited = true;
}

std::optional<Parts> DateTimeEntry::withDigits(const QString& digits) const {
    Parts parts = m_parts;
    const int number = digits.toInt();
    if (digits.isEmpty()) {
        return parts;
    }
    switch (m_section) {
    case Section::year:
        if (digits.size() != 4 && digits.size() != 2) {
            return std::nullopt;
        }
        at(parts, Section::year) = digits.size() == 2 ? 2000 + number : number;
        return number >= firstYear || digits.size() == 2 ? std::optional(parts) : std::nullopt;
    case Section::hour: {
        const qsizetype hours = hourDigits(digits).value_or(digits.size());
        at(parts, Section::hour) = digits.left(hours).toInt();
        if (digits.size() > hours) {
            at(parts, Section::minute) = digits.mid(hours).toInt();
        }
        return parts;
    }
    default:
        at(parts, m_section) = number;
        return m_section == Section::minute || number > 0 ? std::optional(parts) : std::nullopt;
    }
}

/// Whether a further digit belongs to the next section.
bool DateTimeEntry::isFull() const {
    const int number = m_digits.toInt();
    switch (m_section) {
    case Section::year:
        return m_digits.size() == 4;
    case Section::month:
        return m_digits.size() == 2 || number > 1;
    case Section::day:
        return m_digits.size() == 2 || number > 3;
    case Section::hour:
        return m_digits.size() == 4 || (m_digits.size() == 3 && !fits(Section::hour, m_digits + u'0'));
    case Section::minute:
        return m_digits.size() == 2;
    }
    return false;
}

std::optional<WallTime> DateTimeEntry::typed() const {
    const auto parts = withDigits(m_digits);
    const auto value = parts ? valueOf(*parts) : std::nullopt;
    return value && (!m_objection || m_objection(*value).isEmpty()) ? value : std::nullopt;
}

std::array<QString, 5> DateTimeEntry::shownParts() const {
    const auto number = [](int value, int width) {
        return QStringLiteral("%1").arg(value, width, 10, QLatin1Char('0'));
    };
    std::array shown{number(m_parts[0], 4), number(m_parts[1], 2), number(m_parts[2], 2),
                     number(m_parts[3], 1), number(m_parts[4], 2)};
    if (m_digits.isEmpty() || !m_isHalfTyped) {
        return shown;
    }
    QString& selected = shown.at(static_cast<std::size_t>(m_section));
    selected = m_digits;
    if (m_section == Section::hour) {
        const qsizetype hours = hourDigits(m_digits).value_or(m_digits.size());
        selected = m_digits.left(hours);
        shown[4] = m_digits.size() > hours ? m_digits.mid(hours) : shown[4];
    }
    return shown;
}

QString DateTimeEntry::text() const {
    const auto shown = shownParts();
    return shown[0] + u'/' + shown[1] + u'/' + shown[2] + u' ' + shown[3] + u':' + shown[4];
}

Section DateTimeEntry::section() const {
    const bool isInMinutes =
        m_section == Section::hour && hourDigits(m_digits).value_or(m_digits.size()) < m_digits.size();
    return isInMinutes ? Section::minute : m_section;
}

std::pair<int, int> DateTimeEntry::rangeOf(Section section) const {
    const auto shown = shownParts();
    int first = 0;
    for (std::size_t part = 0; part < static_cast<std::size_t>(section); ++part) {
        first += static_cast<int>(shown.at(part).size()) + 1;
    }
    return {first, static_cast<int>(shown.at(static_cast<std::size_t>(section)).size())};
}

Section DateTimeEntry::sectionAt(int position) const {
    for (const Section section : {Section::year, Section::month, Section::day, Section::hour}) {
        const auto [first, length] = rangeOf(section);
        if (position <= first + length) {
            return section;
        }
    }
    return Section::minute;
}

void DateTimeEntry::select(Section section) {
    if (m_isHalfTyped) {
        if (!withDigits(m_digits)) {
            complain(wantedIn(m_section));
        }
        settle(Strictness::lenient);
    } else {
        m_complaint.clear();
    }
    m_digits.clear();
    m_section = section;
    m_isHalfTyped = m_parts != partsOf(m_value);
    m_isWrong = m_isWrong && m_isHalfTyped;
}

bool DateTimeEntry::move(int sections) {
    const int wanted = static_cast<int>(section()) + sections;
    if (wanted < static_cast<int>(Section::year) || wanted > static_cast<int>(Section::minute)) {
        return false;
    }
    select(static_cast<Section>(wanted));
    return true;
}

bool DateTimeEntry::type(QChar character) {
    const QString plain = QString(character).normalized(QString::NormalizationForm_KC);
    const QChar key = plain.size() == 1 ? plain.front() : character;
    const bool wasSeparator = std::exchange(m_isAfterSeparator, false);
    if (key.isDigit()) {
        typeDigit(QChar(u'0' + key.digitValue()));
        return true;
    }
    if (!QStringLiteral(":/-.,ー年月日時分 ").contains(key)) {
        return false;
    }
    m_isAfterSeparator = true;
    if (!(wasSeparator && key == u' ')) { // "23日 14" has two of them between its sections
        typeSeparator();
    }
    return true;
}

void DateTimeEntry::typeDigit(QChar digit) {
    if (isFull()) {
        select(m_section < Section::hour ? static_cast<Section>(static_cast<int>(m_section) + 1)
                                         : Section::minute);
    }
    if (!fits(m_section, m_digits + digit)) {
        complain(wantedIn(m_section));
        return;
    }
    m_digits += digit;
    m_isHalfTyped = true;
    m_isWrong = false;
    m_complaint.clear();
    if (isFull()) {
        settle(Strictness::lenient);
    }
}

void DateTimeEntry::typeSeparator() {
    if (section() == m_section) {
        move(1);
    } else if (m_digits.size() == 2) { // as "25:"
        m_digits.clear();
        m_isHalfTyped = m_parts != partsOf(m_value);
        complain(wantedIn(Section::hour));
    }
}

void DateTimeEntry::eraseLast() {
    m_digits.chop(1);
    m_complaint.clear();
    m_isWrong = false;
    m_isHalfTyped = !m_digits.isEmpty() || m_parts != partsOf(m_value);
}

bool DateTimeEntry::settle(Strictness strictness) {
    const auto parts = withDigits(m_digits);
    const auto value = parts ? valueOf(*parts) : std::nullopt;
    QString objection = !parts ? wantedIn(m_section) : QString();
    if (parts && !value) {
        const bool isYear = (*parts)[0] < firstYear || (*parts)[0] > lastYear;
        objection = isYear ? wantedIn(Section::year)
                           : QStringLiteral("%1年%2月に%3日はありません。")
                                 .arg((*parts)[0])
                                 .arg((*parts)[1])
                                 .arg((*parts)[2]);
    } else if (value && m_objection) {
        objection = m_objection(*value);
    }
    if (objection.isEmpty()) {
        hold(*value);
        return true;
    }
    if (strictness == Strictness::strict) {
        complain(objection);
        m_isWrong = true;
    } else {
        m_parts = parts.value_or(m_parts); // what is typed next may make a time of it
    }
    return false;
}

bool DateTimeEntry::finish() {
    if (m_isHalfTyped && settle(Strictness::strict)) {
        m_digits.clear();
    }
    return !m_isWrong;
}

void DateTimeEntry::paste(const QString& text) {
    const bool isDigits =
        std::all_of(text.begin(), text.end(), [](QChar letter) { return letter.isDigit(); });
    if (isDigits && !text.isEmpty() && text.size() <= mostDigits) {
        select(section());
        for (const QChar digit : text) {
            type(digit);
        }
        return;
    }
    const auto named = namedTime(text, m_value.date.year());
    if (!named) {
        complain(QStringLiteral("日時は「2026/11/23 14:30」のように入力してください。"));
        return;
    }
    const WallTime value{.date = named->date.value_or(m_value.date),
                         .time = named->time.value_or(m_value.time)};
    const QString objection = !valueOf(partsOf(value)) ? wantedIn(Section::year)
                              : m_objection            ? m_objection(value)
                                                       : QString();
    if (!objection.isEmpty()) {
        complain(objection);
        return;
    }
    m_digits.clear();
    hold(value);
}

void DateTimeEntry::step(int steps, const WallTime& earliest) {
    select(section());
    const int direction = steps < 0 ? -1 : 1;
    const QDateTime from = dateTimeOf(m_value);
    for (int distance = steps; std::abs(distance) < std::abs(steps) + longestLeap; distance += direction) {
        const QDateTime to = m_section == Section::year    ? from.addYears(distance)
                             : m_section == Section::month ? from.addMonths(distance)
                             : m_section == Section::day   ? from.addDays(distance)
                             : m_section == Section::hour  ? from.addSecs(qint64{3600} * distance)
                                                           : from.addSecs(qint64{60} * distance);
        WallTime value{.date = to.date(), .time = to.time()};
        if (earliest.date.isValid() && from >= dateTimeOf(earliest) && to < dateTimeOf(earliest)) {
            value = earliest;
        }
        if (!valueOf(partsOf(value))) {
            return;
        }
        if (!m_objection || m_objection(value).isEmpty()) {
            hold(value);
            return;
        }
    }
}

void DateTimeEntry::setDate(QDate date) {
    select(section());
    const WallTime value{.date = date, .time = m_value.time};
    const QString objection = m_objection ? m_objection(value) : QString();
    if (objection.isEmpty()) {
        hold(value);
    } else {
        complain(objection);
    }
}

} // namespace kestu
