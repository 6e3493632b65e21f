// SPDX-License-Identifier: GPL-3.0-or-later
//
// A life at the desk, played at random for KESTU_SIMULATED_HOURS hours against a model that is simple enough
// to be believed: windows, titles, absences, films, locks, sleeps that nobody announces, pauses, clocks that
// are set, entries by hand and by another process, writes that fail, and kills. What is stored in the end
// must be what the model claims: no second twice, none lost without a failed write or a kill, no absence
// kept.
#include "capture/Tracker.h"

#include "support/FakePlatform.h"
#include "support/TemporaryStore.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

constexpr double maxGap = 10;
constexpr double awayAfter = 180;
constexpr double filmLimit = 10'800;

struct Span {
    double from = 0;
    double to = 0;
};
using Spans = std::vector<Span>;

Spans joined(Spans spans) {
    std::ranges::sort(spans, {}, &Span::from);
    Spans result;
    for (const Span& span : spans) {
        if (!result.empty() && span.from <= result.back().to + 1e-6) {
            result.back().to = std::max(result.back().to, span.to);
        } else if (span.to > span.from) {
            result.push_back(span);
        }
    }
    return result;
}

Spans without(Spans spans, const Spans& holes) {
    for (const Span& hole : holes) {
        Spans left;
        for (const Span& span : spans) {
            left.push_back({span.from, std::min(span.to, hole.from)});
            left.push_back({std::max(span.from, hole.to), span.to});
        }
        std::erase_if(left, [](const Span& span) { return span.to <= span.from; });
        spans = std::move(left);
    }
    return spans;
}

double lengthOf(const Spans& spans) {
    double sum = 0;
    for (const Span& span : spans) {
        sum += span.to - span.from;
    }
    return sum;
}

/// What must be stored. It knows who was in front from when on, by the seconds that pass, and claims at each
/// look, on the wall clock, the time since the look before.
class Model {
public:
    /// From now on this is in front; empty for what is not recorded.
    void front(double uptime, const QString& title) { m_fronts.emplace_back(uptime, title); }

    void look(double uptime, double wall, double idle, bool isKept) {
        m_present = std::max(m_present, uptime - idle);
        if (idle >= awayAfter && !isKept) {
            claimUntil(uptime, std::min(wall, wall - uptime + m_present));
            leave();
            return;
        }
        if (idle >= awayAfter) {
            m_present = uptime;
        }
        claimUntil(uptime, wall);
        if (idle >= filmLimit) {
            m_cursor.reset();
        } else if (!m_cursor) {
            const bool isWritten = m_claimed > wall && m_claimed - wall <= maxGap;
            beginAt(isWritten && !isHidden() ? m_claimed : wall);
        }
        settle([this](const Claim& claim) { return claim.to <= claim.origin + m_present; });
    }

    /// Lock, announced sleep, pause: the session is over.
    void end(double uptime, double wall) {
        claimUntil(uptime, wall);
        m_cursor.reset();
        settle();
    }

    void kill(double wall) {
        explain({std::min(wall, m_cursor.value_or(wall)) - 0.01, wall + 0.01});
        m_cursor.reset();
        m_present = -1e9;
        settle();
    }

    void begin() { m_present = -1e9; }
    void explain(const Span& span) { m_explained.push_back(span); }
    void enter(const Span& span) { m_entries.push_back(span); }
    [[nodiscard]] double cursor(double wall) const { return std::min(wall, m_cursor.value_or(wall)); }

    [[nodiscard]] std::map<QString, Spans> claims() {
        settle();
        return m_settled;
    }
    [[nodiscard]] const Spans& explained() const { return m_explained; }
    [[nodiscard]] const Spans& entries() const { return m_entries; }

private:
    struct Claim {
        QString title;
        double from = 0;
        double to = 0;
        double origin = 0; // of the wall clock
    };

