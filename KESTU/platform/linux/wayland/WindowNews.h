// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a script or an extension within the desktop tells of the window in front, made fit for the recorder:
// times that can be believed, no news of the moment between two windows, and no more news than anybody can
// use. Whoever is told owns one.
#pragma once

#include "platform/linux/wayland/WindowSource.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <optional>

namespace kestu {

struct ToldWindow {
    QString key; // tells one window from another for as long as it lives
    WindowFacts facts{};
    QString title{};
    bool isFullscreen = false;
    Moment at{}; // when it came to the front, or got this title
};

class WindowNews final : public QObject {
    Q_OBJECT

public:
    WindowNews();

    /// Somebody begins to tell. What he says of the time before is not known by anybody.
    void begin();

    /// Nobody tells any more, and nothing is in front as far as is known.
    void end();

    /// The window in front as it is now; absent when there is none.
    void take(const std::optional<ToldWindow>& told);

    [[nodiscard]] const std::optional<SeenWindow>& front() const { return m_front; }

Q_SIGNALS:
    void frontChanged();
    void titleChanged();

private:
    void follow(const ToldWindow& told);
    void tell();

    std::optional<SeenWindow> m_front;
    QString m_key;
    Moment m_begin;
    bool m_hasNewFront = false; // that is not told yet
    bool m_hasNewTitle = false;
    QTimer m_nothing; // since nothing is in front
    QTimer m_pause;   // after news
};

/// What a window calls itself; empty when that is nothing to call it by: control characters, or a length that
/// no name has.
[[nodiscard]] QString believableName(const QString& name);

/// 0 for what cannot be a process's id.
[[nodiscard]] std::int64_t believableProcessId(std::int64_t id);

} // namespace kestu
