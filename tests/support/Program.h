// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program as its user starts it: a process of its own, ended with its owner.
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

#include <map>

namespace kestu::test {

class Program final {
public:
    using Environment = std::map<QString, QString>;

    /// Starts `path`; `changes` are set in its environment, an empty value unsets.
    Program(const QString& path, const QStringList& arguments, const Environment& changes = {});
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    [[nodiscard]] qint64 pid() const { return m_process.processId(); }
    [[nodiscard]] bool isRunning() const { return m_process.state() == QProcess::Running; }

    void send(int signal) const;

    /// The exit code; -1 when a signal ended it, -2 when it goes on after `milliseconds`.
    int waitForEnd(int milliseconds = 10000);

    /// All that it has said on standard error.
    QString errorOutput();

private:
    QProcess m_process;
    QString m_errorOutput;
};

/// Runs a program to its end; its standard output.
QString outputOf(const QString& path, const QStringList& arguments);

} // namespace kestu::test
