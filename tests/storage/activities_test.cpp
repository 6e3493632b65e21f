// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TemporaryStore.h"

#include <gtest/gtest.h>

#include <random>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::dump;
using test::failureOf;
using test::TemporaryStore;

const Sample browsing{.bundleId = u"org.browser"_s,
                      .appName = u"ブラウザ"_s,
                      .title = u"会議のメモ"_s,
                      .url = u"https://www.example.jp/memo"_s};

ManualEntry entryFrom(double start, double end) {
    return {
        .start = instantAt(start), .end = instantAt(end), .title = u"会議"_s, .projectId = {}, .tagIds = {}};
}

ActivityId record(Repository& repository, double start, double end, const Sample& sample = browsing) {
    const ActivityId id = repository.insertActivity(sample, instantAt(start));
    repository.extendActivity(id, instantAt(end));
    return id;
}

std::string intervals(const TemporaryStore& store) {
    return dump(store.database(),
                u"SELECT id, CAST(start AS INTEGER), CAST(end AS INTEGER), is_manual "
                "FROM activity ORDER BY start, id"_s,
                4);
}

TEST(Activities, ReadBackWhatWasObservedAndAssigned) {
    const TemporaryStore store;
    Repository& repository = *store.repository;
    const ProjectId project = repository.insertCategory(CategoryKind::project, u"p"_s, {});
    store.database().executeScript(u"INSERT INTO tag (id, name, color) VALUES "
                                   "(3, 'a', ''), (11, 'b', ''), (12, 'c', '')"_s);
    const ActivityId id = record(repository, 10, 20);
    const ActivityId other = record(repository, 30, 40, Sample{});
    constexpr ActivityId gone = 999;
    repository.setProject(std::array{id, gone}, project);
    for (const TagId tagId : {3, 11, 12}) {
        repository.setTag(std::array{id, other}, tagId, Repository::TagState::on);
    }
    repository.setTag(std::array{id, id, gone}, 3, Repository::TagState::off);
    repository.setTag(std::array{id, id}, 3, Repository::TagState::on);
    repository.setTag(std::array{id}, 12, Repository::TagState::off);

    const Activity expected{.id = id,
                            .start = instantAt(10),
                            .end = instantAt(20),
                            .bundleId = browsing.bundleId,
                            .appName = browsing.appName,
                            .title = browsing.title,
                            .url = browsing.url,
                            .domain = u"example.jp"_s,
                            .projectId = project,
                            .isManual = false,
                            .tagIds = {3, 11}};
    EXPECT_EQ(repository.activitiesOverlapping(instantAt(0), instantAt(25)), std::vector{expected});

    repository.setProject(std::array{id}, std::nullopt);
    EXPECT_FALSE(repository.activitiesOverlapping(instantAt(0), instantAt(25)).at(0).projectId);
    repository.deleteActivity(id);
    EXPECT_EQ(dump(store.database(), u"SELECT DISTINCT activity_id FROM activity_tag"_s, 1),
              std::to_string(other));
}

TEST(Activities, ATagThatIsGoneFailsForAllOrNone) {
    const TemporaryStore store;
    const ActivityId id = record(*store.repository, 10, 20);
    const TagId tag = store.repository->insertCategory(CategoryKind::tag, u"t"_s, {});
    store.database().executeScript(
        u"CREATE TRIGGER second AFTER INSERT ON activity_tag WHEN NEW.activity_id = %1 "
        "BEGIN DELETE FROM tag; END"_s.arg(id));
    const ActivityId other = record(*store.repository, 30, 40);
    EXPECT_EQ(failureOf([&] {
                  store.repository->setTag(std::array{id, other}, tag, Repository::TagState::on);
              }),
              "FOREIGN KEY constraint failed — INSERT OR IGNORE INTO activity_tag (activity_id, tag_id) "
              "VALUES (?, ?)");
    EXPECT_EQ(dump(store.database(), u"SELECT id FROM tag"_s, 1), std::to_string(tag));
    store.repository->setTag({}, 12345, Repository::TagState::on); // nothing to do is no failure
}

TEST(Activities, ARangeIsHalfOpenAtBothEnds) {
    const TemporaryStore store;
    const ActivityId early = record(*store.repository, 100, 200);
    const ActivityId late = record(*store.repository, 200, 300);
    const struct {
        double from;
        double to;
        std::vector<ActivityId> ids;
    } rows[] = {
        {0, 100, {}},
        {0, 100.001, {early}},
        {199.999, 200, {early}},
        {199.999, 200.001, {early, late}},
        {200, 201, {late}},
        {300, 400, {}},
        {300, 0, {}},
    };
    for (const auto& row : rows) {
        std::vector<ActivityId> ids;
        for (const Activity& activity :
             store.repository->activitiesOverlapping(instantAt(row.from), instantAt(row.to))) {
            ids.push_back(activity.id);
        }
        EXPECT_EQ(ids, row.ids) << row.from << " to " << row.to;
    }
}

