// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Desk.h"

#include "support/PrivateBus.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace kestu::test {
namespace {

using namespace Qt::StringLiterals;

const QString xdotool = u"xdotool"_s;

} // namespace

Terminal::Terminal(const QString& wmClass, const QString& title)
    : m_program(u"xterm"_s, {u"-class"_s, wmClass, u"-name"_s, wmClass, u"-title"_s, title, u"-e"_s,
                             u"sleep"_s, u"600"_s}) {
    EXPECT_TRUE(waitUntil([&] {
        m_windowId = outputOf(xdotool, {u"search"_s, u"--onlyvisible"_s, u"--class"_s, u'^' + wmClass + u'$'})
                         .trimmed();
        return !m_windowId.isEmpty();
    })) << "no window of "
        << wmClass.toStdString();
}

void Terminal::activate() const {
    outputOf(xdotool, {u"windowactivate"_s, u"--sync"_s, m_windowId});
}

void Terminal::moveTo(int x, int y) const {
    outputOf(xdotool, {u"windowmove"_s, u"--sync"_s, m_windowId, QString::number(x), QString::number(y)});
}

void Terminal::pointAt() const {
    outputOf(xdotool, {u"mousemove"_s, u"--window"_s, m_windowId, u"50"_s, u"50"_s});
}

void Terminal::setTitle(const QString& title) const {
    setProperty(u"_NET_WM_NAME"_s, u"8u"_s, title);
}

void Terminal::setProperty(const QString& name, const QString& format, const QString& value) const {
    outputOf(u"xprop"_s, {u"-id"_s, m_windowId, u"-f"_s, name, format, u"-set"_s, name, value});
}

void moveMouse(int x, int y) {
    outputOf(xdotool, {u"mousemove"_s, QString::number(x), QString::number(y)});
}

void installDesktopEntry(const QString& id, const QString& content) {
    const QString folder = qEnvironmentVariable("XDG_DATA_HOME") + u"/applications"_s;
    QDir().mkpath(folder);
    QFile file(folder + u'/' + id + u".desktop"_s);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Desktop Entry]\nType=Application\n" + content.toUtf8());
}

} // namespace kestu::test
