// SPDX-License-Identifier: GPL-3.0-or-later
//
// What typing and pasting make of a time, without a window.
#include "ui/controls/DateTimeEntry.h"
#include "ui/controls/NamedTime.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace kestu {
namespace {

using Section = DateTimeEntry::Section;

/// A Sunday of New York; at 2:00 the clocks go to 3:00.
const WallTime before{.date = QDate(2026, 3, 8), .time = QTime(10, 55)};

DateTimeEntry entryAt(Section section) {
    DateTimeEntry entry;
    entry.set(before);
    entry.setObjection([](const WallTime& value) {
        return value.date == QDate(2026, 3, 8) && value.time.hour() == 2 ? u"gap"_s : QString();
    });
    entry.select(section);
    return entry;
}

/// Types it, where < and > move, ^ erases and | ends the typing.
void type(DateTimeEntry& entry, const QString& keys) {
    for (const QChar key : keys) {
        if (key == u'<' || key == u'>') {
            entry.move(key == u'<' ? -1 : 1);
        } else if (key == u'^') {
            entry.eraseLast();
        } else if (key == u'|') {
            entry.finish();
        } else {
            EXPECT_TRUE(entry.type(key)) << QString(key).toStdString();
        }
    }
}

TEST(DateTimeEntry, TakesWhatPeopleType) {
    struct Case {
        Section from;
        QString keys;
        QString shown;
        QString held; // the time that goes on to hold
        QString told;
        Section section;
    };
    const QString outside = u"時刻は 0:00 から 23:59 で入力してください。"_s;
    const QString month = u"月は 1 から 12 で入力してください。"_s;
    const Case cases[] = {
        // Half-typed, it holds nothing yet.
        {Section::hour, u"1"_s, u"2026/03/08 1:55"_s, u"10:55"_s, {}, Section::hour},
        {Section::hour, u"14"_s, u"2026/03/08 14:55"_s, u"10:55"_s, {}, Section::hour},
        {Section::hour, u"143"_s, u"2026/03/08 1:43"_s, u"10:55"_s, {}, Section::minute},
        {Section::hour, u"93"_s, u"2026/03/08 9:3"_s, u"10:55"_s, {}, Section::minute},
        {Section::hour, u"14^^"_s, u"2026/03/08 10:55"_s, u"10:55"_s, {}, Section::hour},
        // Full, left or ended, it holds.
        {Section::hour, u"1430"_s, u"2026/03/08 14:30"_s, u"14:30"_s, {}, Section::minute},
        {Section::hour, u"930"_s, u"2026/03/08 9:30"_s, u"9:30"_s, {}, Section::minute},
        {Section::hour, u"0930"_s, u"2026/03/08 9:30"_s, u"9:30"_s, {}, Section::minute},
        {Section::hour, u"130|"_s, u"2026/03/08 1:30"_s, u"1:30"_s, {}, Section::hour},
        {Section::hour, u"1300"_s, u"2026/03/08 13:00"_s, u"13:00"_s, {}, Section::minute},
        {Section::hour, u"1045"_s, u"2026/03/08 10:45"_s, u"10:45"_s, {}, Section::minute},
        {Section::hour, u"14:30"_s, u"2026/03/08 14:30"_s, u"14:30"_s, {}, Section::minute},
        {Section::hour, u"14>30"_s, u"2026/03/08 14:30"_s, u"14:30"_s, {}, Section::minute},
        {Section::hour, u"9:5"_s, u"2026/03/08 9:5"_s, u"9:55"_s, {}, Section::minute},
        {Section::hour, u"9:5|"_s, u"2026/03/08 9:05"_s, u"9:05"_s, {}, Section::minute},
        {Section::hour, u"14|"_s, u"2026/03/08 14:55"_s, u"14:55"_s, {}, Section::hour},
        {Section::hour, u"１４：３０"_s, u"2026/03/08 14:30"_s, u"14:30"_s, {}, Section::minute},
        {Section::minute, u"3"_s, u"2026/03/08 10:3"_s, u"10:55"_s, {}, Section::minute},
        {Section::minute, u"3040"_s, u"2026/03/08 10:40"_s, u"10:40"_s, {}, Section::minute},
        {Section::hour, u"143005"_s, u"2026/03/08 14:05"_s, u"14:05"_s, {}, Section::minute},
        {Section::year, u"2026/11/23 14:30"_s, u"2026/11/23 14:30"_s, u"14:30"_s, {}, Section::minute},
        {Section::year, u"202611231430"_s, u"2026/11/23 14:30"_s, u"14:30"_s, {}, Section::minute},
        {Section::year, u"2026年11月23日 14時30分"_s, u"2026/11/23 14:30"_s, u"14:30"_s, {}, Section::minute},
        {Section::year, u"26/"_s, u"2026/03/08 10:55"_s, u"10:55"_s, {}, Section::month},
        {Section::month, u"9"_s, u"2026/09/08 10:55"_s, u"10:55"_s, {}, Section::month},
        {Section::month, u"923"_s, u"2026/09/23 10:55"_s, u"10:55"_s, {}, Section::day},
        // What cannot be is said, and not taken.
        {Section::hour, u"25:"_s, u"2026/03/08 10:55"_s, u"10:55"_s, outside, Section::hour},
        {Section::minute, u"65"_s, u"2026/03/08 10:6"_s, u"10:55"_s, outside, Section::minute},
        {Section::month, u"13"_s, u"2026/1/08 10:55"_s, u"10:55"_s, month, Section::month},
        {Section::month, u"00"_s, u"2026/0/08 10:55"_s, u"10:55"_s, month, Section::month},
        {Section::year, u"143/"_s, u"2026/03/08 10:55"_s, u"10:55"_s,
         u"年は 1970 から 2999 までの4桁で入力してください。"_s, Section::month},
        {Section::hour, u"2:3"_s, u"2026/03/08 2:3"_s, u"10:55"_s, {}, Section::minute},
        {Section::hour, u"230|"_s, u"2026/03/08 2:30"_s, u"10:55"_s, u"gap"_s, Section::minute},
        {Section::hour, u"0230"_s, u"2026/03/08 02:30"_s, u"10:55"_s, {}, Section::minute},
        {Section::hour, u"0230|"_s, u"2026/03/08 02:30"_s, u"10:55"_s, u"gap"_s, Section::minute},
        {Section::day, u"31<2|"_s, u"2026/2/31 10:55"_s, u"10:55"_s, u"2026年2月に31日はありません。"_s,
         Section::month},
        {Section::day, u"31<2>28"_s, u"2026/02/28 10:55"_s, u"10:55"_s, {}, Section::day},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.keys.toStdString());
        DateTimeEntry entry = entryAt(each.from);
        type(entry, each.keys);
        EXPECT_EQ(entry.text().toStdString(), each.shown.toStdString());
        EXPECT_EQ(entry.value().time.toString(u"H:mm").toStdString(), each.held.toStdString());
        EXPECT_EQ(entry.complaint().toStdString(), each.told.toStdString());
        EXPECT_EQ(entry.section(), each.section);
    }
}

