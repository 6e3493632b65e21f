// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppModelTest.h"

#include <QFile>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::AppModelTest;
using test::utc;
using test::waitUntil;

TEST_F(AppModelTest, ShowsTheSelectedDayCutToItWhateverItsLength) {
    record("2026-03-03T14:30:00", "2026-03-03T15:30:00"); // over Tokyo's midnight
    open();
    const auto times = [this] {
        const Activity& activity = model->dayItems().at(0).activity;
        return std::pair(activity.start, activity.end);
    };
    const Instant midnight = utc("2026-03-03T15:00:00");
    EXPECT_EQ(times(), std::pair(midnight, midnight + 30min));
    EXPECT_EQ(model->todayTotal(), 1800);
    model->setSelectedActivityId(1);
    model->shiftDay(-1);
    EXPECT_EQ(times(), std::pair(midnight - 30min, midnight));
    EXPECT_EQ(model->todayTotal(), 1800);
    EXPECT_FALSE(model->selectedActivityId());
    clock.now += 24h;
    EXPECT_FALSE(model->isTodaySelected());
    model->goToToday();
    EXPECT_EQ(model->selectedDay(), midnight + 24h);
    EXPECT_EQ(model->todayTotal(), 0);

    calendar.zone = QTimeZone("Europe/Berlin");
    record("2026-03-28T20:00:00", "2026-03-30T20:00:00");
    clock.now = utc("2026-03-28T12:00:00");
    model->goToToday();
    model->shiftDay(1); // of 23 hours
    EXPECT_EQ(times(), std::pair(utc("2026-03-28T23:00:00"), utc("2026-03-29T22:00:00")));
    model->shiftDay(1);
    EXPECT_EQ(times().first, utc("2026-03-29T22:00:00"));
    EXPECT_TRUE(model->summaryRequest().contains(u" 2026-03-30 "_s));
}

TEST_F(AppModelTest, FollowsMidnightAndAnotherTimeZoneWhileNothingIsRecorded) {
    clock.now = utc("2026-03-03T14:59:00"); // a minute before Tokyo's midnight
    record("2026-03-03T13:00:00", "2026-03-03T14:00:00");
    open(5ms);
    EXPECT_EQ(model->todayTotal(), 3600);
    clock.now += 2min;
    EXPECT_TRUE(test::waitUntil([this] { return model->todayTotal() == 0; }));
    EXPECT_EQ(model->selectedDay(), utc("2026-03-02T15:00:00")) << "what the user looks at stays";
    calendar.zone = QTimeZone("Europe/Berlin");
    EXPECT_TRUE(test::waitUntil([this] { return model->todayTotal() == 3600; }));
    EXPECT_EQ(model->selectedDay(), utc("2026-03-02T23:00:00"));
}

TEST_F(AppModelTest, ReloadsForAnotherWindowAtOnceAndElseEveryTenSeconds) {
    open(1h, u"report"_s).start();
    EXPECT_EQ(model->screen(), SidebarItem::report);
    EXPECT_TRUE(model->isTracking() && model->accessibilityGranted());
    auto reloads = [&, last = model->revision()]() mutable {
        return model->revision() - std::exchange(last, model->revision());
    };
    workFor(5);
    EXPECT_EQ(reloads(), 0);
    workFor(6);
    EXPECT_EQ(reloads(), 1);
    EXPECT_EQ(model->todayTotal(), 11);
    platform.fakeWorkspace.title = u"b.txt"_s;
    workFor(1);
    EXPECT_EQ(reloads(), 1);
    EXPECT_EQ(model->currentSample()->title, u"b.txt"_s);
    workFor(-3600); // the clock is set back
    EXPECT_EQ(reloads(), 1);
    workFor(1);
    EXPECT_TRUE(model->todayTotal() >= 0 && model->todayTotal() <= 12) << model->todayTotal();
    workFor(11);
    EXPECT_EQ(reloads(), 1) << "an hour without reloads would be the alternative";

    model->toggleTracking();
    EXPECT_TRUE(model->userPaused() && !model->isTracking() && !model->currentSample());
    model->toggleTracking();
    clock.now += 3s;
    model->stop();
    EXPECT_FALSE(model->isTracking() || model->userPaused());
    EXPECT_TRUE(rows().ends_with("b.txt 3")) << rows();
}