    void claimUntil(double uptime, double wall) {
        claimSinceLastLook(uptime, wall);
        m_fronts.erase(m_fronts.begin(), m_fronts.end() - 1);
    }

    void claimSinceLastLook(double uptime, double wall) {
        if (!m_cursor) {
            return;
        }
        const double gap = wall - *m_cursor;
        if (gap > 0 && gap <= maxGap) {
            claimFronts(wall - uptime, wall);
        }
        if (gap < -maxGap) {
            beginAt(wall);
        } else if (gap > 0 || isHidden()) {
            m_cursor = wall;
        }
    }

    void beginAt(double wall) {
        m_cursor = wall;
        m_claimed = isHidden() ? m_claimed : wall;
    }

    [[nodiscard]] bool isHidden() const { return m_fronts.back().second.isEmpty(); }

    void claimFronts(double origin, double wall) {
        for (size_t i = 0; i < m_fronts.size(); ++i) {
            const auto& [since, title] = m_fronts[i];
            const double until = i + 1 < m_fronts.size() ? origin + m_fronts[i + 1].first : wall;
            const double written = m_claimed - wall <= maxGap ? m_claimed : -1e9;
            const double came = i == 0 ? *m_cursor : origin + since; // the first was there at the last look
            const Span span{std::max({*m_cursor, came, written}), std::min(wall, until)};
            if (span.to > span.from && !title.isEmpty()) {
                m_session.push_back({title, span.from, span.to, origin});
                m_claimed = span.to;
            }
        }
    }

    void leave() {
        for (Claim& claim : m_session) {
            claim.to = std::min(claim.to, claim.origin + m_present);
        }
        std::erase_if(m_session, [](const Claim& claim) { return claim.to <= claim.from; });
        m_claimed = m_session.empty() ? m_claimed : m_session.back().to;
        m_cursor.reset();
        settle();
    }

    /// No absence takes these away any more.
    template<typename IsOver>
    void settle(IsOver isOver) {
        for (const Claim& claim : m_session) {
            if (isOver(claim)) {
                m_settled[claim.title].push_back({claim.from, claim.to});
            }
        }
        std::erase_if(m_session, isOver);
    }
    void settle() {
        settle([](const Claim&) { return true; });
    }

    std::vector<std::pair<double, QString>> m_fronts{{-1e9, QString()}};
    std::vector<Claim> m_session; // what an absence may still take away
    std::map<QString, Spans> m_settled;
    Spans m_explained;
    Spans m_entries;
    std::optional<double> m_cursor; // the wall's, at the last look of this session
    double m_claimed = -1e9;
    double m_present = -1e9; // uptime
};

/// Plays the life: everything that happens goes to the tracker's platform and to the model alike.
class Life {
public:
    explicit Life(unsigned seed)
        : m_random(seed) {
        m_tracker->start();
        show(nextTitle());
    }

    void play(double hours) {
        const double end = uptime() + hours * 3600;
        while (uptime() < end) {
            happen();
        }
        m_failingUntil = 0;
        pass(3);
        m_tracker->stop();
        m_model.end(uptime(), wall());
    }

    [[nodiscard]] std::map<QString, Spans> stored() const {
        std::map<QString, Spans> rows;
        for (const Activity& row : m_store->activitiesOverlapping(instantAt(0), instantAt(1e11))) {
            if (!row.isManual) {
                rows[row.title].push_back({epochSeconds(row.start), epochSeconds(row.end)});
            }
        }
        return rows;
    }
    [[nodiscard]] Model& model() { return m_model; }

private:
    [[nodiscard]] double uptime() { return m_clock.uptime()().count(); }
    [[nodiscard]] double wall() const { return epochSeconds(m_clock.now); }
    double between(double from, double to) { return std::uniform_real_distribution(from, to)(m_random); }
    bool chance(double probability) { return between(0, 1) < probability; }
    QString nextTitle() { return QString::number(++m_titles); }