TEST(DateTimeEntry, IsWrongUntilItIsPutRight) {
    DateTimeEntry entry = entryAt(Section::day);
    type(entry, u"31<2"_s);
    EXPECT_FALSE(entry.isWrong()) << "the day may be typed next";
    EXPECT_FALSE(entry.finish());
    EXPECT_TRUE(entry.isWrong());
    EXPECT_FALSE(entry.finish());
    entry.select(Section::day);
    EXPECT_TRUE(entry.isWrong());
    type(entry, u"15"_s);
    EXPECT_FALSE(entry.isWrong());
    EXPECT_TRUE(entry.finish());
    EXPECT_EQ(entry.value().date, QDate(2026, 2, 15));
    EXPECT_TRUE(entry.takeEdited());
    EXPECT_FALSE(entry.takeEdited());
}

TEST(DateTimeEntry, StepsOnAndOverWhatIsLeftOut) {
    struct Case {
        Section section;
        QString from;
        int steps;
        QString to;
    };
    const Case cases[] = {
        {Section::minute, u"10:59"_s, 1, u"2026/03/08 11:00"_s},
        {Section::hour, u"23:10"_s, 1, u"2026/03/09 0:10"_s},
        {Section::day, u"10:00"_s, -8, u"2026/02/28 10:00"_s},
        {Section::hour, u"1:30"_s, 1, u"2026/03/08 3:30"_s},
        {Section::minute, u"1:59"_s, 1, u"2026/03/08 3:00"_s},
        {Section::minute, u"3:00"_s, -1, u"2026/03/08 1:59"_s},
        {Section::year, u"10:00"_s, -100, u"2026/03/08 10:00"_s},
        {Section::hour, u"1:30"_s, -1, u"2026/03/08 0:45"_s},
    };
    const WallTime earliest{.date = QDate(2026, 3, 8), .time = QTime(0, 45)};
    for (const Case& each : cases) {
        DateTimeEntry entry = entryAt(each.section);
        entry.set({.date = before.date, .time = QTime::fromString(each.from, u"H:mm"_s)});
        entry.step(each.steps, each.section == Section::hour ? earliest : WallTime{});
        EXPECT_EQ(entry.text().toStdString(), each.to.toStdString());
    }
}

