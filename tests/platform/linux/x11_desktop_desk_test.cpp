// SPDX-License-Identifier: GPL-3.0-or-later
//
// On a real X server with a window manager: what is in front, and the news of it.
#include "platform/linux/X11Desktop.h"
#include "platform/linux/X11Input.h"

#include "support/PrivateBus.h"

#include <QElapsedTimer>
#include <QProcess>

#include <gtest/gtest.h>

#include <unistd.h>

namespace kestu {
namespace {

using test::waitUntil;

/// A window of this process, with just the properties that a test gives it.
class TestWindow final {
public:
    TestWindow(const Xcb& xcb, const QByteArray& wmClass)
        : m_xcb(xcb)
        , m_id(xcb_generate_id(xcb.connection())) {
        xcb_create_window(xcb.connection(), XCB_COPY_FROM_PARENT, m_id, xcb.root(), 0, 0, 200, 100, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        set("WM_CLASS", "STRING", wmClass);
    }
    ~TestWindow() {
        xcb_destroy_window(m_xcb.connection(), m_id);
        xcb_flush(m_xcb.connection());
    }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    void set(const char* property, const char* type, const QByteArray& bytes) const {
        xcb_change_property(m_xcb.connection(), XCB_PROP_MODE_REPLACE, m_id, m_xcb.atom(property),
                            m_xcb.atom(type), 8, static_cast<std::uint32_t>(bytes.size()), bytes.constData());
        xcb_flush(m_xcb.connection());
    }

    void setProcessId(std::uint32_t pid) const {
        xcb_change_property(m_xcb.connection(), XCB_PROP_MODE_REPLACE, m_id, m_xcb.atom("_NET_WM_PID"),
                            XCB_ATOM_CARDINAL, 32, 1, &pid);
    }

    void show() const {
        xcb_map_window(m_xcb.connection(), m_id);
        xcb_flush(m_xcb.connection());
    }

    void activate() const {
        QProcess::execute(QStringLiteral("xdotool"), {QStringLiteral("windowactivate"),
                                                      QStringLiteral("--sync"), QString::number(m_id)});
    }

private:
    const Xcb& m_xcb;
    xcb_window_t m_id;
};

class X11DesktopTest : public testing::Test {
protected:
    X11DesktopTest()
        : programs(Xcb::connect(why))
        , ours(Xcb::connect(why))
        , desktop(*ours, [this] { return isHeld; }) {
        QObject::connect(&desktop, &X11Desktop::activeWindowChanged, [this] { ++changes; });
    }

    /// The title in front, read as the inspector does.
    std::optional<QString> frontTitle() {
        const auto front = desktop.frontmostApplication();
        return front ? std::optional(desktop.focusedWindowTitle(front->processId)) : std::nullopt;
    }

    bool isInFront(const QString& title) {
        return waitUntil([&] { return frontTitle() == title; });
    }

    QString why;
    std::unique_ptr<Xcb> programs;
    std::unique_ptr<Xcb> ours;
    bool isHeld = false;
    X11Desktop desktop;
    int changes = 0;
};

TEST_F(X11DesktopTest, TellsTheWindowInFrontItsClassAndTheProcessThatTheServerKnows) {
    EXPECT_FALSE(frontTitle());
    TestWindow window(*programs, QByteArray("own\0OwnClass\0", 13));
    window.setProcessId(1); // its own claim, as inside a container
    window.set("_NET_WM_NAME", "UTF8_STRING", "題名");
    window.show();
    ASSERT_TRUE(isInFront(QStringLiteral("題名")));
    const auto front = desktop.frontmostApplication();
    EXPECT_EQ(front->processId, ::getpid());
    EXPECT_EQ(front->bundleId, QStringLiteral("OwnClass"));
    EXPECT_EQ(desktop.focusedWindowTitle(front->processId + 1), QString()) << "another process's title";

    isHeld = true;
    EXPECT_FALSE(frontTitle()) << "behind a lock nothing is in front";
}

TEST_F(X11DesktopTest, ReadsEveryKindOfTitle) {
    TestWindow window(*programs, QByteArray("own\0Own\0", 8));
    window.set("WM_NAME", "STRING", "caf\xe9");
    window.show();
    ASSERT_TRUE(isInFront(QStringLiteral("café")));
    const struct {
        const char* property;
        const char* type;
        QByteArray bytes;
        QString title;
    } rows[] = {
        {"WM_NAME", "COMPOUND_TEXT", "\x1b$(BF|K\\", QStringLiteral("日本")},
        {"WM_NAME", "COMPOUND_TEXT", "\x1b$(A0!", QString()},
        {"WM_NAME", "UTF8_STRING", "名前", QStringLiteral("名前")},
        {"_NET_WM_NAME", "STRING", "typed as string", QStringLiteral("typed as string")},
        {"_NET_WM_NAME", "UTF8_STRING", QByteArray(1 << 20, 'x'), QString(1 << 20, u'x')},
        {"_NET_WM_NAME", "UTF8_STRING", "", QStringLiteral("名前")},
    };
    for (const auto& row : rows) {
        window.set(row.property, row.type, row.bytes);
        // The window's own connection and ours are two: what the one has sent the other may not see yet.
        EXPECT_TRUE(waitUntil([&] { return frontTitle() == row.title; }, 1000)) << row.property << row.type;
    }
}

TEST_F(X11DesktopTest, SaysAtOnceAndOnceThatAnotherWindowCameToTheFront) {
    TestWindow first(*programs, QByteArray("a\0A\0", 4));
    first.set("_NET_WM_NAME", "UTF8_STRING", "first");
    first.show();
    ASSERT_TRUE(isInFront(QStringLiteral("first")));
    {
        TestWindow second(*programs, QByteArray("b\0B\0", 4));
        second.set("_NET_WM_NAME", "UTF8_STRING", "second");
        second.show();
        ASSERT_TRUE(isInFront(QStringLiteral("second")));
        waitUntil([] { return false; }, 200);
        changes = 0;
        first.activate();
        EXPECT_TRUE(waitUntil([this] { return changes > 0; }, 500));
        EXPECT_EQ(frontTitle(), QStringLiteral("first"));
        waitUntil([] { return false; }, 200);
        EXPECT_EQ(changes, 1) << "nothing between two windows, nothing twice";
        second.activate();
        ASSERT_TRUE(isInFront(QStringLiteral("second")));
    }
    // The window in front has vanished; the one beneath takes its place.
    EXPECT_TRUE(isInFront(QStringLiteral("first")));
}

TEST_F(X11DesktopTest, CountsTheSecondsSinceTheLastInput) {
    X11Input input(*ours);
    QProcess::execute(QStringLiteral("xdotool"),
                      {QStringLiteral("mousemove"), QStringLiteral("40"), QStringLiteral("40")});
    EXPECT_LT(input.secondsSinceLastInput().count(), 0.5);
    waitUntil([] { return false; }, 700);
    EXPECT_NEAR(input.secondsSinceLastInput().count(), 0.85, 0.35);
}

} // namespace
} // namespace kestu
