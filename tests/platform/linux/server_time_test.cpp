// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/ServerTime.h"

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace std::chrono_literals;

TEST(ServerTimeTest, BelievesTheServerOnlyWhenItsClockIsOurs) {
    const struct {
        const char* what;
        std::chrono::milliseconds now;
        xcb_timestamp_t serverTime;
        std::chrono::milliseconds age;
    } rows[] = {
        {"just now", 50'000ms, 50'000, 0ms},
        {"read late", 50'000ms, 49'700, 300ms},
        {"the longest", 50'000ms, 40'000, 10'000ms},
        {"too long ago", 50'000ms, 39'999, 0ms},
        {"in the future", 50'000ms, 50'001, 0ms},
        {"across an overflow", std::chrono::milliseconds(0x1'0000'0064), 0xFFFF'FFFF, 101ms},
    };
    for (const auto& row : rows) {
        const Moment now(row.now);
        EXPECT_EQ(now - momentOf(row.serverTime, now), row.age) << row.what;
    }
}

} // namespace
} // namespace kestu
