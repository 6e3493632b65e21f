// SPDX-License-Identifier: GPL-3.0-or-later
//
// Eight hours of a desktop played in seconds: real store and model, a clock and a desktop of the test's.
#include "app/AppModel.h"
#include "support/FakePlatform.h"
#include "support/TemporaryStore.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <malloc.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr int tick = 2; // seconds
constexpr int workday = 8 * 3600;
constexpr int awayMinute = 50; // of every hour, for seven minutes, then the screen locks for two
constexpr int lockMinute = 57;
constexpr int unlockMinute = 59;
constexpr int pauseBegin = 3 * 3600 + 600;
constexpr int pauseEnd = 3 * 3600 + 1200;
constexpr double absent = 8 * 9 * 60 + (pauseEnd - pauseBegin);

class Workday final {
public:
    Workday() {
        m_platform.fakeWorkspace.front = {u"editor"_s, u"エディタ"_s, 1};
        m_model = std::make_unique<AppModel>(
            m_store.open(), m_platform,
            AppModel::Environment{
                .clock = m_clock.clock(),
                .calendar =
                    [] { return Calendar{.zone = QTimeZone("Asia/Tokyo"), .firstWeekday = Qt::Sunday}; },
                .screen = {},
                .watchInterval = 1h,
                .assistantServer = {},
                .uptime = m_clock.uptime()});
        m_start = m_clock.now = m_model->startOfToday() + 9h;
        m_model->loadSettings();
        m_model->start();
    }

    void playUntil(int second) {
        for (; m_second < second; m_second += tick) {
            m_clock.now = m_start + Seconds{static_cast<double>(m_second)};
            play();
        }
        m_clock.now = m_start + Seconds{static_cast<double>(second)};
    }

    [[nodiscard]] AppModel& model() { return *m_model; }
    [[nodiscard]] const test::TemporaryStore& store() const { return m_store; }

private:
    void play() {
        const int ofHour = m_second % 3600;
        const bool isAway = ofHour > awayMinute * 60 && ofHour < unlockMinute * 60;
        m_platform.fakeInput.idle = Seconds{isAway ? ofHour - awayMinute * 60.0 : 0.0};
        if (!isAway) {
            m_platform.fakeWorkspace.title = u"文書 %1 - 下書き"_s.arg(m_second / 40);
        }
        if (ofHour == lockMinute * 60) {
            Q_EMIT m_platform.events.screenLocked();
        }
        if (ofHour == unlockMinute * 60) {
            Q_EMIT m_platform.events.screenUnlocked();
        }
        if (m_second == pauseBegin || m_second == pauseEnd) {
            m_model->toggleTracking();
        }
        Q_EMIT m_platform.events.applicationActivated(); // looks at once, as the timer does every two seconds
        if (m_second % 60 == 0) {
            QCoreApplication::processEvents();
        }
    }

    test::TemporaryStore m_store;
    test::FakePlatform m_platform;
    test::FakeClock m_clock;
    std::unique_ptr<AppModel> m_model;
    Instant m_start{};
    int m_second = 0;
};

TEST(WorkdayTest, MissesNoSecondAndKeepsNothingButTheDay) {
    Workday day;
    day.playUntil(2 * 3600);
    const std::size_t itemsBefore = day.model().dayItems().size();
    const auto bytesBefore = mallinfo2().uordblks;
    day.playUntil(workday);
    day.model().stop();

    EXPECT_EQ(day.store().dump(u"SELECT sum(end - start) FROM activity"_s),
              QString::number(workday - absent, 'f', 1).toStdString())
        << "recorded, idle, locked and paused time together are the eight hours";
    EXPECT_EQ(day.store().dump(u"SELECT count(*) FROM activity a, activity b WHERE a.id < b.id AND a.end > "
                               "b.start AND b.end > a.start"_s),
              "0")
        << "nothing is recorded twice";
    EXPECT_EQ(day.model().todayTotal(), workday - absent);
    EXPECT_FALSE(day.model().errorMessage());

    constexpr std::size_t bytesAnItem = 2000;
    const std::size_t items = day.model().dayItems().size() - itemsBefore;
    EXPECT_GT(items, 300);
    EXPECT_LT(mallinfo2().uordblks, bytesBefore + items * bytesAnItem + 200'000);
}

} // namespace
} // namespace kestu
