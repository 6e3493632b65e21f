// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/StoreProcess.h"

#include <gtest/gtest.h>

namespace kestu::test {

StoreProcess::StoreProcess(const QString& databasePath) {
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(KESTU_STORE_PROCESS), {databasePath});
}

StoreProcess::~StoreProcess() {
    m_process.kill();
    m_process.waitForFinished();
}

void StoreProcess::execute(const QString& sql) {
    m_process.write(sql.toUtf8() + '\n');
    EXPECT_EQ(readLine(), "ok") << sql.toStdString();
}

double StoreProcess::recordUntilKilled() {
    m_process.write("record\n");
    double lastEnd = 0;
    for (int commits = 0; commits < 5; ++commits) {
        lastEnd = readLine().toDouble();
    }
    m_process.kill();
    m_process.waitForFinished();
    while (m_process.canReadLine()) { // a number that was cut off is no line
        lastEnd = m_process.readLine().toDouble();
    }
    return lastEnd;
}

QByteArray StoreProcess::readLine() {
    constexpr int patienceMilliseconds = 20000;
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(patienceMilliseconds)) {
            ADD_FAILURE() << "the other process says nothing: " << m_process.errorString().toStdString();
            return {};
        }
    }
    return m_process.readLine().trimmed();
}

} // namespace kestu::test