TEST_F(AppModelTest, NotifiesOfRealChangesOnly) {
    const ActivityId id = record("2026-03-04T04:00:00", "2026-03-04T05:00:00");
    const RuleTarget target{.kind = CategoryKind::project,
                            .id = store->insertCategory(CategoryKind::project, u"P"_s, u"#4F7CF7"_s)};
    suggest(u"x"_s);
    open();
    const RuleSuggestion shown = model->suggestions().at(0);
    std::string changes;
    const std::pair<const char*, void (AppModel::*)()> all[] = {
        {"projects ", &AppModel::projectsChanged}, {"tags ", &AppModel::tagsChanged},
        {"rules ", &AppModel::rulesChanged},       {"suggestions ", &AppModel::suggestionsChanged},
        {"items ", &AppModel::dayItemsChanged},    {"impacts ", &AppModel::suggestionImpactsChanged},
        {"note ", &AppModel::dayNoteChanged},      {"total ", &AppModel::todayTotalChanged},
        {"error ", &AppModel::errorMessageChanged}};
    for (const auto& [name, changed] : all) {
        QObject::connect(model.get(), changed, [&changes, name = name] { changes += name; });
    }
    const std::pair<std::function<void()>, const char*> actions[] = {
        {[&] { model->deleteRule(99); }, ""},
        {[&] { model->saveDayNote(u"2026-03-04"_s, u"メモ"_s, {}); }, "note "},
        {[&] { model->addRule(target, RuleField::app, RuleOperator::equals, u" App\t"_s); }, "rules items "},
        {[&] { model->addRule(target, RuleField::app, RuleOperator::equals, u"　"_s); }, ""},
        {[&] { model->assignProject(target.id, std::array{id}); }, "items "},
        {[&] { model->acceptSuggestion(shown); }, "rules suggestions impacts "},
        {[&] { model->acceptSuggestion(shown); }, "error "},
        {[&] { model->deleteActivity(id); }, "items total "}};
    for (const auto& [action, expected] : actions) {
        changes.clear();
        action();
        EXPECT_EQ(changes, expected);
    }
    EXPECT_EQ(told(), "提案が見つかりません（id: 1）");
}

TEST_F(AppModelTest, SeesWhatAnotherProcessWritesAndKeepsImpactsUntilTimesChange) {
    const ActivityId id = record("2026-03-04T04:00:00", "2026-03-04T05:00:00", u"abc"_s);
    open(10ms);
    EXPECT_TRUE(model->suggestionImpacts().isEmpty());
    suggest(u"abc"_s);
    ASSERT_TRUE(waitUntil([this] { return !model->suggestions().empty(); }));
    EXPECT_EQ(model->suggestionImpacts()[1], 3600);
    store->extendActivity(id, utc("2026-03-04T04:45:00"));
    EXPECT_TRUE(waitUntil([this] { return model->suggestionImpacts()[1] == 2700; }));

    open();
    store->extendActivity(id, utc("2026-03-04T04:30:00")); // the watch has yet to see it
    model->createCategory(CategoryKind::tag, u"T"_s);
    EXPECT_EQ(model->suggestionImpacts()[1], 2700) << "a month is not read for a tag";
    EXPECT_EQ(model->todayTotal(), 1800);
    model->deleteActivity(99);
    EXPECT_EQ(model->suggestionImpacts()[1], 1800);
}

