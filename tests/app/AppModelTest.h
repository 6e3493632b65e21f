// SPDX-License-Identifier: GPL-3.0-or-later
//
// A model on a desktop of the test's, and a second connection that plays the other process.
#pragma once

#include "app/AppModel.h"
#include "support/FakePlatform.h"
#include "support/PrivateBus.h"
#include "support/TemporaryStore.h"

#include <gtest/gtest.h>

namespace kestu::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

inline Instant utc(const char* text) {
    const QDateTime time = QDateTime::fromString(QString::fromUtf8(text) + u'Z', Qt::ISODate);
    return instantAt(static_cast<double>(time.toSecsSinceEpoch()));
}

class AppModelTest : public testing::Test {
protected:
    AppModelTest() {
        clock.now = utc("2026-03-04T05:00:00"); // 14:00 in Tokyo
        platform.fakeWorkspace.front = {u"editor"_s, u"App"_s, 1};
        platform.fakeWorkspace.title = u"a.txt"_s;
    }

    AppModel& open(std::chrono::milliseconds watchInterval = 1h, const QString& screen = {}) {
        auto opened = store.open();
        own = &opened->database();
        model = std::make_unique<AppModel>(std::move(opened), platform,
                                           AppModel::Environment{.clock = clock.clock(),
                                                                 .calendar =
                                                                     [this] {
                                                                         onLook();
                                                                         return calendar;
                                                                     },
                                                                 .screen = screen,
                                                                 .watchInterval = watchInterval});
        return *model;
    }

    void workFor(double seconds) {
        clock.now += Seconds{seconds};
        Q_EMIT platform.events.applicationActivated();
    }

    /// An activity of ours, from one time to another, in UTC.
    ActivityId record(const char* from, const char* to, const QString& title = {}) const {
        const ActivityId id = store->insertActivity(
            {.bundleId = u"editor"_s, .appName = u"App"_s, .title = title, .url = {}}, utc(from));
        store->extendActivity(id, utc(to));
        return id;
    }

    /// What the user is told, which takes it away.
    [[nodiscard]] std::string told() const {
        std::string text = model->errorMessage().value_or(QString()).toStdString();
        model->clearErrorMessage();
        return text;
    }

    [[nodiscard]] std::string rows() const {
        return store.dump(u"SELECT title || ' ' || CAST(end - start AS INTEGER) FROM activity ORDER BY id"_s);
    }

    /// Lets the model's own connection fail to read a table. Nobody else sees it, and no file changes.
    void hide(const QString& table) const {
        own->executeScript(u"CREATE TEMP VIEW %1 AS SELECT 1 AS id"_s.arg(table));
    }
    void uncover(const QString& table) const { own->executeScript(u"DROP VIEW temp.%1"_s.arg(table)); }

    /// Lets the watch look a few times more.
    void watchOn() {
        int looks = 0;
        onLook = [&looks] { ++looks; };
        EXPECT_TRUE(waitUntil([&looks] { return looks > 20; }));
        onLook = [] {};
    }

    void suggest(const QString& value) const {
        store.execute(u"INSERT INTO rule_suggestion (target_kind, target_name, field, op, value, reason, "
                      "created_at) VALUES ('project', 'P', 'title', 'contains', '%1', '', 0)"_s.arg(value));
    }

    TemporaryStore store;
    FakeClock clock;
    FakePlatform platform;
    Calendar calendar{.zone = QTimeZone("Asia/Tokyo"), .firstWeekday = Qt::Sunday};
    std::function<void()> onLook = [] {}; // whenever the model asks for the calendar
    std::unique_ptr<AppModel> model;
    Database* own = nullptr; // the model's connection
};

} // namespace kestu::test