TEST(DateTimeEntry, UnderstandsPastedTimesAndLeavesTheRestAlone) {
    const QDate day(2026, 11, 23);
    const std::pair<QString, NamedTime> understood[] = {
        {u"2026/11/23 14:30"_s, {day, QTime(14, 30)}},
        {u" 2026-11-23T14:30:59.123\n"_s, {day, QTime(14, 30)}},
        {u"2026.11.23"_s, {day, {}}},
        {u"20261123 1430"_s, {day, QTime(14, 30)}},
        {u"11/23 9:30"_s, {day, QTime(9, 30)}},
        {u"2026年11月23日（月）14時30分"_s, {day, QTime(14, 30)}},
        {u"11月23日 月曜日 午後2時半"_s, {day, QTime(14, 30)}},
        {u"２０２６／１１／２３　１４：３０"_s, {day, QTime(14, 30)}},
        {u"14時30分"_s, {{}, QTime(14, 30)}},
        {u"午後2時30分"_s, {{}, QTime(14, 30)}},
        {u"午前0時"_s, {{}, QTime(0, 0)}},
        {u"2:30 PM"_s, {{}, QTime(14, 30)}},
        {u"12:05 am"_s, {{}, QTime(0, 5)}},
        {u"9時"_s, {{}, QTime(9, 0)}},
        {u"2 pm"_s, {{}, QTime(14, 0)}},
        {u"930"_s, {{}, QTime(9, 30)}},
    };
    for (const auto& [text, named] : understood) {
        EXPECT_EQ(namedTime(text, 2026), named) << text.toStdString();
    }
    const QString refused[] = {u""_s,
                               u" "_s,
                               u"🕝"_s,
                               u"14:30🕝"_s,
                               u"明日"_s,
                               u"3.14"_s,
                               u"2026/11/23 9"_s,
                               u"24:00"_s,
                               u"14:60"_s,
                               u"午後14時"_s,
                               u"2026/02/30"_s,
                               u"2026/13/01 9:00"_s,
                               u"11/23/2026"_s,
                               u"2026-11-23T14:30Z"_s,
                               u"2026-11-23T14:30+09:00"_s,
                               u"2026/11/2314:30"_s,
                               u"14:30〜15:00"_s,
                               u"-1:30"_s,
                               QString(10'000, u'1'),
                               QString(10'000, u' ') + u"x"_s,
                               u"2026/11/23 "_s.repeated(1'000)};
    for (const QString& text : refused) {
        DateTimeEntry entry = entryAt(Section::hour);
        entry.paste(text);
        EXPECT_EQ(entry.text(), u"2026/03/08 10:55"_s) << text.left(40).toStdString();
        EXPECT_EQ(entry.complaint(), u"日時は「2026/11/23 14:30」のように入力してください。"_s);
        EXPECT_FALSE(entry.isWrong());
        EXPECT_FALSE(entry.takeEdited());
        entry.select(Section::minute);
        EXPECT_EQ(entry.complaint(), QString());
    }
    DateTimeEntry entry = entryAt(Section::minute);
    entry.paste(u"３０"_s);
    EXPECT_EQ(entry.text(), u"2026/03/08 10:30"_s) << "digits are as typed";
    entry.set(before);
    entry.paste(u"2:30"_s);
    EXPECT_EQ(entry.value(), before);
    EXPECT_EQ(entry.complaint(), u"gap"_s);
    entry.paste(u"1/31 9:05"_s);
    EXPECT_EQ(entry.text(), u"2026/01/31 9:05"_s);
    EXPECT_EQ(entry.complaint(), QString());
}

} // namespace
} // namespace kestu
