// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one observable state that every screen reads, and every action of the user. It owns the store and the
// tracker, keeps what is shown fresh (after each report of the tracker, each edit, and each write of another
// process), and keeps the settings. Each field has one signal, emitted only when its value really changed.
// Created once at the start and alive until the end; main thread only.
#pragma once

#include "app/Classification.h"
#include "app/ManualDraft.h"
#include "app/SidebarItem.h"
#include "app/ThemeChoice.h"
#include "base/Calendar.h"
#include "base/Time.h"
#include "capture/Tracker.h"
#include "classify/DayAggregation.h"
#include "platform/Abilities.h"
#include "platform/SoftwareUpdates.h"
#include "platform/SystemWords.h"
#include "storage/Repository.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QTimer>
#include <QUrl>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace kestu {

class Platform;

class AppModel final : public QObject {
    Q_OBJECT

public:
    struct Environment {
        Clock clock;                        // seconds since the Unix epoch
        std::function<Calendar()> calendar; // the user's calendar at this moment
        QString screen;                     // the raw value of the screen to begin with; else the timeline
        std::chrono::milliseconds watchInterval{3000}; // between two looks for another process's writes
        QString assistantServer{}; // the program through which assistants read and write, by its path
        Uptime uptime{systemUptime};
    };

    /// Takes over the opened store and loads today; `platform` outlives this.
    AppModel(std::unique_ptr<Repository> repository, Platform& platform, Environment environment);
    ~AppModel() override;
    AppModel(const AppModel&) = delete;
    AppModel& operator=(const AppModel&) = delete;

    // What the screens read

    [[nodiscard]] bool userPaused() const { return m_userPaused; }
    [[nodiscard]] SidebarItem screen() const { return m_screen; }
    [[nodiscard]] Instant selectedDay() const { return m_selectedDay; } // the start of a local day
    [[nodiscard]] std::optional<ActivityId> selectedActivityId() const { return m_selectedActivityId; }
    [[nodiscard]] const std::optional<ManualDraft>& manualDraft() const { return m_manualDraft; }
    [[nodiscard]] const std::vector<Project>& projects() const { return m_projects; }
    [[nodiscard]] const std::vector<Tag>& tags() const { return m_tags; }
    [[nodiscard]] const std::vector<Rule>& rules() const { return m_rules; }
    [[nodiscard]] const std::vector<RuleSuggestion>& suggestions() const { return m_suggestions; }
    /// Seconds of the last 30 days that each suggestion would classify.
    [[nodiscard]] const QHash<SuggestionId, double>& suggestionImpacts() const { return m_suggestionImpacts; }
    [[nodiscard]] const std::optional<DailyNote>& dayNote() const { return m_dayNote; }
    /// What counts of the selected day's activities, clipped to it: two pieces may have one id.
    [[nodiscard]] const std::vector<ResolvedActivity>& dayItems() const { return m_dayItems; }
    [[nodiscard]] double todayTotal() const { return m_todayTotal; } // seconds recorded today
    [[nodiscard]] bool isTracking() const { return m_isTracking; }
    [[nodiscard]] const std::optional<Sample>& currentSample() const { return m_currentSample; }
    [[nodiscard]] bool accessibilityGranted() const { return m_accessibilityGranted; }
    /// What this session can tell, and what is said of this system therefore.
    [[nodiscard]] const Abilities& abilities() const { return m_abilities; }
    [[nodiscard]] const SystemWords& words() const { return m_words; }
    /// Why no window can be seen here and what would help; empty while they can be.
    [[nodiscard]] const QString& whyUnseen() const { return m_whyUnseen; }
    [[nodiscard]] const std::optional<QString>& errorMessage() const { return m_errorMessage; }
    [[nodiscard]] std::int64_t revision() const { return m_revision; } // grows with every reload of the day
    [[nodiscard]] int idleMinutes() const { return m_idleMinutes; }
    [[nodiscard]] bool keepAliveEnabled() const { return m_keepAliveEnabled; }
    /// Applications that are never recorded: bundle id -> name.
    [[nodiscard]] const QMap<QString, QString>& excludedApps() const { return m_excludedApps; }
    [[nodiscard]] bool launchAtLogin() const { return m_launchAtLogin; }
    [[nodiscard]] bool welcomeShown() const;
    [[nodiscard]] ThemeChoice themeChoice() const { return m_themeChoice; }
    /// Where the window was, in the window's own words; empty at first.
    [[nodiscard]] QMap<QString, QString> windowPlace() const;
    /// The applications recorded on the selected day: bundle id -> name.
    [[nodiscard]] QMap<QString, QString> recordedApps() const;
    [[nodiscard]] const QString& assistantServer() const { return m_environment.assistantServer; }
    /// The folder that holds the records.
    [[nodiscard]] QString dataFolder() const;

