// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/WlrToplevels.h"

#include "platform/linux/wayland/Compositor.h"

#include <QSignalSpy>

#include <wlr-foreign-toplevel-management-server.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::waitUntil;

constexpr std::uint32_t minimised = ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MINIMIZED;
constexpr std::uint32_t activated = ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED;
constexpr std::uint32_t maximised = ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MAXIMIZED;

class WlrToplevelsTest : public CompositorTest {
protected:
    /// A compositor with window 0 in front of window 1.
    void open(int version = 3) {
        start({{Fake::manager, version}});
        m_connection.open();
        ASSERT_EQ(m_windows.ability().kind, Ability::Kind::yes);
        does([](Fake& fake) {
            fake.open(0, "org.example.A", "窓 A", {activated});
            fake.open(1, "org.example.B", "窓 B", {});
        });
    }

    /// "ID TITLE" of the window in front.
    QString front() {
        const auto seen = m_windows.front();
        return seen ? seen->facts.wmClass + u' ' + seen->title : u"none"_s;
    }

    SwayTree m_noSway{QString()};
    WlrToplevels m_windows{m_connection, m_noSway};
    QSignalSpy m_changed{&m_windows, &WindowSource::frontChanged};
    QSignalSpy m_titled{&m_windows, &WindowSource::titleChanged};
    QSignalSpy m_ability{&m_windows, &WindowSource::abilityChanged};
};

TEST_F(WlrToplevelsTest, DecidesAfterTheWholeBatch) {
    open();
    EXPECT_EQ(front(), u"org.example.A 窓 A"_s);
    const std::pair<const char*, std::function<void(Fake&)>> rows[] = {
        {"the old one first",
         [](Fake& fake) {
             fake.states(0, {});
             fake.done(0);
             fake.states(1, {activated, maximised});
             fake.done(1);
         }},
        {"the new one first",
         [](Fake& fake) {
             fake.states(0, {activated});
             fake.done(0);
             fake.states(1, {});
             fake.done(1);
         }},
        {"the old one never", [](Fake& fake) {
             fake.states(1, {activated});
             fake.done(1);
         }}};
    int times = 0;
    for (const auto& [order, action] : rows) {
        waitUntil([] { return true; });
        m_changed.clear();
        does(action);
        EXPECT_EQ(front(), ++times % 2 == 1 ? u"org.example.B 窓 B"_s : u"org.example.A 窓 A"_s) << order;
        EXPECT_TRUE(waitUntil([&] { return m_changed.size() == 1; })) << order;
    }
    EXPECT_EQ(m_titled.size(), 0);
}

TEST_F(WlrToplevelsTest, TakesNoWindowWhereNoneIsSeen) {
    const std::pair<const char*, std::function<void(Fake&)>> rows[] = {
        {"an empty workspace",
         [](Fake& fake) {
             fake.states(0, {});
             fake.done(0);
         }},
        {"minimised in two steps",
         [](Fake& fake) {
             fake.states(0, {minimised, activated});
             fake.states(0, {minimised});
             fake.done(0);
         }},
        {"minimised and active",
         [](Fake& fake) {
             fake.states(0, {minimised, activated});
             fake.done(0);
         }},
        {"closed", [](Fake& fake) { fake.close(0); }}};
    open();
    for (const auto& [what, action] : rows) {
        EXPECT_EQ(front(), u"org.example.A 窓 A"_s) << what;
        waitUntil([] { return true; });
        m_changed.clear();
        does(action);
        EXPECT_EQ(front(), u"none"_s) << what;
        EXPECT_TRUE(waitUntil([&] { return m_changed.size() == 1; })) << what;
        does([](Fake& fake) {
            fake.states(0, {activated});
            fake.done(0);
        });
    }
    EXPECT_EQ(front(), u"none"_s) << "it was closed for good";
    EXPECT_TRUE(awaitCount(Fake::window, 1));
}

