// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/DesktopAccessibility.h"

#include "platform/PlatformError.h"
#include "platform/linux/AccessibilityBus.h"
#include "platform/linux/DesktopSession.h"
#include "platform/linux/LinuxSystemEvents.h"
#include "platform/linux/ReaderSwitch.h"
#include "platform/linux/Unknown.h"
#include "support/Files.h"
#include "support/MockObject.h"
#include "support/PrivateBus.h"

#include <QDBusVariant>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;
using test::waitUntil;

/// Sets a variable of this process for as long as it lives.
class EnvironmentChange final {
public:
    EnvironmentChange(const char* name, const QString& value)
        : m_name(name)
        , m_before(qgetenv(name)) {
        qputenv(name, value.toUtf8());
    }
    ~EnvironmentChange() { qputenv(m_name, m_before); }
    EnvironmentChange(const EnvironmentChange&) = delete;
    EnvironmentChange& operator=(const EnvironmentChange&) = delete;

private:
    const char* m_name;
    QByteArray m_before;
};

/// Programs that write down how they were called.
class Programs final {
public:
    explicit Programs(const QStringList& names) {
        for (const QString& name : names) {
            const QString path = m_folder.filePath(name);
            test::putFile(
                path,
                "#!/bin/sh\necho \"${0##*/}:$*${QT_LINUX_ACCESSIBILITY_ALWAYS_ON}\" >\"${0%/*}/called\"\n");
            QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
        }
    }

    [[nodiscard]] QString folder() const { return m_folder.path(); }

    /// "program:arguments"; empty when none was called.
    [[nodiscard]] QString called() const {
        QByteArray written;
        waitUntil([&] { return !(written = test::contentsOf(m_folder.filePath(u"called"_s))).isEmpty(); });
        return QString::fromUtf8(written).trimmed();
    }

private:
    QTemporaryDir m_folder;
};

/// All can be seen unless the test says else, and nothing is there.
class SeenSession final : public DesktopSession, Workspace {
public:
    Ability able{.kind = Ability::Kind::yes};

    Workspace& workspace() override { return *this; }
    UserInput& userInput() override { return m_input; }
    DisplayPower& displayPower() override { return m_displayPower; }
    QString source() const override { return u"test"_s; }
    Ability windows() override { return able; }
    Ability titles() override { return windows(); }
    Ability idle() override { return windows(); }
    QString whyUnseen() override { return {}; }
    std::optional<FrontmostApplication> frontmostApplication() override { return std::nullopt; }
    QString focusedWindowTitle(std::int64_t) override { return {}; }

private:
    UnknownInput m_input;
    UnknownDisplayPower m_displayPower;
};

/// A desk of the test's own, without a login manager.
struct Desk {
    test::PrivateBus system;
    test::PrivateBus session;
    AccessibilityBus bus{session.connect()};
    SeenSession seen;
    LinuxSystemEvents events{system.connect(), session.connect(), seen.displayPower()};
    DesktopAccessibility accessibility{bus, seen, events};
};

