// SPDX-License-Identifier: GPL-3.0-or-later
//
// What sway alone tells, over its own socket: the process of the focused window, and who keeps the display
// on. Asked with a deadline and without the event loop.
#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>

#include <chrono>
#include <cstdint>
#include <optional>

namespace kestu {

class SwayTree final {
public:
    struct Window {
        std::int64_t processId = 0; // 0 when unknown
        QString appId;              // of an X11 window its class
        bool keepsDisplayOn = false;
    };

    struct Answer {
        std::optional<Window> focused;
        bool isDisplayKeptOn = false; // by any window
    };

    /// `socket` is empty where the compositor is not sway.
    explicit SwayTree(QString socket = qEnvironmentVariable("SWAYSOCK"));

    [[nodiscard]] bool isThere() const { return !m_socket.isEmpty(); }

    /// How things stand now. Absent when sway does not answer by `deadline`, or not as it should: then it is
    /// not asked again until `noteChange`.
    [[nodiscard]] std::optional<Answer>
    ask(const QDeadlineTimer& deadline = QDeadlineTimer(std::chrono::milliseconds(300)));

    /// Something is new on the desktop: the next question is worth asking in any case.
    void noteChange() { m_isSilent = false; }

private:
    QString m_socket;
    bool m_isSilent = false;
};

} // namespace kestu
