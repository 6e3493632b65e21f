// SPDX-License-Identifier: GPL-3.0-or-later
//
// A made-up accessibility bus beside a session bus, and programs on it (see accessible_desk.py).
#pragma once

#include "support/Files.h"
#include "support/MockObject.h"
#include "support/PrivateBus.h"
#include "support/Program.h"

#include <QDBusVariant>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <list>
#include <optional>

namespace kestu::test {

class AccessibleDesk {
public:
    /// A program of accessible_desk.py; its process id.
    pid_t start(const QStringList& arguments) {
        using namespace Qt::StringLiterals;
        Program& program = programs.emplace_back(
            u"/usr/bin/python3"_s,
            QStringList{QStringLiteral(KESTU_TEST_SUPPORT "/accessible_desk.py")} + arguments,
            Program::Environment{{u"SESSION"_s, session.address()},
                                 {u"ACCESSIBILITY"_s, accessibility->address()}});
        EXPECT_TRUE(waitUntil([&] { return program.errorOutput().contains(u"ready"); }))
            << program.errorOutput().toStdString();
        return static_cast<pid_t>(program.pid());
    }

    pid_t startDesk() { return start({QStringLiteral("desk")}); }

    /// A program with these windows, its description in `file`; it may have a name on the session's bus.
    pid_t startProgram(const QString& file, const char* windows, const QString& name = {}) {
        describe(file, windows);
        const QStringList arguments{QStringLiteral("program"), folder.filePath(file)};
        return start(name.isEmpty() ? arguments : arguments + QStringList(name));
    }

    void describe(const QString& file, const char* windows) { putFile(folder.filePath(file), windows); }

    /// As the desktop's own settings do.
    void setSwitch(bool on) {
        using namespace Qt::StringLiterals;
        MockObject(session.connect(), u"org.a11y.Bus"_s, u"/org/a11y/bus"_s)
            .call(u"org.freedesktop.DBus.Properties"_s, u"Set"_s,
                  {u"org.a11y.Status"_s, u"IsEnabled"_s, QVariant::fromValue(QDBusVariant(on))});
    }

    /// The whole bus ends, with everything on it.
    void endBus() {
        programs.clear();
        accessibility.emplace();
    }

    QTemporaryDir folder;
    PrivateBus session;
    std::optional<PrivateBus> accessibility{std::in_place};
    std::list<Program> programs;
};

} // namespace kestu::test