TEST_F(AppModelTest, TellsALastingFailureOnceAndEveryFailureOfAnAction) {
    open().start();
    for (int round = 0; round < 2; ++round) {
        store.execute(u"ALTER TABLE activity RENAME TO away"_s);
        workFor(11);
        EXPECT_TRUE(told().starts_with("no such table: activity")) << round;
        workFor(11);
        EXPECT_EQ(told(), "");
        const Interval day{.start = clock.now - 24h, .end = clock.now};
        EXPECT_TRUE(model->loadItems(day).empty());
        EXPECT_NE(told(), "") << "asked for by the user";
        EXPECT_TRUE(model->loadItems(day).empty());
        EXPECT_EQ(told(), "") << "asked for again by a reload";
        model->deleteActivity(1);
        EXPECT_EQ(told(), "no such table: activity — DELETE FROM activity WHERE id = ?");
        model->goToToday();
        EXPECT_NE(told(), "") << "the day that the user asked for";
        store.execute(u"ALTER TABLE away RENAME TO activity"_s);
        workFor(11);
        EXPECT_EQ(told(), "");
    }
    store.execute(u"ALTER TABLE project RENAME TO away"_s);
    model->saveDayNote(u"2026-03-04"_s, u"メモ"_s, {});
    EXPECT_TRUE(told().starts_with("no such table: project"));
    EXPECT_EQ(model->dayNote()->author, u"user"_s) << "the day is read also then";
}

TEST_F(AppModelTest, SaysOnceThatTheFileIsGone) {
    open(10ms);
    const QString elsewhere = store.path + u".away"_s;
    const auto wait = [] { waitUntil([] { return false; }, 100); };
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(QFile::rename(store.path, elsewhere));
        ASSERT_TRUE(waitUntil([this] { return model->errorMessage().has_value(); }));
        EXPECT_EQ(told(), "記録用のデータベースが移動または削除されました。元に戻すか、KESTU "
                          "を起動し直してください。");
        wait();
        ASSERT_TRUE(QFile::rename(elsewhere, store.path));
        wait();
        EXPECT_EQ(told(), "");
    }
}

TEST_F(AppModelTest, SavesEntriesAndRecordsOnBesideThem) {
    open().start();
    workFor(8);
    ManualDraft draft;
    draft.start = clock.now - 4s;
    draft.end = draft.start;
    draft.title = u"　会議 "_s;
    model->setManualDraft(draft);
    model->saveManualDraft(*model->manualDraft());
    EXPECT_EQ(told(), "終了は開始より後にしてください");
    EXPECT_FALSE(model->manualDraft() || model->selectedActivityId());
    EXPECT_EQ(rows(), "a.txt 8\na.txt 0") << "recording began anew all the same";

    draft.end = clock.now;
    EXPECT_EQ(model->automaticOverlap(draft.start, draft.end), 4);
    model->saveManualDraft(draft);
    EXPECT_EQ(model->automaticOverlap(draft.start, draft.end), 0);
    const auto id = model->selectedActivityId();
    ASSERT_TRUE(id);
    workFor(2);
    EXPECT_EQ(rows(), "a.txt 4\na.txt 0\n会議 4\na.txt 2");

    draft.editingId = id;
    draft.start -= 1s;
    model->saveManualDraft(draft);
    EXPECT_GT(model->selectedActivityId(), id);
    EXPECT_EQ(told(), "");
    EXPECT_EQ(rows(), "a.txt 3\na.txt 0\na.txt 2\n会議 5\na.txt 0");

    const ActivityId openRow = *model->selectedActivityId() + 1;
    model->setSelectedActivityId(openRow);
    model->deleteActivity(openRow);
    EXPECT_FALSE(model->selectedActivityId());
    workFor(5);
    EXPECT_EQ(rows(), "a.txt 3\na.txt 0\na.txt 2\n会議 5\na.txt 5") << "not into the deleted row";
}

