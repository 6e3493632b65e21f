// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TemporaryStore.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::failureOf;
using testing::Test;

const Sample browsing{u"org.browser"_s, u"ブラウザ"_s, u"会議のメモ"_s, u"https://www.example.jp/memo"_s};

ManualEntry entryFrom(double start, double end, const QSet<TagId>& tagIds = {}) {
    return {instantAt(start), instantAt(end), u"会議"_s, {}, tagIds};
}

class Activities : public Test {
protected:
    ActivityId record(double start, double end, const Sample& sample = browsing) {
        const ActivityId id = store->insertActivity(sample, instantAt(start));
        store->extendActivity(id, instantAt(end));
        return id;
    }

    /// All activities as "id|start|end|is_manual".
    [[nodiscard]] std::string intervals() const {
        return store.dump(u"SELECT id, CAST(start AS INTEGER), CAST(end AS INTEGER), is_manual "
                          "FROM activity ORDER BY start, id"_s,
                          4);
    }

    test::TemporaryStore store;
};

TEST_F(Activities, ReadBackWhatWasObservedAndAssigned) {
    const auto firstRead = [&] { return store->activitiesOverlapping(instantAt(0), instantAt(25)).at(0); };
    const ProjectId project = store->insertCategory(CategoryKind::project, u"p"_s, {});
    store.execute(u"INSERT INTO tag (id, name, color) VALUES (3, 'a', ''), (11, 'b', ''), (12, 'c', '')"_s);
    const ActivityId id = record(10, 20);
    const ActivityId other = record(30, 40, {});
    constexpr ActivityId gone = 999;
    store->setProject(std::array{id, gone}, project);
    for (const TagId tagId : {3, 11, 12}) {
        store->setTag(std::array{id, other}, tagId, Repository::TagState::on);
    }
    store->setTag(std::array{id, id, gone}, 3, Repository::TagState::off);
    store->setTag(std::array{id, id}, 3, Repository::TagState::on);
    store->setTag(std::array{id}, 12, Repository::TagState::off);

    EXPECT_EQ(firstRead(), (Activity{id,
                                     instantAt(10),
                                     instantAt(20),
                                     browsing.bundleId,
                                     browsing.appName,
                                     browsing.title,
                                     browsing.url,
                                     u"example.jp"_s,
                                     project,
                                     false,
                                     {3, 11}}));
    store->setProject(std::array{id}, std::nullopt);
    EXPECT_FALSE(firstRead().projectId);
    store->deleteActivity(id);
    EXPECT_EQ(store.dump(u"SELECT DISTINCT activity_id FROM activity_tag"_s), std::to_string(other));
}

TEST_F(Activities, AreTaggedAllOrNone) {
    const std::array ids{record(10, 20), ActivityId{999}};
    const TagId tag = store->insertCategory(CategoryKind::tag, u"t"_s, {});
    EXPECT_EQ(failureOf([&] { store->setTag(ids, tag, Repository::TagState::on); }),
              "FOREIGN KEY constraint failed — INSERT OR IGNORE INTO activity_tag (activity_id, tag_id) "
              "VALUES (?, ?)");
    EXPECT_EQ(store.dump(u"SELECT COUNT(*) FROM activity_tag"_s), "0");
}

TEST_F(Activities, GiveWayToAnEntryMadeByHand) {
    const struct {
        const char* name;
        QString before;    // start, end and is_manual of the ids 1, 2, 3
        const char* after; // id|start|end|is_manual with an entry over 100 to 200; freed ids return
    } rows[] = {
        {"exactly covered", u"(100, 200, 0)"_s, "1|100|200|1"},
        {"covered, and one of no length", u"(120, 150, 0), (150, 150, 0)"_s, "1|100|200|1"},
        {"over both sides: the tail is new", u"(50, 300, 0)"_s, "1|50|100|0\n3|100|200|1\n2|200|300|0"},
        {"over the beginning, to the very end", u"(50, 200, 0)"_s, "1|50|100|0\n2|100|200|1"},
        {"over the end, from the very beginning", u"(100, 300, 0)"_s, "2|100|200|1\n1|200|300|0"},
        {"one of each", u"(90, 110, 0), (110, 160, 0), (160, 220, 0)"_s,
         "1|90|100|0\n4|100|200|1\n3|200|220|0"},
        {"neighbours stay", u"(50, 100, 0), (200, 250, 0)"_s, "1|50|100|0\n3|100|200|1\n2|200|250|0"},
        {"made by hand stays", u"(50, 300, 1), (120, 130, 1)"_s, "1|50|300|1\n3|100|200|1\n2|120|130|1"},
    };
    for (const auto& row : rows) {
        store.execute(
            u"DELETE FROM activity; INSERT INTO activity (bundle_id, app_name, start, end, is_manual) "
            "SELECT '', '', * FROM (VALUES "_s +
            row.before + u')');
        const ActivityId id = store->insertManualEntry(entryFrom(100, 200));
        EXPECT_EQ(intervals(), row.after) << row.name;
        EXPECT_EQ(store.dump(u"SELECT bundle_id, app_name, title FROM activity WHERE id = %1"_s.arg(id), 3),
                  "kestu.manual|手動|会議");
    }
}