    /// Something happens, and then a while passes, with or without the user.
    void happen() {
        switch (std::uniform_int_distribution(0, 15)(m_random)) {
        case 0:
            return leaveFor(between(20, 1500));
        case 1:
            return hold(&SystemEvents::screenLocked, &SystemEvents::screenUnlocked, between(1, 3000));
        case 2:
            return chance(0.5) ? hold(&SystemEvents::willSleep, &SystemEvents::didWake, between(1, 9000))
                               : sleepUnheard(between(20, 9000));
        case 3:
            return chance(0.3) ? pause(between(1, 4000)) : kill();
        case 4:
            return chance(0.5) ? setClock(between(-9, 9)) : setClock(between(-4000, 4000));
        case 5:
            return watchFilm(between(60, 12'000));
        case 6:
            return failFor(between(1, 40));
        case 7:
        case 8:
            return enter();
        default:
            if (chance(0.3)) {
                retitle();
            } else {
                switchWindow();
            }
            work(between(1, 400));
        }
    }

    // Time

    /// Looks every few seconds, as the timer does, and at once at the end.
    void pass(double seconds) {
        while (seconds > 0) {
            const double step = std::min(seconds, between(2, 9.5));
            m_clock.now += Seconds{step};
            seconds -= step;
            look();
        }
    }

    void work(double seconds) {
        while (seconds > 0) {
            pass(std::min(seconds, 60.0));
            touch();
            seconds -= 60;
        }
    }

    void touch() { m_lastInput = uptime(); }

    void look() {
        if (m_failingUntil != 0 && uptime() > m_failingUntil) {
            m_failingUntil = 0;
            m_store.execute(
                u"DROP TRIGGER fail_insert; DROP TRIGGER fail_update; DROP TRIGGER fail_delete"_s);
            m_explainedFrom = std::min(m_explainedFrom, wall());
            tell();
            m_model.explain({m_explainedFrom - 0.01, wall() + 0.01});
            return;
        }
        tell();
    }

    void tell() {
        m_platform.fakeInput.idle = Seconds{uptime() - m_lastInput};
        if (m_platform.fakeWorkspace.front) {
            m_platform.fakeWorkspace.front->inFrontFor = Seconds{uptime() - m_cameAt};
            m_platform.fakeWorkspace.front->titledFor = Seconds{uptime() - m_titledAt};
        }
        Q_EMIT m_platform.events.applicationActivated();
        const bool isDecided = uptime() - m_cameAt >= 0.1 - 1e-9;
        if (m_isHeld || !m_tracker->isRunning() || !isDecided) {
            return;
        }
        m_model.look(uptime(), wall(), uptime() - m_lastInput, !m_platform.fakeAssertions.types->isEmpty());
    }

    // Windows

    void show(const QString& title) {
        m_cameAt = m_titledAt = uptime();
        m_platform.fakeWorkspace.front =
            FrontmostApplication{.bundleId = u"app"_s, .localizedName = u"App"_s, .processId = 1};
        m_platform.fakeWorkspace.title = title;
        m_model.front(uptime(), title);
        look();
        m_clock.now += Seconds{0.1};
        look();
    }

    void switchWindow() {
        if (chance(0.3)) {
            flash();
        }
        if (chance(0.1)) {
            return hide();
        }
        if (chance(0.1)) {
            return showNothing();
        }
        show(chance(0.4) ? QString::number(std::max(1, m_titles - 3)) : nextTitle());
    }

    /// A panel, a launcher: in front for less than a tenth of a second.
    void flash() {
        m_cameAt = m_titledAt = uptime();
        m_platform.fakeWorkspace.title = u"flash"_s;
        look();
        m_clock.now += Seconds{between(0.01, 0.09)};
    }

    void hide() {
        m_cameAt = m_titledAt = uptime();
        m_platform.fakeWorkspace.front =
            FrontmostApplication{.bundleId = u"secret"_s, .localizedName = u"Secret"_s, .processId = 2};
        m_model.front(uptime(), {});
        look();
        m_clock.now += Seconds{0.1};
        look();
    }

    void showNothing() {
        const bool isBridged = chance(0.5);
        m_cameAt = m_titledAt = -1e9;
        const QString before = m_platform.fakeWorkspace.title;
        const bool wasHidden =
            m_platform.fakeWorkspace.front && m_platform.fakeWorkspace.front->bundleId == u"secret"_s;
        m_platform.fakeWorkspace.front.reset();
        if (isBridged && !wasHidden && !before.isEmpty()) {
            Q_EMIT m_platform.events.applicationActivated();
            m_clock.now += Seconds{between(0.1, 0.5)};
            return show(nextTitle());
        }
        m_model.front(uptime(), {});
        Q_EMIT m_platform.events.applicationActivated();
        m_clock.now += Seconds{0.7};
        look();
        work(between(1, 20));
        touch();
        show(nextTitle());
    }

    void retitle() {
        if (!m_platform.fakeWorkspace.front || m_platform.fakeWorkspace.front->bundleId != u"app"_s) {
            return show(nextTitle());
        }
        pass(2);
        m_titledAt = uptime();
        m_platform.fakeWorkspace.title = nextTitle();
        m_model.front(uptime(), m_platform.fakeWorkspace.title);
        m_clock.now += Seconds{0.25};
        look();
    }

    // The user

    void leaveFor(double seconds) {
        const double back = uptime() + seconds;
        while (uptime() < back) {
            pass(between(1, 60));
            if (chance(0.3)) {
                retitle();
            }
        }
        touch();
        look();
    }

    void watchFilm(double seconds) {
        touch();
        m_platform.fakeAssertions.types = {assertionType::preventUserIdleDisplaySleep.toString()};
        pass(seconds);
        m_platform.fakeAssertions.types = QStringList();
        if (chance(0.5)) {
            touch();
        }
        look();
    }

    void hold(void (SystemEvents::*begin)(), void (SystemEvents::*end)(), double seconds) {
        Q_EMIT(m_platform.events.*begin)();
        m_model.end(uptime(), wall());
        m_isHeld = true;
        pass(seconds);
        m_isHeld = false;
        touch();
        m_platform.fakeInput.idle = Seconds{0};
        m_platform.fakeWorkspace.whileAsked = nullptr;
        refreshAges();
        Q_EMIT(m_platform.events.*end)();
        m_model.look(uptime(), wall(), 0, false);
    }

    void refreshAges() {
        if (m_platform.fakeWorkspace.front) {
            m_platform.fakeWorkspace.front->inFrontFor = Seconds{uptime() - m_cameAt};
            m_platform.fakeWorkspace.front->titledFor = Seconds{uptime() - m_titledAt};
        }
    }

    void sleepUnheard(double seconds) {
        m_clock.now += Seconds{seconds};
        look();
    }

    void pause(double seconds) {
        m_tracker->stop();
        m_model.end(uptime(), wall());
        m_clock.now += Seconds{seconds};
        touch();
        m_platform.fakeInput.idle = Seconds{0};
        refreshAges();
        m_model.begin();
        m_tracker->start();
        m_model.look(uptime(), wall(), 0, false);
    }

    void kill() {
        m_clock.now += Seconds{between(0, 3)};
        m_tracker = newTracker();
        m_model.kill(wall());
        pause(5);
    }

    void setClock(double seconds) {
        const double before = wall();
        m_clock.setBy(Seconds{seconds});
        if (std::abs(seconds) <= maxGap) { // seconds that nobody has lived, or that count for two
            m_model.explain({std::min(before, wall()) - 0.01, std::max(before, wall()) + 0.01});
        }
        look();
    }

    // The store

    void failFor(double seconds) {
        if (m_failingUntil != 0) {
            return;
        }
        m_failingUntil = uptime() + seconds;
        m_explainedFrom = m_model.cursor(wall());
        for (const char* write : {"insert", "update", "delete"}) {
            m_store.execute(
                u"CREATE TRIGGER fail_%1 BEFORE %1 ON activity BEGIN SELECT RAISE(ABORT, 'full'); END"_s.arg(
                    QLatin1String(write)));
        }
        switchWindow();
        pass(seconds + 10);
    }

    /// An entry made by hand, in this program or by another process, over what was or will be recorded.
    void enter() {
        if (m_failingUntil != 0) {
            return;
        }
        touch();
        look();
        const double from = wall() + between(-600, 100);
        const ManualEntry entry{.start = instantAt(from),
                                .end = instantAt(from + between(1, 400)),
                                .title = u"entry"_s,
                                .projectId = {},
                                .tagIds = {}};
        const bool isOurs = chance(0.5);
        Repository& writer = isOurs ? *m_store.repository : *m_other;
        writer.database().transaction([&] { return writer.insertManualEntry(entry); });
        m_model.enter({epochSeconds(entry.start), epochSeconds(entry.end)});
        m_clock.now += Seconds{between(0, 2)};
        touch();
        if (isOurs) {
            refreshAges();
            m_platform.fakeInput.idle = Seconds{0};
            m_tracker->resetSession();
            m_model.look(uptime(), wall(), 0, false);
        } else {
            look();
        }
    }

    [[nodiscard]] std::unique_ptr<Tracker> newTracker() {
        auto tracker =
            std::make_unique<Tracker>(*m_store.repository, m_platform, m_clock.clock(), m_clock.uptime());
        tracker->policy.excludedBundleIds = {u"secret"_s};
        return tracker;
    }

    std::mt19937 m_random;
    test::TemporaryStore m_store;
    std::unique_ptr<Repository> m_other = m_store.open(); // the other process's
    test::FakeClock m_clock;
    test::FakePlatform m_platform;
    std::unique_ptr<Tracker> m_tracker = newTracker();
    Model m_model;
    double m_lastInput = uptime(); // uptimes
    double m_cameAt = uptime();
    double m_titledAt = uptime();
    double m_failingUntil = 0;
    double m_explainedFrom = 0; // the wall's
    int m_titles = 0;
    bool m_isHeld = false;
};

std::string described(const Spans& spans) {
    std::string text;
    for (const Span& span : spans) {
        text += QStringLiteral(" %1-%2")
                    .arg(span.from - 1'772'600'000, 0, 'f', 2)
                    .arg(span.to - 1'772'600'000, 0, 'f', 2)
                    .toStdString();
    }
    return text;
}

TEST(SimulatedHours, StoreWhatTheModelClaims) {
    constexpr int lives = 20;
    for (unsigned seed = 1; seed <= lives; ++seed) {
        Life life(seed);
        life.play(double{KESTU_SIMULATED_HOURS} / lives);
        auto claims = life.model().claims();
        auto stored = life.stored();
        const Spans& entries = life.model().entries();
        for (const auto& [title, rows] : stored) {
            EXPECT_FALSE(title == u"flash"_s);
            // Where the clock was set back by much, the model claims the same seconds of it twice, too.
            EXPECT_LE(lengthOf(without(rows, entries)), lengthOf(without(claims[title], entries)) + 1e-3)
                << "seed " << seed << ", title " << title.toStdString() << ", stored twice";
            const Spans extra = without(without(joined(rows), joined(claims[title])), entries);
            EXPECT_NEAR(lengthOf(extra), 0, 1e-3) << "seed " << seed << ", title " << title.toStdString()
                                                  << ", stored too much:" << described(extra);
        }
        for (const auto& [title, claimed] : claims) {
            const Spans lost = without(without(without(joined(claimed), joined(stored[title])), entries),
                                       life.model().explained());
            EXPECT_NEAR(lengthOf(lost), 0, 1e-3)
                << "seed " << seed << ", title " << title.toStdString() << ", lost:" << described(lost);
        }
    }
}

} // namespace
} // namespace kestu
