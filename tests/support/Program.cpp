// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/Program.h"

#include <gtest/gtest.h>

#include <csignal>

namespace kestu::test {

Program::Program(const QString& path, const QStringList& arguments, const Environment& changes) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto& [name, value] : changes) {
        value.isEmpty() ? environment.remove(name) : environment.insert(name, value);
    }
    m_process.setProcessEnvironment(environment);
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.start(path, arguments);
    EXPECT_TRUE(m_process.waitForStarted()) << path.toStdString();
}

Program::~Program() {
    m_process.kill();
    m_process.waitForFinished();
}

void Program::send(int signal) const {
    ::kill(static_cast<pid_t>(pid()), signal);
}

int Program::waitForEnd(int milliseconds) {
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(milliseconds)) {
        return -2;
    }
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

QString Program::errorOutput() {
    m_errorOutput += QString::fromUtf8(m_process.readAllStandardError());
    return m_errorOutput;
}

QString outputOf(const QString& path, const QStringList& arguments) {
    QProcess process;
    process.start(path, arguments);
    EXPECT_TRUE(process.waitForFinished(20000)) << path.toStdString();
    return QString::fromUtf8(process.readAllStandardOutput());
}

} // namespace kestu::test
