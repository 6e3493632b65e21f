// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Desk.h"

#include "support/PrivateBus.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace kestu::test {
namespace {

const QString xdotool = QStringLiteral("xdotool");

} // namespace

Terminal::Terminal(const QString& wmClass, const QString& title)
    : m_program(QStringLiteral("xterm"), {QStringLiteral("-class"), wmClass, QStringLiteral("-name"), wmClass,
                                          QStringLiteral("-title"), title, QStringLiteral("-e"),
                                          QStringLiteral("sleep"), QStringLiteral("600")}) {
    EXPECT_TRUE(waitUntil([&] {
        m_windowId = outputOf(xdotool, {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                        QStringLiteral("--class"), u'^' + wmClass + u'$'})
                         .trimmed();
        return !m_windowId.isEmpty();
    })) << "no window of "
        << wmClass.toStdString();
}

void Terminal::activate() const {
    outputOf(xdotool, {QStringLiteral("windowactivate"), QStringLiteral("--sync"), m_windowId});
}

void Terminal::setTitle(const QString& title) const {
    outputOf(QStringLiteral("xprop"),
             {QStringLiteral("-id"), m_windowId, QStringLiteral("-f"), QStringLiteral("_NET_WM_NAME"),
              QStringLiteral("8u"), QStringLiteral("-set"), QStringLiteral("_NET_WM_NAME"), title});
}

void moveMouse(int x, int y) {
    outputOf(xdotool, {QStringLiteral("mousemove"), QString::number(x), QString::number(y)});
}

void installDesktopEntry(const QString& id, const QString& content) {
    const QString folder = qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/applications");
    QDir().mkpath(folder);
    QFile file(folder + u'/' + id + QStringLiteral(".desktop"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Desktop Entry]\nType=Application\n" + content.toUtf8());
}

} // namespace kestu::test
