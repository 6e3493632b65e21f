// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program as a process in a Wayland session that has lost its compositor.
#include "support/Program.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

using test::Program;

class WaylandProgramTest : public testing::Test {
protected:
    [[nodiscard]] Program::Environment environment(Program::Environment more = {}) const {
        more.emplace(u"KESTU_DB_PATH"_s, path);
        return more;
    }

    QTemporaryDir folder;
    const QString path = folder.filePath(u"kestu.sqlite"_s);
    const QString program = QStringLiteral(KESTU_PROGRAM);
};

TEST_F(WaylandProgramTest, SaysThatThereIsNoScreenWhereTheCompositorHasGone) {
    const std::pair<QString, QString> names[] = {{u"WAYLAND_DISPLAY"_s, u"wayland-of-yesterday"_s},
                                                 {u"WAYLAND_DISPLAY"_s, folder.filePath(u"none"_s)},
                                                 {u"WAYLAND_DISPLAY"_s, QString(300, u'x')},
                                                 {u"QT_QPA_PLATFORM"_s, u"xcb"_s}};
    for (const auto& [name, value] : names) {
        Program kestu(program, {}, environment({{name, value}}));
        EXPECT_EQ(kestu.waitForEnd(), 1) << value.toStdString();
        EXPECT_EQ(kestu.errorOutput(),
                  u"画面がないため起動できません。デスクトップの中で起動してください。\n"_s);
    }
}

} // namespace
} // namespace kestu
