// SPDX-License-Identifier: GPL-3.0-or-later
//
// What desktops without a portal say about their looks, by the properties of a real X server.
#include "platform/linux/DesktopAppearance.h"

#include "support/PrivateBus.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

#include <array>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::waitUntil;

std::unique_ptr<Xcb> connectToServer() {
    QString why;
    return Xcb::connect(why);
}

/// Owns a selection for the whole screen, as a tray or a settings program does, and ends with its owner.
class Manager final {
public:
    explicit Manager(const char* selection)
        : m_xcb(connectToServer())
        , m_window(xcb_generate_id(m_xcb->connection())) {
        auto* connection = m_xcb->connection();
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, m_window, m_xcb->root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(connection, m_window, m_xcb->atom(selection), XCB_CURRENT_TIME);
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = m_xcb->root();
        event.type = m_xcb->atom("MANAGER");
        event.data.data32[1] = m_xcb->atom(selection);
        event.data.data32[2] = m_window;
        xcb_send_event(connection, 0, m_xcb->root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
        xcb_flush(connection);
    }

    void set(const char* property, const char* type, std::uint8_t format, const QByteArray& bytes) {
        xcb_change_property(m_xcb->connection(), XCB_PROP_MODE_REPLACE, m_window, m_xcb->atom(property),
                            m_xcb->atom(type), format,
                            static_cast<std::uint32_t>(bytes.size() / (format / 8)), bytes.constData());
        static_cast<void>(m_xcb->atom(property)); // answered when it is done
    }

private:
    std::unique_ptr<Xcb> m_xcb;
    xcb_window_t m_window;
};

template<typename Number>
QByteArray number(Number value, bool isBigEndian) {
    QByteArray bytes(sizeof value, '\0');
    isBigEndian ? qToBigEndian(value, bytes.data()) : qToLittleEndian(value, bytes.data());
    return bytes;
}

QByteArray padded(const QByteArray& text) {
    return text + QByteArray((4 - text.size() % 4) % 4, '\0');
}

/// A number, a colour, and then the theme.
QByteArray settingsWith(const QByteArray& theme, bool isBigEndian = false) {
    const auto named = [&](char type, const QByteArray& name) {
        return QByteArray(1, type) + '\0' + number(static_cast<quint16>(name.size()), isBigEndian) +
               padded(name) + number(quint32{7}, isBigEndian);
    };
    return QByteArray(1, isBigEndian ? '\1' : '\0') + QByteArray(3, '\0') + number(quint32{1}, isBigEndian) +
           number(quint32{3}, isBigEndian) + named(0, "Net/DoubleClickTime") +
           number(quint32{400}, isBigEndian) + named(2, "Some/Colour") + QByteArray(8, '\0') +
           named(1, "Net/ThemeName") + number(static_cast<quint32>(theme.size()), isBigEndian) +
           padded(theme);
}

class DesktopAppearanceTest : public testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<DesktopAppearance> start() {
        return std::make_unique<DesktopAppearance>(bus.connect(), connectToServer, QStringList{file});
    }

    void writeFile(const QByteArray& lines) const {
        QFile toolkit(file);
        ASSERT_TRUE(toolkit.open(QIODevice::WriteOnly));
        toolkit.write("[Settings]\n" + lines);
    }

    test::PrivateBus bus;
    QTemporaryDir folder;
    QString file = folder.filePath(u"settings.ini"_s);
};

TEST_F(DesktopAppearanceTest, FollowsTheThemeOfTheXSettings) {
    const auto appearance = start();
    const QSignalSpy changes(appearance.get(), &Appearance::colorSchemeChanged);
    const auto becomes = [&](std::optional<ColorScheme> scheme) {
        return waitUntil([&] { return appearance->colorScheme() == scheme; }, 3000);
    };
    EXPECT_EQ(appearance->colorScheme(), std::nullopt) << "nobody tells";
    {
        Manager settings("_XSETTINGS_S0"); // which comes late
        settings.set("_XSETTINGS_SETTINGS", "_XSETTINGS_SETTINGS", 8, settingsWith("Adwaita-dark"));
        EXPECT_TRUE(becomes(ColorScheme::dark));
        settings.set("_XSETTINGS_SETTINGS", "_XSETTINGS_SETTINGS", 8, settingsWith("Adwaita"));
        EXPECT_TRUE(becomes(ColorScheme::light));
        settings.set("_XSETTINGS_SETTINGS", "_XSETTINGS_SETTINGS", 8, settingsWith("Menta"));
        settings.set("_XSETTINGS_SETTINGS", "_XSETTINGS_SETTINGS", 8, settingsWith("Yaru-blue-dark", true));
        EXPECT_TRUE(becomes(ColorScheme::dark));
        EXPECT_EQ(changes.count(), 3) << "a theme that looks no other is no news";
    }
    EXPECT_TRUE(becomes(std::nullopt)) << "the manager is gone";
}