TEST_F(WlrToplevelsTest, HasTimesOfTheWindowAndOfItsTitle) {
    open();
    const auto first = m_windows.front();
    EXPECT_EQ(first->titledSince, first->since);
    EXPECT_TRUE(waitUntil([&] { return m_changed.size() == 1; }));
    does([](Fake& fake) { fake.title(0, "half"); });
    EXPECT_EQ(front(), u"org.example.A 窓 A"_s) << "not said that it was all";
    does([](Fake& fake) { fake.done(0); });
    EXPECT_EQ(front(), u"org.example.A half"_s);
    EXPECT_TRUE(waitUntil([&] { return m_titled.size() == 1; }));
    EXPECT_EQ(m_windows.front()->since, first->since);
    EXPECT_GT(*m_windows.front()->titledSince, first->since);
    does([](Fake& fake) {
        fake.title(1, "behind");
        fake.done(1);
    });
    waitUntil([] { return true; });
    EXPECT_EQ(m_titled.size(), 1);
    EXPECT_EQ(m_changed.size(), 1);
}

TEST_F(WlrToplevelsTest, BearsWhateverNamesItIsGiven) {
    const QByteArray longTitle(3900, 'x');
    const struct {
        const char* appId;
        QByteArray title;
        QString front;
    } rows[] = {{nullptr, "早い", u" 早い"_s},
                {"\x01\x1b[31m\n", "t", u"[31m t"_s},
                {"\x02\x03", "t", u" t"_s},
                {"org.example.C", "\xff\xfe", u"org.example.C \uFFFD\uFFFD"_s},
                {"org.example.C", longTitle, u"org.example.C "_s + QString::fromLatin1(longTitle)}};
    open();
    int number = 2;
    for (const auto& row : rows) {
        does([&](Fake& fake) { fake.open(number, row.appId, row.title.constData(), {activated}); });
        EXPECT_EQ(front(), row.front);
        ++number;
    }
    does([&](Fake& fake) {
        fake.tell(Fake::window, 2, zwlr_foreign_toplevel_handle_v1_send_app_id, "late");
        fake.states(2, {});
        fake.done(2);
        fake.states(2, {activated});
        fake.done(2);
    });
    EXPECT_EQ(front(), u"late 早い"_s);
}

TEST_F(WlrToplevelsTest, OutlivesATitleThatNoMessageHolds) {
    open();
    const QByteArray title(1 << 20, 'x');
    does([&](Fake& fake) {
        fake.title(0, title.constData());
        fake.done(0);
    });
    // The library gives up those whom it cannot tell something, and ends their connection when they ask.
    EXPECT_TRUE(waitUntil([&] {
        does([](Fake& fake) { fake.open(5, "org.example.A", "short", {activated}); });
        return front() == u"org.example.A short"_s;
    }));
}

TEST_F(WlrToplevelsTest, CanTellNoLongerWhenTheListEndsAndAgainWhenItIsBack) {
    const std::pair<const char*, std::function<void()>> ends[] = {
        {"finished",
         [this] {
             does([](Fake& fake) {
                 fake.tell(Fake::manager, 0, zwlr_foreign_toplevel_manager_v1_send_finished);
                 fake.tell(Fake::manager, 0, wl_resource_destroy);
             });
         }},
        {"removed", [this] { does([](Fake& fake) { fake.remove(Fake::manager, 1); }); }},
        {"the compositor is gone", [this] { m_compositor.reset(); }}};
    open(1);
    for (const auto& [what, end] : ends) {
        end();
        EXPECT_TRUE(waitUntil([&] { return m_windows.ability().kind == Ability::Kind::no; })) << what;
        EXPECT_EQ(front(), u"none"_s) << what;
        if (m_compositor) {
            does([](Fake& fake) { fake.add(Fake::manager, 3); });
        } else {
            start({{Fake::manager, 3}});
        }
        EXPECT_TRUE(waitUntil([&] { return m_windows.ability().kind == Ability::Kind::yes; })) << what;
        ASSERT_TRUE(test::waitUntil([&] { return count(Fake::manager) >= 1; }));
        does([](Fake& fake) { fake.open(7, "org.example.A", "back", {activated}); });
        EXPECT_EQ(front(), u"org.example.A back"_s) << what;
    }
}

TEST_F(WlrToplevelsTest, CannotTellWhereNothingIsOffered) {
    start({{Fake::seat, 1}});
    m_connection.open();
    EXPECT_EQ(m_windows.ability().kind, Ability::Kind::no);
    EXPECT_EQ(front(), u"none"_s);
}

} // namespace
} // namespace kestu
