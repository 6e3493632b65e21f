// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the model reads from the store, and when: each second once, nothing missed, a month not too often.
#include "app/AppModelTest.h"

#include <cmath>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::AppModelTest;
using test::utc;
using test::waitUntil;

TEST_F(AppModelTest, CountsTimeUnderAnEntryOnceInEveryReading) {
    const ActivityId id = record("2026-03-04T02:00:00", "2026-03-04T03:00:00", u"a.txt"_s);
    store.execute(u"INSERT INTO activity (start, end, bundle_id, app_name, title, is_manual) "
                  "SELECT start + 1200, end - 1200, 'kestu.manual', '手動', '会議', 1 FROM activity"_s);
    suggest(u"a.txt"_s);
    open();
    const Instant start = utc("2026-03-04T02:00:00");
    const auto all = [&](const std::vector<ResolvedActivity>& items) {
        std::string times;
        for (const ResolvedActivity& item : items) {
            times += std::to_string(item.activity.id) + ": " +
                     std::to_string(std::lround((item.activity.start - start).count())) + " to " +
                     std::to_string(std::lround((item.activity.end - start).count())) + '\n';
        }
        return times;
    };
    const auto figures = [&] {
        const double total = model->todayTotal();
        model->shiftDay(-1);
        EXPECT_EQ(model->todayTotal(), total) << "also when another day is shown";
        model->goToToday();
        EXPECT_EQ(all(model->dayItems()), all(model->loadItems({.start = start, .end = start + 24h})));
        return std::array{total, model->suggestionImpacts()[1], model->automaticOverlap(start, start + 1h)};
    };
    EXPECT_EQ(all(model->dayItems()), "1: 0 to 1200\n2: 1200 to 2400\n1: 2400 to 3600\n");
    EXPECT_EQ(figures(), (std::array{3600.0, 2400.0, 2400.0}));
    ManualDraft correction;
    correction.editingId = 2;
    model->setManualDraft(correction);
    EXPECT_EQ(model->automaticOverlap(start, start + 1h), 3600) << "a correction replaces what it covered";
    model->setManualDraft(std::nullopt);
    EXPECT_EQ(model->automaticOverlap(start + 25min, start + 35min), 0);
    model->deleteActivity(2);
    EXPECT_EQ(figures(), (std::array{3600.0, 3600.0, 3600.0}));
    EXPECT_EQ(all(model->dayItems()), "1: 0 to 3600\n");

    model->deleteActivity(id);
    model->start();
    workFor(8);
    ManualDraft draft;
    draft.start = clock.now - 4s;
    draft.end = clock.now + 16s;
    model->saveManualDraft(draft);
    workFor(6);
    workFor(6);
    EXPECT_EQ(model->todayTotal(), 4 + 20) << "the entry reaches further";
    workFor(6);
    workFor(6);
    EXPECT_EQ(model->todayTotal(), 4 + 20 + 8);
    model->deleteActivity(*model->selectedActivityId());
    EXPECT_EQ(model->todayTotal(), 4 + 24) << "only what was there when it was saved is gone";
}

TEST_F(AppModelTest, MissesNothingThatIsWrittenWhileItLoads) {
    onLook = [this] { store.execute(u"INSERT INTO project (name, color) VALUES ('P', '')"_s); };
    open(5ms);
    onLook = [] {};
    const std::size_t written = store->projects().size();
    EXPECT_TRUE(waitUntil([&] { return model->projects().size() == written; }))
        << model->projects().size() << " of " << written;
}

TEST_F(AppModelTest, TriesAgainAtTheNextWatchWhatCouldNotBeRead) {
    record("2026-03-04T02:00:00", "2026-03-04T03:00:00", u"abc"_s);
    open(5ms);
    for (const QString& table : {u"project"_s, u"daily_note"_s, u"activity"_s}) {
        hide(table);
        store.execute(u"INSERT INTO project (name, color) VALUES ('P', '');"
                      "UPDATE activity SET end = end + 60;"_s);
        suggest(u"abc"_s);
        const std::size_t count = store->projects().size();
        ASSERT_TRUE(waitUntil([this] { return model->errorMessage().has_value(); })) << table.toStdString();
        model->clearErrorMessage();
        watchOn();
        EXPECT_EQ(told(), "") << "once";
        uncover(table);
        EXPECT_TRUE(waitUntil([&] {
            const double total = 3600 + 60.0 * static_cast<double>(count);
            return model->projects().size() == count && model->suggestions().size() == count &&
                   model->todayTotal() == total && model->suggestionImpacts().value(1) == total;
        })) << table.toStdString()
            << " " << model->todayTotal();
    }
    hide(u"activity"_s);
    EXPECT_TRUE(model->loadItems({.start = clock.now - 24h, .end = clock.now}).empty());
    uncover(u"activity"_s);
    const auto revision = model->revision();
    EXPECT_TRUE(waitUntil([&] { return model->revision() > revision; })) << "reports read on it";
    const auto last = model->revision();
    watchOn();
    EXPECT_EQ(model->revision(), last);
}

TEST_F(AppModelTest, RenewsImpactsAMinuteAfterWhatWasRecordedChanged) {
    suggest(u"a.txt"_s);
    open(5ms).start();
    const auto impact = [this] { return model->suggestionImpacts().value(1); };
    for (int seconds = 0; seconds < 54; seconds += 6) {
        workFor(6);
    }
    watchOn();
    EXPECT_EQ(impact(), 0) << "a month is not read for every tick";
    workFor(6);
    EXPECT_TRUE(waitUntil([&] { return impact() == 60; })) << impact();
    for (int seconds = 0; seconds < 54; seconds += 6) {
        workFor(6);
    }
    watchOn();
    EXPECT_EQ(impact(), 60);
    clock.now -= 56s; // set back to before the last reading
    EXPECT_TRUE(waitUntil([&] { return impact() > 60; }));
    clock.now += 56s;

    model->stop();
    clock.now += 2min;
    watchOn();
    hide(u"activity"_s);
    clock.now += 2min;
    watchOn();
    EXPECT_GT(impact(), 0) << "nothing is read while nothing is recorded";
    uncover(u"activity"_s);
    EXPECT_EQ(told(), "");
}

} // namespace
} // namespace kestu
