// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/StoreProcess.h"

#include <gtest/gtest.h>

namespace kestu::test {

using namespace Qt::StringLiterals;

StoreProcess::StoreProcess(const QString& databasePath, User user) {
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(KESTU_STORE_PROCESS),
                    {databasePath, user == User::stranger ? u"stranger"_s : QString()});
    m_greeting = readLine();
}

StoreProcess::~StoreProcess() {
    kill();
}

std::string StoreProcess::execute(const QString& sql) {
    m_process.write(sql.toUtf8() + '\n');
    return readLine();
}

void StoreProcess::startRecording() {
    m_process.write("record\n");
    for (int commits = 0; commits < 5; ++commits) {
        m_lastEnd = std::stod(readLine());
    }
}

double StoreProcess::kill() {
    m_process.kill();
    m_process.waitForFinished();
    const QList<QByteArray> lines = m_process.readAllStandardOutput().split('\n');
    // After the last line feed stands nothing, or a number that was cut off.
    return lines.size() < 2 ? m_lastEnd : lines.at(lines.size() - 2).toDouble();
}

std::string StoreProcess::readLine() {
    constexpr int patienceMilliseconds = 20000;
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(patienceMilliseconds)) {
            ADD_FAILURE() << "the other process says nothing: " << m_process.errorString().toStdString();
            return {};
        }
    }
    return m_process.readLine().trimmed().toStdString();
}

} // namespace kestu::test
