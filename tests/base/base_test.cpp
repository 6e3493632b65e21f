// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Calendar.h"
#include "base/Text.h"

#include <gtest/gtest.h>

#include <limits>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

TEST(DayKey, NamesTheLocalDayInEveryZoneAndForEveryInstant) {
    const Calendar tokyo{.zone = QTimeZone("Asia/Tokyo")};
    const Calendar berlin{.zone = QTimeZone("Europe/Berlin")};
    const struct {
        double epoch;
        const Calendar& calendar;
        const char* key;
    } rows[] = {
        {1772636400.0, tokyo, "2026-03-05"},    // midnight in Tokyo
        {1772636399.9995, tokyo, "2026-03-04"}, // half a millisecond before
        {1772636400.0, berlin, "2026-03-04"},
        {1774745999.0, berlin, "2026-03-29"}, // inside the hour before the clock goes forward
        {1774821600.0, berlin, "2026-03-30"}, // midnight after a day of 23 hours
        {1792969199.0, berlin, "2026-10-25"}, // last second of a day of 25 hours
        {-0.25, tokyo, "1970-01-01"},
        {std::numeric_limits<double>::quiet_NaN(), tokyo, "0000-00-00"},
        {std::numeric_limits<double>::infinity(), tokyo, "0000-00-00"},
        {1e300, tokyo, "0000-00-00"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(dayKey(instantAt(row.epoch), row.calendar).toStdString(), row.key) << row.epoch;
    }
}

TEST(MatchingKey, IgnoresCaseAndSurroundingBlanksButNotLineBreaks) {
    EXPECT_EQ(matchingKey(u"\t\u3000\u00a0Kestu  開発 \u2003"_s), u"kestu  開発"_s);
    EXPECT_NE(matchingKey(u"kestu\n"_s), matchingKey(u"kestu"_s));
    EXPECT_EQ(matchingKey(u" \u3000"_s), QString());
}

TEST(WhiteSpace, IsBlanksTogetherWithLineBreaks) {
    EXPECT_EQ(trimmedWhiteSpace(u"\r\n\u3000 会議\nメモ\u2028\t\n"_s), u"会議\nメモ"_s);
    EXPECT_EQ(trimmedWhiteSpace(u" \n\u3000\r"_s), QString());
}

} // namespace
} // namespace kestu
