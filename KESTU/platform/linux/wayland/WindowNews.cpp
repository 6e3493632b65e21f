// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/WindowNews.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace kestu {
namespace {

using namespace std::chrono_literals;

// Between two windows KWin has none for up to 2 ms: no news of its own.
constexpr auto betweenWindows = 5ms;

// What is shorter makes no row; a flood costs a look of the recorder so often and no more.
constexpr auto pauseBetweenNews = 50ms;

} // namespace

WindowNews::WindowNews()
    : m_begin(Moment::clock::now()) {
    for (QTimer* timer : {&m_nothing, &m_pause}) {
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
    }
    m_nothing.setInterval(betweenWindows);
    m_pause.setInterval(pauseBetweenNews);
    connect(&m_nothing, &QTimer::timeout, this, &WindowNews::end);
    connect(&m_pause, &QTimer::timeout, this, &WindowNews::tell);
}

void WindowNews::begin() {
    m_begin = Moment::clock::now();
}

void WindowNews::end() {
    m_nothing.stop();
    m_key.clear();
    if (std::exchange(m_front, std::nullopt)) {
        m_hasNewFront = true;
        tell();
    }
}

void WindowNews::take(const std::optional<ToldWindow>& told) {
    if (told) {
        m_nothing.stop();
        follow(*told);
    } else if (m_front && !m_nothing.isActive()) {
        m_nothing.start();
    }
}

void WindowNews::follow(const ToldWindow& told) {
    const Moment at = std::clamp(told.at, m_begin, std::max(m_begin, Moment::clock::now()));
    if (!m_front || m_key != told.key) {
        m_key = told.key;
        m_front = SeenWindow{.facts = told.facts,
                             .title = told.title,
                             .since = at,
                             .titledSince = at,
                             .isFullscreen = told.isFullscreen};
        m_hasNewFront = true;
    } else {
        m_front->facts = told.facts;
        m_front->isFullscreen = told.isFullscreen;
        if (std::exchange(m_front->title, told.title) == told.title) {
            return;
        }
        m_front->titledSince = at;
        m_hasNewTitle = true;
    }
    tell();
}

void WindowNews::tell() {
    if (m_pause.isActive() || !(m_hasNewFront || m_hasNewTitle)) {
        return;
    }
    m_pause.start();
    const bool hasNewTitle = std::exchange(m_hasNewTitle, false);
    if (std::exchange(m_hasNewFront, false)) {
        Q_EMIT frontChanged();
    } else if (hasNewTitle) {
        Q_EMIT titleChanged();
    }
}

QString believableName(const QString& name) {
    constexpr qsizetype longest = 255;
    const bool isBelievable =
        name.size() <= longest && std::ranges::all_of(name, [](QChar c) { return c.isPrint(); });
    return isBelievable ? name.trimmed() : QString();
}

std::int64_t believableProcessId(std::int64_t id) {
    constexpr std::int64_t highest = 1 << 22; // PID_MAX_LIMIT of the kernel
    return id > 0 && id <= highest ? id : 0;
}

} // namespace kestu
