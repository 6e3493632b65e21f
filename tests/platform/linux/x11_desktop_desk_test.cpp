// SPDX-License-Identifier: GPL-3.0-or-later
//
// On a real X server with a window manager: what is in front, and the news of it.
#include "platform/Accessibility.h"
#include "platform/linux/DesktopEntries.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/X11Desktop.h"

#include "support/Desk.h"
#include "support/PrivateBus.h"

#include <QFileInfo>

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::waitUntil;

/// A window of this process, with just the properties that a test gives it.
class TestWindow final {
public:
    TestWindow(const Xcb& xcb, const QByteArray& wmClass, const QByteArray& title)
        : m_xcb(xcb)
        , m_id(xcb_generate_id(xcb.connection())) {
        xcb_create_window(xcb.connection(), XCB_COPY_FROM_PARENT, m_id, xcb.root(), 0, 0, 200, 100, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        // Its own word for its process, as inside a container.
        set("_NET_WM_PID", "CARDINAL", QByteArray("\1\0\0\0", 4), 32);
        set("WM_CLASS", "STRING", wmClass);
        set("WM_NAME", "STRING", title);
    }
    ~TestWindow() {
        xcb_destroy_window(m_xcb.connection(), m_id);
        xcb_flush(m_xcb.connection());
    }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    void set(const char* property, const char* type, const QByteArray& bytes, std::uint8_t bits = 8) const {
        xcb_change_property(m_xcb.connection(), XCB_PROP_MODE_REPLACE, m_id, m_xcb.atom(property),
                            m_xcb.atom(type), bits, static_cast<std::uint32_t>(8 * bytes.size() / bits),
                            bytes.constData());
        xcb_flush(m_xcb.connection());
    }

    void show() const {
        xcb_map_window(m_xcb.connection(), m_id);
        xcb_flush(m_xcb.connection());
    }

    [[nodiscard]] xcb_window_t id() const { return m_id; }

    void activate() const {
        test::outputOf(u"xdotool"_s, {u"windowactivate"_s, u"--sync"_s, QString::number(m_id)});
    }

private:
    const Xcb& m_xcb;
    xcb_window_t m_id;
};

class X11DesktopTest : public testing::Test {
protected:
    /// The title in front, read as the inspector does.
    std::optional<QString> frontTitle() {
        const auto front = m_desktop.frontmostApplication();
        return front ? std::optional(m_desktop.focusedWindowTitle(front->processId)) : std::nullopt;
    }

    /// The windows' own connection and ours are two: what the one has sent the other may not see yet.
    bool titleBecomes(const QString& title) {
        return waitUntil([&] { return frontTitle() == title; });
    }

    /// Shown again and again: a window manager that has just started misses some.
    bool comesToFront(const TestWindow& window, const QString& title) {
        return waitUntil([&] {
            window.show();
            return frontTitle() == title;
        });
    }

    /// Names these windows active one after the other, as a window manager does between two windows.
    void nameActive(const std::vector<xcb_window_t>& windows) {
        for (const xcb_window_t window : windows) {
            xcb_change_property(m_programs->connection(), XCB_PROP_MODE_REPLACE, m_programs->root(),
                                m_programs->atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 32, 1, &window);
        }
        arrive();
        waitUntil([] { return false; }, 200);
    }

    /// Waits until the server has done what the programs asked for.
    Moment arrive() {
        std::free(xcb_get_input_focus_reply(m_programs->connection(),
                                            xcb_get_input_focus(m_programs->connection()), nullptr));
        return Moment::clock::now();
    }

