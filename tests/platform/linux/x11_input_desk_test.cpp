// SPDX-License-Identifier: GPL-3.0-or-later
//
// On a real X server: what a person does counts as input, what programs do to the idle counter does not.
#include "platform/linux/X11Input.h"

#include "support/Desk.h"
#include "support/PrivateBus.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <xcb/screensaver.h>

#include <thread>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::waitUntil;

/// How often the process is woken by one connection while this lives.
class WakeUps final : public QObject {
public:
    explicit WakeUps(const Xcb& xcb)
        : m_descriptor(xcb_get_file_descriptor(xcb.connection())) {
        qApp->installEventFilter(this);
    }

    int count = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* notifier = qobject_cast<QSocketNotifier*>(watched);
        count += event->type() == QEvent::SockAct && notifier && notifier->socket() == m_descriptor ? 1 : 0;
        return false;
    }

private:
    int m_descriptor;
};

class X11InputTest : public testing::Test {
protected:
    /// What every program sees.
    [[nodiscard]] double counter() const {
        const XcbReply<xcb_screensaver_query_info_reply_t> info(xcb_screensaver_query_info_reply(
            m_programs->connection(),
            xcb_screensaver_query_info(m_programs->connection(), m_programs->root()), nullptr));
        return info->ms_since_user_input / 1000.0;
    }

    [[nodiscard]] double idle() { return m_input.secondsSinceLastInput().count(); }

    void programResetsTheCounter() const {
        test::outputOf(u"xset"_s, {u"s"_s, u"reset"_s});
        EXPECT_LT(counter(), 0.4);
    }

    static void moveMouseALot() {
        QStringList moves;
        for (int x = 0; x < 50; ++x) {
            moves << u"mousemove_relative"_s << u"1"_s << u"1"_s;
        }
        test::outputOf(u"xdotool"_s, moves);
    }

    QString m_why;
    std::unique_ptr<Xcb> m_programs = Xcb::connect(m_why);
    std::unique_ptr<Xcb> m_ours = Xcb::connect(m_why);
    X11Input m_input{*m_ours, Seconds{0.5}};
};

TEST_F(X11InputTest, CountsWhatAPersonDoesAndNotWhatAProgramResets) {
    int x = 0;
    ASSERT_TRUE(waitUntil([&] {
        test::moveMouse(++x, 40);
        return idle() < 0.3;
    }));
    const QStringList deeds[] = {{u"key"_s, u"a"_s},
                                 {u"click"_s, u"1"_s},
                                 {u"mousemove_relative"_s, u"9"_s, u"9"_s},
                                 {u"mousemove"_s, u"500"_s, u"50"_s}};
    for (const QStringList& deed : deeds) {
        SCOPED_TRACE(deed.first().toStdString());
        std::this_thread::sleep_for(700ms);
        EXPECT_GE(idle(), 0.65) << "not long after an input the counter is believed";
        EXPECT_LT(idle(), 5);
        for (int reset = 0; reset < 2; ++reset) {
            const double before = idle();
            programResetsTheCounter();
            std::this_thread::sleep_for(100ms);
            EXPECT_GE(idle(), before + 0.1);
        }
        test::outputOf(u"xdotool"_s, deed);
        EXPECT_LT(idle(), 0.3);
    }
}

TEST_F(X11InputTest, SeesAnInputBetweenTwoQuestionsHoweverFarApart) {
    EXPECT_GE(idle(), 0);
    moveMouseALot();
    EXPECT_LT(idle(), 0.3);
    std::this_thread::sleep_for(600ms);
    moveMouseALot(); // nobody has listened since the last question
    const double seen = idle();
    EXPECT_LT(seen, 0.5);
    std::this_thread::sleep_for(300ms);
    programResetsTheCounter();
    EXPECT_GE(idle(), seen + 0.3) << "from the question on a reset is known for one";
}

TEST_F(X11InputTest, IsWokenOnceByAPersonWhoGoesOn) {
    test::moveMouse(10, 10);
    EXPECT_LT(idle(), 5);
    WakeUps wakeUps(*m_ours);
    moveMouseALot();
    EXPECT_TRUE(waitUntil([&] { return wakeUps.count > 0; }, 2000)) << "it did listen";
    waitUntil([] { return false; }, 100);
    wakeUps.count = 0;
    moveMouseALot();
    waitUntil([] { return false; }, 100);
    EXPECT_EQ(wakeUps.count, 0);
}

} // namespace
} // namespace kestu
