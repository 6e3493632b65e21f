// SPDX-License-Identifier: GPL-3.0-or-later
//
// A second process that has the database file open, as the assistant's has. Ends with its owner.
#pragma once

#include <QProcess>
#include <QString>

#include <string>

namespace kestu::test {

class StoreProcess final {
public:
    /// Whose rights the process has. `stranger` is one who owns nothing here; only root can become that,
    /// anybody else stays who they are.
    enum class User { same, stranger };

    explicit StoreProcess(const QString& databasePath, User user = User::same);
    ~StoreProcess(); // by SIGKILL
    StoreProcess(const StoreProcess&) = delete;
    StoreProcess& operator=(const StoreProcess&) = delete;

    /// "open", or why the store could not be opened.
    [[nodiscard]] const std::string& greeting() const { return m_greeting; }

    /// Executes one line of SQL over there; "ok", or the failure's text.
    std::string execute(const QString& sql);

    /// Lets it insert an activity and extend it without end, a second each time; returns once it has
    /// committed the first few.
    void startRecording();

    /// Ends it by SIGKILL in whatever it is doing. Returns the last end that it has reported.
    double kill();

private:
    std::string readLine();

    QProcess m_process;
    std::string m_greeting;
    double m_lastEnd = 0;
};

} // namespace kestu::test