    [[nodiscard]] Instant now() const { return m_environment.clock(); }
    [[nodiscard]] Calendar calendar() const { return m_environment.calendar(); }
    [[nodiscard]] Instant startOfToday() const;
    [[nodiscard]] bool isTodaySelected() const { return m_selectedDay == startOfToday(); }
    [[nodiscard]] const Project* project(ProjectId id) const; // null when there is none
    [[nodiscard]] const Tag* tag(TagId id) const;

    /// What the user copies into the assistant to have the selected day's note written.
    [[nodiscard]] QString summaryRequest() const;

    /// The resolved activities of any interval; empty after a failure, which becomes the error message.
    [[nodiscard]] std::vector<ResolvedActivity> loadItems(const Interval& interval);

    /// The recorded seconds that an entry made by hand would replace; one that is being corrected hides none.
    [[nodiscard]] double automaticOverlap(Instant start, Instant end) const;

    // Start and stop

    void loadSettings();
    void start();
    void stop();

    // Navigation

    void setScreen(SidebarItem screen);
    void setSelectedActivityId(std::optional<ActivityId> id);
    void setManualDraft(std::optional<ManualDraft> draft);
    void shiftDay(int days);
    void goToToday();

    // Recording and settings

    void toggleTracking();
    void setIdleMinutes(int minutes);
    void setKeepAliveEnabled(bool enabled);
    void setLaunchAtLogin(bool enabled);
    void excludeApp(const QString& bundleId, const QString& name);
    void includeApp(const QString& bundleId);
    void setWelcomeShown();
    void setThemeChoice(ThemeChoice choice);
    void setWindowPlace(const QMap<QString, QString>& place);

    // The system

    void requestAccessibility();
    void refreshAccessibility(); // and all that the session can tell
    void openAccessibilitySettings();
    void openAddress(const QUrl& address);
    void openPage(const QString& path); // of the help
    void openDataFolder();
    /// Asks whether a newer version can be installed; `answered` is called once, later.
    void checkForUpdates(std::function<void(const UpdateAnswer&)> answered);

    // Errors

    void setErrorMessage(const QString& text);
    void clearErrorMessage();

    // Entries. Every write ends with a full reload, and a failure becomes the error message.

    /// Sets the draft that corrects an entry made by hand. It has the stored times, also where the day shows
    /// only a part of them.
    void correctEntry(const Activity& shown);
    void saveManualDraft(const ManualDraft& draft);
    void deleteActivity(ActivityId id);
    void assignProject(std::optional<ProjectId> projectId, std::span<const ActivityId> ids);
    void setTag(TagId tagId, std::span<const ActivityId> ids, bool on);
    /// The tag is set by hand when it is not yet, also where a rule gives it.
    void toggleTag(TagId tagId, const Activity& activity);

    /// False when the new category or the rule could not be made and nothing was done: the sheet stays open.
    bool classify(const UnassignedGroup& group, const Classification& classification);

    // Categories, rules and suggestions

    void updateCategory(CategoryKind kind, RowId id, const QString& name, const QString& colorHex);
    /// None for a blank name, which does nothing, and after a failure.
    std::optional<RowId> createCategory(CategoryKind kind, const QString& name,
                                        const std::optional<QString>& colorHex = {});
    void deleteCategory(CategoryKind kind, RowId id);
    void updateRule(const Rule& rule);
    /// False after a failure.
    bool addRule(const RuleTarget& target, RuleField field, RuleOperator op, const QString& value);
    void deleteRule(RuleId id);
    void acceptSuggestion(const RuleSuggestion& shown);
    void dismissSuggestion(const RuleSuggestion& shown);