// Every recorded activity here has an application of its own, by which its pieces are known.
TEST_F(Activities, LoseNoSecondOutsideEntriesMadeByHandAndKeepNoneInside) {
    constexpr int seconds = 300;
    const auto recorded = [&] {
        std::multiset<std::pair<int, int>> found; // each second with the application recorded in it
        for (const Activity& activity : store->activitiesOverlapping(instantAt(0), instantAt(seconds))) {
            const int app = activity.appName.toInt();
            const RowId category = app % 2 + 1;
            EXPECT_TRUE(activity.isManual ||
                        (activity.projectId == category && activity.tagIds == QSet<TagId>{category}));
            const int end = activity.isManual ? 0 : static_cast<int>(epochSeconds(activity.end));
            for (int at = static_cast<int>(epochSeconds(activity.start)); at < end; ++at) {
                found.emplace(at, app);
            }
        }
        return found;
    };
    std::mt19937 random(1);
    std::uniform_int_distribution<int> second(0, seconds - 1);
    for (const CategoryKind kind : {CategoryKind::project, CategoryKind::tag}) {
        store->insertCategory(kind, u"even"_s, {});
        store->insertCategory(kind, u"odd"_s, {});
    }
    for (int round = 0; round < 10; ++round) {
        store.execute(u"DELETE FROM activity"_s);
        for (int app = 0; app < 30; ++app) {
            const auto [start, end] = std::minmax({second(random), second(random)});
            const std::array id{record(start, end, {{}, QString::number(app), {}, {}})};
            store->setProject(id, app % 2 + 1);
            store->setTag(id, app % 2 + 1, Repository::TagState::on);
        }
        for (int entries = 0; entries < 8; ++entries) {
            const auto [start, last] = std::minmax({second(random), second(random)});
            auto expected = recorded();
            expected.erase(expected.lower_bound({start, 0}), expected.lower_bound({last + 1, 0}));
            store->insertManualEntry(entryFrom(start, last + 1));
            ASSERT_TRUE(recorded() == expected) << round << ": " << start << " to " << last + 1;
        }
    }
}

TEST_F(Activities, MadeByHandAreReplacedUnderANewIdOrRefusedWhole) {
    const auto replace = [&](ActivityId id, const ManualEntry& entry) {
        return store.repository->database().transaction([&] { return store->replaceManualEntry(id, entry); });
    };
    const TagId tag = store->insertCategory(CategoryKind::tag, u"t"_s, {});
    record(0, 100);
    const ActivityId first = store->insertManualEntry(entryFrom(50, 80, {tag}));
    for (const double end : {60.0, 59.0, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(failureOf([&] { replace(first, entryFrom(60, end)); }), "終了は開始より後にしてください");
    }
    EXPECT_EQ(failureOf([&] { replace(first, entryFrom(60, 90, {12345})); }),
              "FOREIGN KEY constraint failed — INSERT INTO activity_tag (activity_id, tag_id) VALUES (?, ?)");
    EXPECT_EQ(intervals(), "1|0|50|0\n3|50|80|1\n2|80|100|0");
    EXPECT_EQ(store->activitiesOverlapping(instantAt(50), instantAt(51)).at(0).tagIds, QSet<TagId>{tag});

    EXPECT_EQ(replace(first, entryFrom(60, 90)), 3); // the highest id was free again
    replace(1, entryFrom(200, 210));                 // a recorded one is left alone
    EXPECT_EQ(intervals(), "1|0|50|0\n3|60|90|1\n2|90|100|0\n4|200|210|1");
}

} // namespace
} // namespace kestu
