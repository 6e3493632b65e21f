// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/DesktopAccessibility.h"

#include "platform/PlatformError.h"
#include "platform/linux/AccessibilityBus.h"
#include "platform/linux/DesktopSession.h"
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

/// All can be seen, and nothing is there.
class SeenSession final : public DesktopSession, Workspace {
public:
    Workspace& workspace() override { return *this; }
    UserInput& userInput() override { return m_input; }
    DisplayPower& displayPower() override { return m_displayPower; }
    QString source() const override { return u"test"_s; }
    Ability windows() override { return {.kind = Ability::Kind::yes}; }
    Ability titles() override { return windows(); }
    Ability idle() override { return windows(); }
    QString whyUnseen() override { return {}; }
    std::optional<FrontmostApplication> frontmostApplication() override { return std::nullopt; }
    QString focusedWindowTitle(std::int64_t) override { return {}; }

private:
    UnknownInput m_input;
    UnknownDisplayPower m_displayPower;
};

TEST(DesktopAccessibilityTest, OpensTheSettingsOfTheRunningDesktopOrOfAnyOther) {
    struct Case {
        QString desktop;
        QStringList installed;
        QString called;
    };
    const QStringList several{u"gnome-control-center"_s, u"systemsettings"_s, u"cinnamon-settings"_s,
                              u"mate-at-properties"_s, u"xfce4-accessibility-settings"_s};
    test::PrivateBus session;
    AccessibilityBus bus(session.connect());
    SeenSession seen;
    DesktopAccessibility accessibility(bus, seen);
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
         }) {
        SCOPED_TRACE(each.called.toStdString() + " on " + each.desktop.toStdString());
        const Programs programs(each.installed);
        const EnvironmentChange path("PATH", programs.folder());
        const EnvironmentChange desktop("XDG_CURRENT_DESKTOP", each.desktop);
        accessibility.openSettings();
        EXPECT_EQ(programs.called(), each.called);
    }
    const Programs none({});
    const EnvironmentChange path("PATH", none.folder());
    EXPECT_THROW(accessibility.openSettings(), PlatformError);
}

TEST(DesktopAccessibilityTest, SwitchesTheBusOnOnlyWhenAskedTo) {
    test::PrivateBus session;
    const QString service = u"org.a11y.Bus"_s;
    session.startMock({service, u"/org/a11y/bus"_s, service}, service);
    const test::MockObject desk{session.connect(), service, u"/org/a11y/bus"_s};
    desk.call(u"org.freedesktop.DBus.Mock"_s, u"AddProperty"_s,
              {u"org.a11y.Status"_s, u"IsEnabled"_s, QVariant::fromValue(QDBusVariant(false))});
    AccessibilityBus bus(session.connect());
    SeenSession seen;
    DesktopAccessibility accessibility(bus, seen);
    EXPECT_TRUE(accessibility.isGranted());
    EXPECT_FALSE(bus.isEnabled());
    EXPECT_TRUE(accessibility.request());
    EXPECT_TRUE(bus.isEnabled());
}

} // namespace
} // namespace kestu
