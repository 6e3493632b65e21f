// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/RecordingHold.h"

#include <gtest/gtest.h>

#include <vector>

namespace kestu {

namespace {

struct Change {
    HoldReason reason;
    bool begins;
    SystemSignal told;
};

struct Story {
    const char* name;
    std::vector<Change> changes;
    bool heldAtTheEnd;
};

using Told = SystemEvents;
constexpr auto asleep = HoldReason::asleep;
constexpr auto displays = HoldReason::displaysAsleep;
constexpr auto locked = HoldReason::locked;

const std::vector<Story> stories{
    {"nothing", {}, false},
    {"each reason has its own pair of signals",
     {{asleep, true, &Told::willSleep},
      {asleep, false, &Told::didWake},
      {displays, true, &Told::screensDidSleep},
      {displays, false, &Told::screensDidWake},
      {locked, true, &Told::screenLocked},
      {locked, false, &Told::screenUnlocked}},
     false},
    {"the same state again is no event",
     {{locked, false, nullptr}, {locked, true, &Told::screenLocked}, {locked, true, nullptr}},
     true},
    {"a machine that wakes behind its locker stays held until the unlock",
     {{locked, true, &Told::screenLocked},
      {asleep, true, &Told::willSleep},
      {asleep, false, nullptr},
      {asleep, false, nullptr},
      {locked, false, &Told::screenUnlocked}},
     false},
    {"whichever reason ends last is the one that is told",
     {{displays, true, &Told::screensDidSleep},
      {asleep, true, &Told::willSleep},
      {locked, true, &Told::screenLocked},
      {locked, false, nullptr},
      {displays, false, nullptr},
      {displays, true, &Told::screensDidSleep},
      {asleep, false, nullptr}},
     true},
};

} // namespace

TEST(RecordingHold, TellsEveryBeginOnceAndOnlyTheLastEnd) {
    for (const Story& story : stories) {
        RecordingHold hold;
        int step = 0;
        for (const Change& change : story.changes) {
            const SystemSignal told = change.begins ? hold.begin(change.reason) : hold.end(change.reason);
            EXPECT_TRUE(told == change.told) << story.name << ", step " << step;
            ++step;
        }
        EXPECT_EQ(hold.isHeld(), story.heldAtTheEnd) << story.name;
    }
}

} // namespace kestu