TEST(ManualEntry, CutsItsIntervalOutOfTheRecordedActivities) {
    struct Interval {
        double start;
        double end;
        bool isManual = false;
    };
    const struct {
        const char* name;
        std::vector<Interval> before; // ids 1, 2, 3 in this order
        const char* after; // id|start|end|is_manual with an entry over 100 to 200; freed ids return
    } rows[] = {
        {"exactly covered", {{100, 200}}, "1|100|200|1"},
        {"covered, and one of no length", {{120, 150}, {150, 150}}, "1|100|200|1"},
        {"over both sides: the tail is new", {{50, 300}}, "1|50|100|0\n3|100|200|1\n2|200|300|0"},
        {"over the beginning, to the very end", {{50, 200}}, "1|50|100|0\n2|100|200|1"},
        {"over the end, from the very beginning", {{100, 300}}, "2|100|200|1\n1|200|300|0"},
        {"one of each", {{90, 110}, {110, 160}, {160, 220}}, "1|90|100|0\n4|100|200|1\n3|200|220|0"},
        {"neighbours stay", {{50, 100}, {200, 250}}, "1|50|100|0\n3|100|200|1\n2|200|250|0"},
        {"made by hand stays", {{50, 300, true}, {120, 130, true}}, "1|50|300|1\n3|100|200|1\n2|120|130|1"},
    };
    for (const auto& row : rows) {
        const TemporaryStore store;
        for (const Interval& interval : row.before) {
            interval.isManual ? store.repository->insertManualEntry(entryFrom(interval.start, interval.end))
                              : record(*store.repository, interval.start, interval.end);
        }
        store.database().transaction([&] { store.repository->insertManualEntry(entryFrom(100, 200)); });
        EXPECT_EQ(intervals(store), row.after) << row.name;
    }
}

// Every recorded activity here has an application of its own, by which its pieces are known.
TEST(ManualEntry, LosesNoSecondOutsideItAndLeavesNoneInside) {
    constexpr int seconds = 300;
    const auto coverage = [](const Repository& repository) {
        std::vector<QStringList> recordedAt(seconds);
        for (const Activity& activity : repository.activitiesOverlapping(instantAt(0), instantAt(seconds))) {
            const ProjectId project = activity.appName.toInt() % 2 + 1;
            EXPECT_TRUE(activity.isManual || activity.projectId == project);
            EXPECT_TRUE(activity.isManual || activity.tagIds == QSet<TagId>{project});
            for (double at = epochSeconds(activity.start);
                 !activity.isManual && at < epochSeconds(activity.end); at += 1) {
                recordedAt[static_cast<std::size_t>(at)] += activity.appName;
            }
        }
        for (QStringList& names : recordedAt) {
            names.sort();
        }
        return recordedAt;
    };
    for (unsigned seed = 1; seed <= 10; ++seed) {
        std::mt19937 random(seed);
        std::uniform_int_distribution<int> second(0, seconds - 1);
        const TemporaryStore store;
        for (const CategoryKind kind : {CategoryKind::project, CategoryKind::tag}) {
            store.repository->insertCategory(kind, u"even"_s, {});
            store.repository->insertCategory(kind, u"odd"_s, {});
        }
        for (int app = 0; app < 30; ++app) {
            const auto [start, end] = std::minmax({second(random), second(random)});
            const std::array id{
                record(*store.repository, start, end,
                       {.bundleId = {}, .appName = QString::number(app), .title = {}, .url = {}})};
            store.repository->setProject(id, app % 2 + 1);
            store.repository->setTag(id, app % 2 + 1, Repository::TagState::on);
        }
        for (int entries = 0; entries < 8; ++entries) {
            const auto [start, last] = std::minmax({second(random), second(random)});
            auto expected = coverage(*store.repository);
            std::fill(expected.begin() + start, expected.begin() + last + 1, QStringList());
            store.repository->insertManualEntry(entryFrom(start, last + 1));
            ASSERT_TRUE(coverage(*store.repository) == expected)
                << seed << ": " << start << " to " << last + 1;
        }
    }
}

TEST(ManualEntry, IsReplacedUnderANewIdAndRefusedWhenItDoesNotEndAfterItsStart) {
    const TemporaryStore store;
    Repository& repository = *store.repository;
    const auto replace = [&](ActivityId id, const ManualEntry& entry) {
        return store.database().transaction([&] { return repository.replaceManualEntry(id, entry); });
    };
    const TagId tag = repository.insertCategory(CategoryKind::tag, u"t"_s, {});
    record(repository, 0, 100);
    ManualEntry entry = entryFrom(50, 80);
    entry.tagIds = {tag};
    const ActivityId first = repository.insertManualEntry(entry);
    EXPECT_EQ(intervals(store), "1|0|50|0\n3|50|80|1\n2|80|100|0");

    for (const double end : {60.0, 59.0, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(failureOf([&] { replace(first, entryFrom(60, end)); }), "終了は開始より後にしてください");
    }
    EXPECT_EQ(intervals(store), "1|0|50|0\n3|50|80|1\n2|80|100|0");
    EXPECT_EQ(repository.activitiesOverlapping(instantAt(50), instantAt(51)).at(0).tagIds, QSet<TagId>{tag});

    EXPECT_EQ(replace(first, entryFrom(60, 90)), 3); // the highest id was free again
    EXPECT_EQ(intervals(store), "1|0|50|0\n3|60|90|1\n2|90|100|0");
    replace(1, entryFrom(200, 210)); // a recorded one is left alone
    EXPECT_EQ(intervals(store), "1|0|50|0\n3|60|90|1\n2|90|100|0\n4|200|210|1");

    entry.tagIds = {12345};
    EXPECT_EQ(failureOf([&] { replace(3, entry); }),
              "FOREIGN KEY constraint failed — INSERT INTO activity_tag (activity_id, tag_id) VALUES (?, ?)");
    EXPECT_EQ(intervals(store), "1|0|50|0\n3|60|90|1\n2|90|100|0\n4|200|210|1");
    const Activity manual = repository.activitiesOverlapping(instantAt(60), instantAt(61)).at(0);
    EXPECT_EQ(manual.bundleId, manualBundleId);
    EXPECT_EQ(manual.appName, manualAppName);
}

} // namespace
} // namespace kestu
