// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppModel.h"

#include "app/Ledger.h"
#include "base/LocalClock.h"
#include "classify/Resolution.h"
#include "platform/Accessibility.h"
#include "platform/Platform.h"

#include <algorithm>

namespace kestu {
namespace {

using namespace std::chrono_literals;

// While one window stays in front, the tracker's ticks reload the day no more often than this.
constexpr Seconds reloadInterval = 10s;

constexpr int impactDays = 30;

// While recording goes on: with the watch that finds it, a minute.
constexpr Seconds impactAge = 56s;

Instant dayAfter(Instant instant, int days, const Calendar& calendar) {
    return LocalClock(calendar).startOfDayAfter(instant, days).value_or(instant);
}

/// What a failure has in common with that of another statement: all before " — " and the statement.
QString causeOf(const QString& failure) {
    return failure.section(QStringLiteral(" — "), 0, 0);
}

template<typename Body>
std::optional<QString> failureOf(Body body) {
    try {
        body();
        return std::nullopt;
    } catch (const DatabaseError& error) {
        return error.description();
    }
}

template<typename Category>
const Category* firstWithId(const std::vector<Category>& categories, RowId id) {
    const auto found = std::ranges::find(categories, id, &Category::id);
    return found == categories.end() ? nullptr : &*found;
}

} // namespace

AppModel::AppModel(std::unique_ptr<Repository> repository, Platform& platform, Environment environment)
    : m_environment(std::move(environment))
    , m_repository(std::move(repository))
    , m_platform(platform)
    , m_tracker(*m_repository, platform, m_environment.clock, m_environment.uptime)
    , m_screen(sidebarItemFromRaw(m_environment.screen))
    , m_selectedDay(startOfToday())
    , m_lastDataVersion(m_repository->database().dataVersion()) { // before the load: nothing is missed
    m_words = m_platform.words(m_abilities, dataFolder());
    connect(&m_platform.accessibility(), &Accessibility::abilitiesChanged, this,
            &AppModel::refreshAccessibility);
    m_tracker.onUpdate = [this] { onTrackerUpdate(); };
    reload();
    connect(&m_watchTimer, &QTimer::timeout, this, &AppModel::watch);
    m_watchTimer.start(m_environment.watchInterval);
}

AppModel::~AppModel() = default;

// What the screens read

Instant AppModel::startOfToday() const {
    return dayAfter(now(), 0, calendar());
}

const Project* AppModel::project(ProjectId id) const {
    return firstWithId(m_projects, id);
}

const Tag* AppModel::tag(TagId id) const {
    return firstWithId(m_tags, id);
}

QString AppModel::summaryRequest() const {
    return QStringLiteral("KESTUの MCP で %1 の記録を読んで、何に時間を使ったか・流れ・気づきを短くまとめて、"
                          "save_daily_summary で保存して。")
        .arg(dayKey(m_selectedDay, calendar()));
}

std::vector<ResolvedActivity> AppModel::loadItems(const Interval& interval) {
    std::vector<ResolvedActivity> items;
    const auto failure = failureOf([&] { items = resolved(countedIn(*m_repository, interval), m_rules); });
    if (failure && m_failedInterval != interval) {
        forgetFailures(); // the user asks for something new
    }
    m_failedInterval = failure ? std::optional(interval) : std::nullopt;
    report(Source::items, failure);
    return items;
}

// Navigation

void AppModel::setScreen(SidebarItem screen) {
    assign(m_screen, screen, &AppModel::screenChanged);
}

void AppModel::setSelectedActivityId(std::optional<ActivityId> id) {
    assign(m_selectedActivityId, id, &AppModel::selectedActivityIdChanged);
}

void AppModel::setManualDraft(std::optional<ManualDraft> draft) {
    assign(m_manualDraft, std::move(draft), &AppModel::manualDraftChanged);
}

void AppModel::shiftDay(int days) {
    selectDay(dayAfter(m_selectedDay, days, calendar()));
}

void AppModel::goToToday() {
    selectDay(startOfToday());
}

void AppModel::selectDay(Instant day) {
    assign(m_selectedDay, day, &AppModel::selectedDayChanged);
    setSelectedActivityId(std::nullopt);
    forgetFailures();
    reloadDay();
}

// Keeping fresh

void AppModel::onTrackerUpdate() {
    const bool isOther = assign(m_currentSample, m_tracker.current(), &AppModel::currentSampleChanged);
    const Seconds sinceReload = now() - m_lastReload;
    // A clock that was set back must not stop the reloads until it has caught up.
    if (isOther || sinceReload > reloadInterval || sinceReload < Seconds{0}) {
        reloadDay();
    }
}

void AppModel::watch() {
    reportMove();
    refreshWhyUnseen();
    const std::int64_t version = m_repository->database().dataVersion();
    const bool isChanged = std::exchange(m_lastDataVersion, version) != version;
    if (isChanged) {
        m_impactsFrom.reset(); // the other process may have changed any time
    }
    if (std::exchange(m_isReloadDue, false) || isChanged) {
        reload();
    }
    followCalendar();
    renewImpacts();
}

/// Midnight passes, clocks are set and time zones changed while nothing is recorded, too.
void AppModel::followCalendar() {
    // The middle of the day is in the same day in any zone nearby.
    const bool isMoved =
        assign(m_selectedDay, dayAfter(m_selectedDay + 12h, 0, calendar()), &AppModel::selectedDayChanged);
    if (isMoved || m_todayAtReload != startOfToday()) {
        reloadDay();
    }
}

void AppModel::reportMove() {
    const bool hadMoved = std::exchange(m_hasMoved, m_repository->database().hasMoved());
    if (m_hasMoved && !hadMoved) {
        setErrorMessage(QStringLiteral("記録用のデータベースが移動または削除されました。元に戻すか、KESTU "
                                       "を起動し直してください。"));
    }
}

void AppModel::reload() {
    report(Source::lists, failureOf([this] { readLists(); }));
    reloadDay();
}

void AppModel::reloadDay() {
    m_lastReload = now();
    m_todayAtReload = startOfToday();
    ++m_revision;
    const auto failure = failureOf([this] { readDay(); });
    if (failure && m_shownDay != m_selectedDay) { // what another day held must not pass for this one's
        m_dayActivities.clear();
        assign(m_dayItems, std::vector<ResolvedActivity>(), &AppModel::dayItemsChanged);
        assign(m_dayNote, std::nullopt, &AppModel::dayNoteChanged);
    }
    m_shownDay = m_selectedDay;
    Q_EMIT revisionChanged(); // after the reading: who redraws on it finds the new state
    report(Source::day, failure);
}

void AppModel::readLists() {
    assign(m_projects, m_repository->projects(), &AppModel::projectsChanged);
    assign(m_tags, m_repository->tags(), &AppModel::tagsChanged);
    assign(m_rules, m_repository->rules(), &AppModel::rulesChanged);
    if (assign(m_suggestions, m_repository->suggestions(), &AppModel::suggestionsChanged)) {
        m_impactsFrom.reset();
    }
    updateImpacts();
}

/// A month of activities costs more than all other reads together, so it is read only for new figures.
void AppModel::updateImpacts() {
    const Instant from = dayAfter(now(), -impactDays, calendar());
    if (m_suggestions.empty()) {
        assign(m_suggestionImpacts, QHash<SuggestionId, double>(), &AppModel::suggestionImpactsChanged);
    } else if (m_impactsFrom != from) {
        m_impactsFrom = from;
        assign(m_suggestionImpacts, impactsSince(from), &AppModel::suggestionImpactsChanged);
    }
}

/// What is recorded changes the figures with every tick.
void AppModel::renewImpacts() {
    const Seconds age = now() - m_impactsRead;
    if (m_impactsRevision != m_revision && (age > impactAge || age < Seconds{0})) {
        m_impactsFrom.reset();
    }
    updateImpacts();
}

QHash<SuggestionId, double> AppModel::impactsSince(Instant from) {
    m_impactsRead = now();
    m_impactsRevision = m_revision;
    std::vector<Activity> activities;
    try {
        activities = counted(m_repository->activitiesOverlapping(from, now()));
    } catch (const DatabaseError&) {
        m_impactsFrom.reset(); // zeros for now; the next watch tries again
    }
    return kestu::suggestionImpacts(m_suggestions, activities);
}

void AppModel::readDay() {
    const Interval day = dayFrom(m_selectedDay);
    std::vector<Activity> activities = countedIn(*m_repository, day);
    // A thousand rules over a full day take longer than one key of a name that is being typed.
    if (activities != m_dayActivities || m_rules != m_dayRules) {
        assign(m_dayItems, resolved(activities, m_rules), &AppModel::dayItemsChanged);
        m_dayActivities = std::move(activities);
        m_dayRules = m_rules;
    }
    assign(m_dayNote, m_repository->dailyNote(dayKey(day.start, calendar())), &AppModel::dayNoteChanged);
    assign(m_todayTotal, readTodayTotal(), &AppModel::todayTotalChanged);
}

double AppModel::readTodayTotal() const {
    const Instant today = startOfToday();
    double seconds = 0;
    if (m_selectedDay == today) {
        for (const ResolvedActivity& item : m_dayItems) {
            seconds += secondsOf(item);
        }
        return seconds;
    }
    for (const Activity& activity : countedIn(*m_repository, dayFrom(today))) {
        seconds += lengthOf(activity.start, activity.end).count();
    }
    return seconds;
}

Interval AppModel::dayFrom(Instant start) const {
    return {.start = start, .end = dayAfter(start, 1, calendar())};
}

// Errors

void AppModel::setErrorMessage(const QString& text) {
    assign(m_errorMessage, text, &AppModel::errorMessageChanged);
}

void AppModel::clearErrorMessage() {
    assign(m_errorMessage, std::nullopt, &AppModel::errorMessageChanged);
}

/// A cause is told once until what failed for it has succeeded: a locked file is one alert, not one for
/// each reload.
void AppModel::report(Source source, const std::optional<QString>& failure) {
    const auto cause = failure ? std::optional(causeOf(*failure)) : std::nullopt;
    const bool isKnown = std::ranges::find(m_reportedCauses, cause) != m_reportedCauses.end();
    m_reportedCauses[static_cast<std::size_t>(source)] = cause;
    m_isReloadDue |= failure && source != Source::action;
    if (failure && !isKnown) {
        setErrorMessage(*failure);
    }
}

} // namespace kestu