TEST_F(AppModelTest, ClassifiesAGroupByRuleOrByHandIntoOldAndNewCategories) {
    UnassignedGroup group;
    group.activityIds = {record("2026-03-04T04:00:00", "2026-03-04T05:00:00"),
                         record("2026-03-04T02:00:00", "2026-03-04T03:00:00")};
    for (int i = 0; i < 8; ++i) {
        store->insertCategory(CategoryKind::project, QString::number(i), u"#000000"_s);
    }
    open();
    Classification how;
    how.op = RuleOperator::equals;
    how.value = u" App "_s;
    const struct {
        CategoryKind kind;
        std::optional<RowId> target;
        QString newName;
        bool makeRule;
        bool isDone;
        const char* stored; // count of projects, sum of the two assigned ids, count of rules and of tag links
    } cases[] = {
        {CategoryKind::project, {}, u" 　"_s, true, false, "8|∅|0|0"},
        {CategoryKind::project, 2, {}, false, true, "8|4|0|0"},
        {CategoryKind::project, {}, u" 新 "_s, false, true, "9|18|0|0"},
        {CategoryKind::project, {}, u"次"_s, true, true, "10|18|1|0"},
        {CategoryKind::tag, {}, u"札"_s, false, true, "10|18|1|2"},
    };
    for (const auto& row : cases) {
        how.kind = row.kind;
        how.targetId = row.target;
        how.newName = row.newName;
        how.makeRule = row.makeRule;
        EXPECT_EQ(model->classify(group, how), row.isDone);
        EXPECT_EQ(store.dump(u"SELECT (SELECT COUNT(*) FROM project), SUM(project_id), (SELECT COUNT(*) FROM "
                             "rule), (SELECT COUNT(*) FROM activity_tag) FROM activity"_s,
                             4),
                  row.stored);
    }
    EXPECT_EQ(model->project(9)->name, u"新"_s);
    EXPECT_EQ(model->project(9)->colorHex, u"#4F7CF7"_s);
    EXPECT_EQ(model->project(10)->colorHex, u"#F2994A"_s);

    model->toggleTag(1, model->dayItems().at(0).activity);
    EXPECT_FALSE(model->dayItems().at(0).tagIds.contains(1));
    model->addRule({.kind = CategoryKind::tag, .id = 1}, RuleField::app, RuleOperator::equals, u"App"_s);
    model->toggleTag(1, model->dayItems().at(0).activity);
    EXPECT_TRUE(model->dayItems().at(0).activity.tagIds.contains(1)) << "a rule's tag is set by hand too";
}

TEST_F(AppModelTest, ClassifiesIntoANewCategoryWhollyOrNotAtAll) {
    UnassignedGroup group;
    group.activityIds = {record("2026-03-04T04:00:00", "2026-03-04T05:00:00")};
    open();
    const std::string before = store.dump(u"SELECT * FROM activity"_s, 10);
    for (const auto& [kind, makeRule, refused] :
         {std::tuple(CategoryKind::project, true, u"INSERT ON rule"_s),
          {CategoryKind::tag, true, u"INSERT ON rule"_s},
          {CategoryKind::project, false, u"UPDATE ON activity"_s},
          {CategoryKind::tag, false, u"INSERT ON activity_tag"_s}}) {
        store.execute(u"DROP TRIGGER IF EXISTS refuse; CREATE TRIGGER refuse AFTER "_s + refused +
                      u" BEGIN SELECT RAISE(ABORT, 'refused'); END"_s);
        const Classification how{.kind = kind,
                                 .targetId = {},
                                 .newName = u"新"_s,
                                 .makeRule = makeRule,
                                 .field = RuleField::app,
                                 .op = RuleOperator::equals,
                                 .value = u"App"_s};
        EXPECT_FALSE(model->classify(group, how));
        EXPECT_TRUE(told().starts_with("refused — ")) << refused.toStdString();
        EXPECT_TRUE(model->projects().empty() && model->tags().empty() && model->rules().empty())
            << refused.toStdString();
        EXPECT_EQ(store.dump(u"SELECT (SELECT COUNT(*) FROM project) + (SELECT COUNT(*) FROM tag)"_s), "0");
        EXPECT_EQ(store.dump(u"SELECT * FROM activity"_s, 10), before);
    }
}