    struct NoteSaving {
        bool isSaved = false;
        std::optional<DailyNote> other; // for which it was not
    };
    /// For the day of that key, for the selected one may change while its note is written. An empty text
    /// clears the note. It replaces the text that the writer has `seen`, and no other.
    NoteSaving saveDayNote(const QString& day, const QString& text, const QString& seen);

Q_SIGNALS:
    void userPausedChanged();
    void screenChanged();
    void selectedDayChanged();
    void selectedActivityIdChanged();
    void manualDraftChanged();
    void projectsChanged();
    void tagsChanged();
    void rulesChanged();
    void suggestionsChanged();
    void suggestionImpactsChanged();
    void dayNoteChanged();
    void dayItemsChanged();
    void todayTotalChanged();
    void isTrackingChanged();
    void currentSampleChanged();
    void accessibilityGrantedChanged();
    void abilitiesChanged(); // and the words
    void whyUnseenChanged();
    void errorMessageChanged();
    void revisionChanged();
    void idleMinutesChanged();
    void keepAliveEnabledChanged();
    void excludedAppsChanged();
    void launchAtLoginChanged();
    void themeChoiceChanged();

private:
    /// What may fail again and again for one and the same cause.
    enum class Source { action, lists, day, items };

    /// Assigns and notifies when the value is another one; returns whether it was.
    template<typename Field, typename Value>
    bool assign(Field& field, Value&& value, void (AppModel::*changed)()) {
        if (field == value) {
            return false;
        }
        field = std::forward<Value>(value);
        Q_EMIT(this->*changed)();
        return true;
    }

    void onTrackerUpdate();
    void watch();
    void followCalendar();
    void reportMove();

    void reload();
    void reloadDay();
    void readLists();
    void readDay();
    void updateImpacts();
    void renewImpacts();
    [[nodiscard]] QHash<SuggestionId, double> impactsSince(Instant from);
    [[nodiscard]] double readTodayTotal() const;
    [[nodiscard]] Interval dayFrom(Instant start) const;
    void selectDay(Instant day);

    void report(Source source, const std::optional<QString>& failure);
    void forgetFailures() { m_reportedCauses.fill({}); }

    using Write = std::function<void(Repository&)>;
    bool attempt(const Write& body);
    void reloadAfterAttempt();
    bool write(const Write& body);
    [[nodiscard]] std::optional<NewCategory> newCategory(CategoryKind kind, const QString& name) const;
    bool classifyAnew(const UnassignedGroup& group, const Classification& classification);
    [[nodiscard]] ActivityId writeDraft(Repository& repository, const ManualDraft& draft) const;
    void restartSession();

    void mirrorTracking();
    void refreshWhyUnseen();
    void setExcludedApps(QMap<QString, QString> apps);
    void applyLaunchAtLogin();
    void loadThemeChoice();
    void tryPlatform(const std::function<void()>& body, const QString& prefix = {});

    Environment m_environment;
    std::unique_ptr<Repository> m_repository;
    Platform& m_platform;
    Tracker m_tracker; // after the store, so that it goes first
    QTimer m_watchTimer;

    bool m_userPaused = false;
    SidebarItem m_screen;
    Instant m_selectedDay;
    std::optional<ActivityId> m_selectedActivityId;
    std::optional<ManualDraft> m_manualDraft;
    std::vector<Project> m_projects;
    std::vector<Tag> m_tags;
    std::vector<Rule> m_rules;
    std::vector<RuleSuggestion> m_suggestions;
    QHash<SuggestionId, double> m_suggestionImpacts;
    std::optional<DailyNote> m_dayNote;
    std::vector<ResolvedActivity> m_dayItems;
    double m_todayTotal = 0;
    bool m_isTracking = false;
    std::optional<Sample> m_currentSample;
    bool m_accessibilityGranted = false;
    Abilities m_abilities;
    SystemWords m_words;
    QString m_whyUnseen;
    std::optional<QString> m_errorMessage;
    std::int64_t m_revision = 0;
    int m_idleMinutes = 3;
    bool m_keepAliveEnabled = true;
    QMap<QString, QString> m_excludedApps;
    bool m_launchAtLogin = false;
    ThemeChoice m_themeChoice = ThemeChoice::system;

    Instant m_shownDay{};                  // whose items and note are held
    std::vector<Activity> m_dayActivities; // what the day's items were resolved from
    std::vector<Rule> m_dayRules;
    Instant m_lastReload{}; // of the day
    Instant m_todayAtReload{};
    std::int64_t m_lastDataVersion;
    bool m_isReloadDue = false;           // for a load that failed
    bool m_hasMoved = false;              // the database file, at the last look
    std::optional<Instant> m_impactsFrom; // the days that the impacts cover; none when they are outdated
    Instant m_impactsRead{};
    std::int64_t m_impactsRevision = 0;                     // of the day, when they were read
    std::array<std::optional<QString>, 4> m_reportedCauses; // by Source; none after a success
    std::optional<Interval> m_failedInterval;               // of the last loadItems that failed
};

} // namespace kestu