    QString m_why;
    std::unique_ptr<Xcb> m_programs = Xcb::connect(m_why);
    std::unique_ptr<Xcb> m_ours = Xcb::connect(m_why);
    bool m_isHeld = false;
    X11Desktop m_desktop{*m_ours, [this] { return m_isHeld; }};
};

TEST_F(X11DesktopTest, TellsTheWindowInFrontItsClassAndTheProcessThatTheServerKnows) {
    EXPECT_FALSE(frontTitle());
    const TestWindow window(*m_programs, QByteArray("own\0OwnClass\0", 13), "own");
    ASSERT_TRUE(comesToFront(window, u"own"_s));
    const auto front = m_desktop.frontmostApplication();
    EXPECT_EQ(front->processId, ::getpid());
    EXPECT_EQ(front->bundleId, u"OwnClass"_s);
    EXPECT_EQ(m_desktop.focusedWindowTitle(front->processId + 1), QString()) << "another process's title";

    m_isHeld = true;
    EXPECT_FALSE(frontTitle()) << "behind a lock nothing is in front";
}

TEST_F(X11DesktopTest, ReadsEveryKindOfTitle) {
    const TestWindow window(*m_programs, QByteArray("own\0Own\0", 8), "caf\xe9");
    ASSERT_TRUE(comesToFront(window, u"café"_s));
    const struct {
        const char* property;
        const char* type;
        QByteArray bytes;
        QString title;
    } rows[] = {
        {"WM_NAME", "COMPOUND_TEXT", "\x1b$(BF|K\\", u"日本"_s},
        {"WM_NAME", "COMPOUND_TEXT", "\x1b$(A0!", QString()},
        {"WM_NAME", "UTF8_STRING", "名前", u"名前"_s},
        {"_NET_WM_NAME", "STRING", "typed as string", u"typed as string"_s},
        {"_NET_WM_NAME", "UTF8_STRING", "題名", u"題名"_s},
        {"_NET_WM_NAME", "UTF8_STRING", QByteArray(1 << 20, 'x'), QString(1 << 20, u'x')},
        {"_NET_WM_NAME", "UTF8_STRING", "", u"名前"_s},
    };
    for (const auto& row : rows) {
        window.set(row.property, row.type, row.bytes);
        EXPECT_TRUE(titleBecomes(row.title))
            << row.property << ' ' << row.type << ' ' << row.bytes.left(20).toStdString();
    }
}

TEST_F(X11DesktopTest, KnowsAProgramByItsFileByItsToolkitAndAsDesktop) {
    test::installDesktopEntry(u"org.example.Toolkit"_s, u"Name=Toolkit\nExec=true\n"_s);
    ASSERT_TRUE(waitUntil([] {
        const auto entries = installedDesktopEntries(); // who is told of new files a moment later
        return std::ranges::any_of(entries, [](const auto& e) { return e.id == u"org.example.Toolkit"; });
    }));
    const TestWindow window(*m_programs, "", "own");
    ASSERT_TRUE(comesToFront(window, u"own"_s));
    const QString file = QFileInfo(u"/proc/self/exe"_s).canonicalFilePath();
    EXPECT_EQ(m_desktop.frontmostApplication()->bundleId, QFileInfo(file).fileName()) << "no class";

    const auto becomes = [this](const QString& id, const QString& name) {
        return waitUntil([&] {
            const auto front = m_desktop.frontmostApplication();
            return front && front->bundleId == id && front->localizedName == name;
        });
    };
    window.set("_GTK_APPLICATION_ID", "UTF8_STRING", "org.example.Toolkit");
    EXPECT_TRUE(becomes(u"org.example.Toolkit"_s, u"Toolkit"_s));
    const xcb_atom_t desktop = m_programs->atom("_NET_WM_WINDOW_TYPE_DESKTOP");
    window.set("_NET_WM_WINDOW_TYPE", "ATOM",
               QByteArray(reinterpret_cast<const char*>(&desktop), sizeof desktop), 32);
    EXPECT_TRUE(becomes(u"org.example.Toolkit-desktop"_s, u"デスクトップ"_s));
}

TEST_F(X11DesktopTest, KnowsARealProgramThatLosesItsClass) {
    const test::Terminal terminal(u"plain"_s, u"plain"_s);
    terminal.activate();
    ASSERT_TRUE(waitUntil([&] {
        const auto front = m_desktop.frontmostApplication();
        return front && front->bundleId == u"plain"_s;
    }));
    const auto idWithoutClass = [&] {
        const QString window = test::outputOf(u"xdotool"_s, {u"getactivewindow"_s}).trimmed();
        test::outputOf(u"xprop"_s, {u"-id"_s, window, u"-remove"_s, u"WM_CLASS"_s});
        return m_desktop.frontmostApplication()->bundleId;
    };
    EXPECT_EQ(idWithoutClass(), u"debian-xterm"_s);
}

TEST_F(X11DesktopTest, SaysAtOnceAndOnceThatAnotherWindowCameToTheFront) {
    int changes = 0;
    QObject::connect(&m_desktop, &X11Desktop::activeWindowChanged, [&] { ++changes; });
    const TestWindow first(*m_programs, QByteArray("a\0A\0", 4), "first");
    ASSERT_TRUE(comesToFront(first, u"first"_s));
    {
        const TestWindow second(*m_programs, QByteArray("b\0B\0", 4), "second");
        ASSERT_TRUE(comesToFront(second, u"second"_s));
        waitUntil([] { return false; }, 200);
        changes = 0;
        first.activate();
        EXPECT_TRUE(waitUntil([&] { return changes > 0; }, 500));
        EXPECT_EQ(frontTitle(), u"first"_s);
        nameActive({XCB_NONE, first.id(), first.id()});
        EXPECT_EQ(changes, 1) << "nothing between two windows, nothing twice";
        nameActive({XCB_NONE});
        EXPECT_EQ(changes, 2) << "nothing is in front any more";
        EXPECT_FALSE(frontTitle());
        nameActive({first.id()});
        EXPECT_EQ(changes, 3);
        second.activate();
        ASSERT_TRUE(titleBecomes(u"second"_s));
    }
    EXPECT_TRUE(titleBecomes(u"first"_s)) << "the window in front has vanished, the one beneath is there";
}

/// How far an age is from the time since `event`, in seconds; infinite for an unknown age.
double errorOf(const std::optional<Seconds>& age, Moment event) {
    return age ? std::abs((*age - Seconds(Moment::clock::now() - event)).count()) : INFINITY;
}

TEST_F(X11DesktopTest, KnowsHowLongAWindowAndItsTitleAreThereAlsoAfterAPauseOfItsOwn) {
    constexpr double exact = 0.03;
    const TestWindow first(*m_programs, QByteArray("a\0A\0", 4), "first");
    const TestWindow second(*m_programs, QByteArray("b\0B\0", 4), "second");
    ASSERT_TRUE(comesToFront(first, u"first"_s));
    ASSERT_TRUE(comesToFront(second, u"second"_s));
    for (const bool isBusy : {true, false}) {
        SCOPED_TRACE(isBusy ? "events undelivered" : "events delivered as they come");
        const auto pass = [&] {
            isBusy ? std::this_thread::sleep_for(std::chrono::milliseconds(300))
                   : void(waitUntil([] { return false; }, 300));
        };
        const auto activate = [&](const TestWindow& window) {
            const xcb_window_t id = window.id();
            xcb_change_property(m_programs->connection(), XCB_PROP_MODE_REPLACE, m_programs->root(),
                                m_programs->atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 32, 1, &id);
            return arrive();
        };
        const Moment came = activate(first);
        pass();
        auto front = m_desktop.frontmostApplication();
        EXPECT_EQ(front->bundleId, u"A"_s);
        EXPECT_LT(errorOf(front->inFrontFor, came), exact);
        EXPECT_LT(errorOf(front->titledFor, came), exact) << "a title that came with its window";

        first.set("WM_NAME", "STRING", isBusy ? "one" : "two");
        const Moment titled = arrive();
        pass();
        front = m_desktop.frontmostApplication();
        EXPECT_LT(errorOf(front->titledFor, titled), exact);
        EXPECT_LT(errorOf(front->inFrontFor, came), exact);

        first.set("WM_NAME", "STRING", isBusy ? "one" : "two");
        activate(first);
        pass();
        front = m_desktop.frontmostApplication();
        EXPECT_LT(errorOf(front->titledFor, titled), exact) << "the same text again is no new title";
        EXPECT_LT(errorOf(front->inFrontFor, came), exact) << "the same window again did not come";

        activate(second);
        EXPECT_EQ(frontTitle(), u"second"_s);
        const Moment back = activate(first);
        pass();
        front = m_desktop.frontmostApplication();
        EXPECT_LT(errorOf(front->inFrontFor, back), exact);
        EXPECT_LT(errorOf(front->titledFor, back), exact);
        activate(second);
        EXPECT_EQ(frontTitle(), u"second"_s);
    }
}

TEST_F(X11DesktopTest, DoesNotKnowTheAgeOfWhatWasThereBefore) {
    const TestWindow window(*m_programs, QByteArray("a\0A\0", 4), "first");
    ASSERT_TRUE(comesToFront(window, u"first"_s));
    X11Desktop later(*m_ours, [] { return false; });
    EXPECT_FALSE(later.frontmostApplication()->inFrontFor);
    EXPECT_FALSE(later.frontmostApplication()->titledFor);
}

TEST_F(X11DesktopTest, SaysThatTheWindowInFrontHasAnotherTitle) {
    const TestWindow first(*m_programs, QByteArray("a\0A\0", 4), "first");
    const TestWindow second(*m_programs, QByteArray("b\0B\0", 4), "second");
    ASSERT_TRUE(comesToFront(second, u"second"_s));
    ASSERT_TRUE(comesToFront(first, u"first"_s));
    waitUntil([] { return false; }, 200);
    int titles = 0;
    QObject::connect(&m_desktop, &X11Desktop::titleChanged, [&] { ++titles; });
    const struct {
        const char* what;
        const TestWindow& window;
        const char* property;
        const char* text;
        int changes;
    } rows[] = {
        {"another title", first, "WM_NAME", "one", 1},
        {"the same text", first, "WM_NAME", "one", 0},
        {"a title that is hidden by no other", first, "_NET_WM_NAME", "two", 1},
        {"a hidden one", first, "WM_NAME", "three", 0},
        {"another property", first, "WM_ICON_NAME", "two", 0},
        {"another window's", second, "WM_NAME", "other", 0},
    };
    for (const auto& row : rows) {
        titles = 0;
        row.window.set(row.property, "STRING", row.text);
        arrive();
        waitUntil([] { return false; }, 100);
        EXPECT_EQ(titles, row.changes) << row.what;
    }
    titles = 0;
    first.set("_NET_WM_NAME", "STRING", "seen by a tick before it was told");
    arrive();
    EXPECT_EQ(frontTitle(), u"seen by a tick before it was told"_s);
    EXPECT_EQ(titles, 0) << "inside of a tick";
    waitUntil([] { return false; }, 100);
    EXPECT_EQ(titles, 1);
}

TEST_F(X11DesktopTest, TakesAVanishedWindowForNothing) {
    xcb_window_t gone = XCB_NONE;
    {
        const TestWindow window(*m_programs, QByteArray("a\0A\0", 4), "first");
        gone = window.id();
    }
    nameActive({gone});
    EXPECT_FALSE(m_desktop.frontmostApplication());
    const TestWindow classless(*m_programs, "", "no class");
    nameActive({classless.id()});
    EXPECT_EQ(m_desktop.frontmostApplication()->processId, ::getpid());
}

TEST_F(X11DesktopTest, KnowsNoOtherProgramsWindowForItsOwnPanel) {
    const TestWindow own(*m_programs, QByteArray("a\0A\0", 4), "own");
    const test::Terminal other(u"Other"_s, u"other"_s);
    const QString role = u"kestu-status-item"_s;
    own.set("WM_WINDOW_ROLE", "STRING", role.toLatin1());
    other.setProperty(u"WM_WINDOW_ROLE"_s, u"8s"_s, role);
    ASSERT_TRUE(comesToFront(own, u"own"_s));
    EXPECT_TRUE(m_desktop.frontmostApplication()->isOwnPanel);
    other.activate();
    ASSERT_TRUE(titleBecomes(u"other"_s));
    EXPECT_FALSE(m_desktop.frontmostApplication()->isOwnPanel);
}

TEST(LinuxPlatformTest, GrantsTheTitlesOnX11Only) {
    EXPECT_TRUE(startLinuxPlatform()->accessibility().isGranted());
    qputenv("XDG_SESSION_TYPE", "wayland");
    const std::unique_ptr<Platform> onWayland = startLinuxPlatform();
    qputenv("XDG_SESSION_TYPE", "x11");
    EXPECT_FALSE(onWayland->accessibility().request());
    EXPECT_FALSE(onWayland->workspace().whyUnseen().isEmpty());
}

} // namespace
} // namespace kestu
