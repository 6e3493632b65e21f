// SPDX-License-Identifier: GPL-3.0-or-later
//
// A second process that has the database file open, as the assistant's has. Ends with its owner.
#pragma once

#include <QProcess>
#include <QString>

namespace kestu::test {

class StoreProcess final {
public:
    explicit StoreProcess(const QString& databasePath);
    ~StoreProcess(); // by SIGKILL
    StoreProcess(const StoreProcess&) = delete;
    StoreProcess& operator=(const StoreProcess&) = delete;

    /// Executes one line of SQL over there. Its failure is one of the test.
    void execute(const QString& sql);

    /// Lets it insert an activity and extend it without end, a second each time, and ends it by SIGKILL in
    /// the middle of that. Returns the last end that it has reported.
    double recordUntilKilled();

private:
    QByteArray readLine();

    QProcess m_process;
};

} // namespace kestu::test