TEST_F(AppModelTest, LoadsAndStoresSettingsAndAppliesThem) {
    auto& stored = platform.fakeSettings;
    stored.integers[u"idleMinutes"_s] = 0;
    open().loadSettings();
    model->start();
    EXPECT_EQ(model->idleMinutes(), 3);
    EXPECT_TRUE(model->keepAliveEnabled() && stored.booleans[u"keepAliveEnabled"_s]);
    EXPECT_EQ(stored.integers[u"idleMinutes"_s], 3);
    EXPECT_TRUE(stored.dictionaries[u"excludedApps"_s].isEmpty());
    for (const int minutes : {3, 1}) {
        if (minutes != model->idleMinutes()) {
            model->setIdleMinutes(minutes);
        }
        platform.fakeInput.idle = minutes * 60s - 1s;
        workFor(2);
        EXPECT_TRUE(model->currentSample()) << minutes;
        platform.fakeInput.idle = minutes * 60s;
        workFor(2);
        EXPECT_FALSE(model->currentSample()) << minutes;
        platform.fakeInput.idle = 0s;
    }
    model->excludeApp(u"editor"_s, u"App"_s);
    const std::string before = rows();
    workFor(2);
    EXPECT_EQ(rows(), before);
    EXPECT_EQ(stored.dictionaries[u"excludedApps"_s].value(u"editor"_s), u"App"_s);
    model->includeApp(u"editor"_s);
    workFor(2);
    EXPECT_TRUE(model->currentSample());
    EXPECT_EQ(told(), "");

    stored.refusal = u"保存できません"_s;
    model->setKeepAliveEnabled(false);
    EXPECT_FALSE(model->keepAliveEnabled());
    EXPECT_EQ(told(), "保存できません");
    platform.fakeLoginItem.refusal = u"拒否"_s;
    model->setLaunchAtLogin(true);
    EXPECT_TRUE(model->launchAtLogin());
    EXPECT_EQ(told(), "ログイン時に起動の設定に失敗しました：拒否");
    platform.fakeLoginItem.refusal.clear();
    model->setLaunchAtLogin(true);
    EXPECT_TRUE(platform.fakeLoginItem.enabled);

    stored.refusal.clear();
    stored.unreadable = u"設定を読めません"_s;
    stored.booleans[u"keepAliveEnabled"_s] = false;
    open().loadSettings();
    EXPECT_TRUE(model->launchAtLogin() && !model->keepAliveEnabled());
    EXPECT_EQ(model->idleMinutes(), 1);
    EXPECT_EQ(told(), "設定を読めません");
}

TEST_F(AppModelTest, KnowsWhatTheSessionCanTellAtOnceAndAgainWhenAsked) {
    AppModel& opened = open();
    opened.start();
    const Abilities seen = platform.fakeAccessibility.able;
    EXPECT_EQ(opened.abilities(), seen);
    int told = 0;
    QObject::connect(&opened, &AppModel::abilitiesChanged, &opened, [&] {
        ++told;
        EXPECT_EQ(opened.words().warning, linuxWords(opened.abilities(), {}).warning)
            << "the words are those of the new state";
        EXPECT_EQ(opened.whyUnseen().isEmpty(), opened.abilities().windows == seen.windows)
            << "and so is the rest";
    });
    platform.loseSight(u"見えません。"_s);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(opened.whyUnseen(), u"見えません。"_s);
    EXPECT_FALSE(opened.accessibilityGranted());

    platform.fakeAccessibility.able = seen; // nobody says so
    platform.fakeWorkspace.unseen.clear();
    opened.refreshAccessibility();
    EXPECT_EQ(told, 2);
    opened.refreshAccessibility();
    EXPECT_EQ(told, 2) << "nothing new";

    platform.fakeAccessibility.able.addresses = {};
    opened.requestAccessibility();
    EXPECT_EQ(opened.abilities().addresses, Ability());
}

} // namespace
} // namespace kestu
