// SPDX-License-Identifier: GPL-3.0-or-later
#include "capture/Sessionizer.h"

#include <gtest/gtest.h>

#include <limits>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using Events = Sessionizer::Events;
using Started = Sessionizer::Started;
using Moved = Sessionizer::Moved;
using Closed = Sessionizer::Closed;

const Sample editor{u"editor"_s, u"Editor"_s, u"a.txt"_s, std::nullopt};

TEST(Sessionizer, ExtendsAnEqualSampleAndSplitsAtEveryOtherObservation) {
    const Sample otherTitle{editor.bundleId, editor.appName, u"b.txt"_s, std::nullopt};
    const Sample withUrl{editor.bundleId, editor.appName, editor.title, u"https://example.jp/"_s};
    const struct {
        const char* name;
        Sample next;
        double at;
        Events events;
    } rows[] = {
        {"same at the very gap", editor, 110, {Moved{instantAt(110)}}},
        {"same after too long", editor, 110.5, {Closed{}, Started{editor, instantAt(110.5)}}},
        {"title", otherTitle, 110, {Moved{instantAt(110)}, Closed{}, Started{otherTitle, instantAt(110)}}},
        {"address", withUrl, 102, {Moved{instantAt(102)}, Closed{}, Started{withUrl, instantAt(102)}}},
        {"other after too long", otherTitle, 111, {Closed{}, Started{otherTitle, instantAt(111)}}},
    };
    for (const auto& row : rows) {
        Sessionizer sessionizer;
        ASSERT_EQ(sessionizer.feed(editor, instantAt(100)), (Events{Started{editor, instantAt(100)}}));
        EXPECT_EQ(sessionizer.feed(row.next, instantAt(row.at)), row.events) << row.name;
        EXPECT_EQ(sessionizer.openSample, row.next) << row.name;
        EXPECT_EQ(sessionizer.openEnd, instantAt(row.at)) << row.name;
    }
    Sessionizer sessionizer;
    (void)sessionizer.feed(editor, instantAt(100));
    EXPECT_EQ(sessionizer.feed(editor, instantAt(std::numeric_limits<double>::quiet_NaN())).size(), 2U)
        << "no number is no small gap";
}

TEST(Sessionizer, ClosesBackToTheLastInputButNeverBeforeTheStart) {
    for (const auto& [at, end] : {std::pair{90.0, 100.0}, {101.0, 101.0}, {104.0, 104.0}, {500.0, 500.0}}) {
        Sessionizer sessionizer;
        EXPECT_EQ(sessionizer.close(instantAt(at)), Events{});
        for (const double time : {100.0, 102.0, 104.0}) {
            (void)sessionizer.feed(editor, instantAt(time));
        }
        EXPECT_EQ(sessionizer.close(instantAt(at)), (Events{Moved{instantAt(end)}, Closed{}}));
        EXPECT_EQ(sessionizer.feed(editor, instantAt(105)), (Events{Started{editor, instantAt(105)}}));
    }
}

} // namespace
} // namespace kestu