TEST_F(DesktopAppearanceTest, ReadsTheToolkitsFileWhereThereIsNoManager) {
    const struct {
        QByteArray lines;
        std::optional<ColorScheme> expected;
    } rows[] = {
        {"gtk-theme-name=Adwaita\n", std::nullopt},
        {"gtk-theme-name=Arc-Dark\n", ColorScheme::dark},
        {"gtk-theme-name=Adwaita\ngtk-application-prefer-dark-theme=1\n", ColorScheme::dark},
        {"gtk-application-prefer-dark-theme = true\n", ColorScheme::dark},
        {"gtk-application-prefer-dark-theme=0\n", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& row : rows) {
        writeFile(row.lines);
        EXPECT_EQ(start()->colorScheme(), row.expected) << row.lines.constData();
    }
    writeFile("gtk-theme-name=Arc-Dark\n");
    Manager settings("_XSETTINGS_S0");
    settings.set("_XSETTINGS_SETTINGS", "_XSETTINGS_SETTINGS", 8, settingsWith("Arc"));
    const auto appearance = start();
    EXPECT_TRUE(waitUntil([&] { return !appearance->colorScheme(); }, 3000)) << "the manager counts more";
}

TEST_F(DesktopAppearanceTest, TellsTheColourOfTheTray) {
    const auto appearance = start();
    EXPECT_EQ(appearance->trayInk(), std::nullopt);
    const auto becomes = [&](std::optional<Rgb> ink) {
        return waitUntil([&] { return appearance->trayInk() == ink; }, 3000);
    };
    const auto colors = [](quint32 red, quint32 green, quint32 blue) {
        std::array<quint32, 12> parts{red, green, blue};
        return QByteArray(reinterpret_cast<const char*>(parts.data()), sizeof parts);
    };
    {
        Manager tray("_NET_SYSTEM_TRAY_S0");
        tray.set("_NET_SYSTEM_TRAY_COLORS", "CARDINAL", 32, colors(0xFFFF, 0x8080, 0));
        EXPECT_TRUE(becomes(Rgb{.red = 0xFF, .green = 0x80, .blue = 0}));
        tray.set("_NET_SYSTEM_TRAY_COLORS", "CARDINAL", 32, colors(0, 0, 0xFFFF));
        EXPECT_TRUE(becomes(Rgb{.red = 0, .green = 0, .blue = 0xFF}));
        tray.set("_NET_SYSTEM_TRAY_COLORS", "CARDINAL", 32, colors(1, 2, 3).first(8));
        EXPECT_TRUE(becomes(std::nullopt)) << "half a property";
    }
    const Manager silent("_NET_SYSTEM_TRAY_S0");
    EXPECT_FALSE(waitUntil([&] { return appearance->trayInk().has_value(); }, 100));
}

TEST(XSettings, AreReadAsFarAsTheyAreWhole) {
    for (const bool isBigEndian : {false, true}) {
        const QByteArray whole = settingsWith("Greybird-dark", isBigEndian);
        EXPECT_EQ(themeNameIn(whole), u"Greybird-dark"_s);
        for (qsizetype length = 0; length + 4 < whole.size(); ++length) {
            EXPECT_EQ(themeNameIn(whole.first(length)), QString()) << length;
        }
    }
    EXPECT_EQ(themeNameIn(QByteArray(64, '\xFF')), QString());
}

TEST(ThemeNames, TellDarkOnes) {
    for (const QString& name : {u"Adwaita-dark"_s, u"Arc-Dark"_s, u"Materia-dark-compact"_s, u"BlackMATE"_s,
                                u"HighContrastInverse"_s, u"dark"_s, u"Yaru_Dark"_s}) {
        EXPECT_TRUE(isDarkTheme(name)) << name.toStdString();
    }
    for (const QString& name : {u"Adwaita"_s, u"Arc-Darker"_s, u"Darkness"_s, u""_s, u"Menta"_s}) {
        EXPECT_FALSE(isDarkTheme(name)) << name.toStdString();
    }
}

} // namespace
} // namespace kestu