TEST(DesktopAccessibilityTest, OpensTheSettingsOfTheRunningDesktopOrOfAnyOther) {
    struct Case {
        QString desktop;
        QStringList installed;
        QString called;
        Ability::Kind windows = Ability::Kind::yes;
    };
    const auto unseen = Ability::Kind::no;
    const QStringList several{u"gnome-control-center"_s, u"systemsettings"_s, u"cinnamon-settings"_s,
                              u"mate-at-properties"_s, u"xfce4-accessibility-settings"_s};
    Desk desk;
    DesktopAccessibility& accessibility = desk.accessibility;
    offerWindowsToReaders(); // which is not meant for other programs
    for (const Case& each : {
             Case{u"ubuntu:GNOME"_s, several, u"gnome-control-center:universal-access"_s},
             Case{u"Budgie:GNOME"_s, several + QStringList(u"budgie-control-center"_s),
                  u"budgie-control-center:universal-access"_s},
             Case{u"Budgie:GNOME"_s, several, u"gnome-control-center:universal-access"_s},
             Case{u"KDE"_s, several, u"systemsettings:kcm_access"_s},
             Case{u"KDE"_s, {u"systemsettings5"_s, u"mate-at-properties"_s}, u"systemsettings5:kcm_access"_s},
             Case{u"X-Cinnamon"_s, several, u"cinnamon-settings:universal-access"_s},
             Case{u"MATE"_s, several, u"mate-at-properties:"_s},
             Case{u"XFCE"_s, several, u"xfce4-accessibility-settings:"_s},
             Case{u"GNOME"_s, {u"xfce4-accessibility-settings"_s}, u"xfce4-accessibility-settings:"_s},
             Case{u""_s, {u"mate-at-properties"_s}, u"mate-at-properties:"_s},
             Case{u"ubuntu:GNOME"_s, several + QStringList(u"gnome-extensions-app"_s),
                  u"gnome-extensions-app:"_s, unseen},
             Case{u"GNOME"_s, several + QStringList(u"extension-manager"_s), u"extension-manager:"_s,
                  Ability::Kind::partly},
             Case{u"GNOME"_s, several + QStringList(u"gnome-extensions-app"_s),
                  u"gnome-control-center:universal-access"_s},
             Case{u"GNOME"_s, several, u"gnome-control-center:universal-access"_s, unseen},
             Case{u"KDE"_s, several + QStringList(u"gnome-extensions-app"_s), u"systemsettings:kcm_access"_s,
                  unseen},
         }) {
        SCOPED_TRACE(each.called.toStdString() + " on " + each.desktop.toStdString());
        const Programs programs(each.installed);
        const EnvironmentChange path("PATH", programs.folder());
        const EnvironmentChange desktop("XDG_CURRENT_DESKTOP", each.desktop);
        desk.seen.able.kind = each.windows;
        accessibility.openSettings();
        EXPECT_EQ(programs.called(), each.called);
    }
    const Programs none({});
    const EnvironmentChange path("PATH", none.folder());
    EXPECT_THROW(accessibility.openSettings(), PlatformError);
}

TEST(DesktopAccessibilityTest, SaysWhatCanBeToldAndSwitchesTheBusOnOnlyWhenAskedTo) {
    using Kind = Ability::Kind;
    Desk desk;
    DesktopAccessibility& accessibility = desk.accessibility;
    const auto addresses = [&](Kind windows) {
        desk.seen.able.kind = windows;
        return accessibility.abilities().addresses;
    };
    EXPECT_EQ(accessibility.abilities().lock.kind, Kind::no) << "neither a login manager nor a saver";
    EXPECT_FALSE(accessibility.abilities().lock.note.isEmpty());

    const QString service = u"org.a11y.Bus"_s;
    desk.session.startMock({service, u"/org/a11y/bus"_s, service}, service);
    const test::MockObject launcher{desk.session.connect(), service, u"/org/a11y/bus"_s};
    launcher.call(u"org.freedesktop.DBus.Mock"_s, u"AddProperty"_s,
                  {u"org.a11y.Status"_s, u"IsEnabled"_s, QVariant::fromValue(QDBusVariant(false))});
    EXPECT_EQ(addresses(Kind::no).kind, Kind::no);
    EXPECT_EQ(addresses(Kind::afterLogin).kind, Kind::afterLogin);
    EXPECT_TRUE(addresses(Kind::partly).mayBeRequested) << "browsers are not seen before";
    EXPECT_TRUE(addresses(Kind::yes).note.contains(u"オンになります")) << "by the first browser";
    EXPECT_EQ(addresses(Kind::yes).kind, Kind::yes);

    EXPECT_TRUE(accessibility.isGranted());
    EXPECT_FALSE(desk.bus.isEnabled());
    EXPECT_TRUE(accessibility.request());
    EXPECT_TRUE(desk.bus.isEnabled());
    for (const Kind windows : {Kind::yes, Kind::partly}) {
        EXPECT_EQ(addresses(windows), Ability{.kind = Kind::yes});
    }
    const QString saver = u"org.gnome.ScreenSaver"_s;
    desk.session.startMock({u"-t"_s, u"gnome_screensaver"_s}, saver);
    EXPECT_TRUE(waitUntil([&] { return accessibility.abilities().lock == Ability{.kind = Kind::yes}; }));
}

} // namespace
} // namespace kestu
