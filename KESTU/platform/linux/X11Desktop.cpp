// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/X11Desktop.h"

#include "base/WindowRole.h"

#include <QCoreApplication>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <utility>

namespace kestu {
namespace {

using namespace std::chrono_literals;

// Between two windows nothing is active for under a millisecond with openbox: no news of its own.
constexpr auto betweenWindows = 5ms;

// Looks at a window that is replaced while it is looked at; a program that switches without end holds nobody.
constexpr int mostLooks = 5;

std::optional<Seconds> age(std::optional<Moment> since) {
    return since ? std::optional<Seconds>(Moment::clock::now() - *since) : std::nullopt;
}

bool isAlive(std::int64_t processId) {
    return processId > 0 && (::kill(static_cast<pid_t>(processId), 0) == 0 || errno == EPERM);
}

} // namespace

X11Desktop::X11Desktop(const Xcb& xcb, std::function<bool()> isHeld)
    : m_xcb(xcb)
    , m_frontWindow(xcb)
    , m_reader(xcb)
    , m_isHeld(std::move(isHeld))
    , m_notifier(xcb_get_file_descriptor(xcb.connection()), QSocketNotifier::Read) {
    follow(m_frontWindow.id(), std::nullopt);
    m_announced = m_window;
    m_nothingActive.setSingleShot(true);
    m_nothingActive.setTimerType(Qt::PreciseTimer);
    m_nothingActive.setInterval(betweenWindows);
    connect(&m_nothingActive, &QTimer::timeout, this, &X11Desktop::announce);
    connect(&m_notifier, &QSocketNotifier::activated, this, &X11Desktop::readEvents);
    takeEvents();
}

std::optional<FrontmostApplication> X11Desktop::frontmostApplication() {
    m_front.reset();
    if (m_isHeld() || m_xcb.isBroken()) {
        return std::nullopt;
    }
    readFront();
    if (!m_front) {
        return std::nullopt;
    }
    const ApplicationIdentity identity = m_ids.of({.wmInstance = m_front->instance,
                                                   .wmClass = m_front->wmClass,
                                                   .gtkApplicationId = m_front->gtkApplicationId,
                                                   .isDesktop = m_front->isDesktop,
                                                   .processId = m_front->processId});
    if (!identity.bundleId && !isAlive(m_front->processId)) {
        return std::nullopt; // nothing to call it by
    }
    return FrontmostApplication{.bundleId = identity.bundleId,
                                .localizedName = identity.localizedName,
                                .processId = m_front->processId,
                                .inFrontFor = age(m_since),
                                .titledFor = age(m_titledSince),
                                .isOwnPanel = m_front->role == statusItemRole &&
                                              m_front->processId == QCoreApplication::applicationPid()};
}

QString X11Desktop::focusedWindowTitle(std::int64_t processId) {
    return m_front && m_front->processId == processId ? m_front->title : QString();
}

QString X11Desktop::whyUnseen() {
    if (m_xcb.isBroken()) {
        return QStringLiteral("X サーバーとの接続が切れました。KESTU を起動し直してください。");
    }
    if (!m_frontWindow.canTell()) {
        settle();
    }
    return m_frontWindow.canTell()
               ? QString()
               : QStringLiteral("ウィンドウマネージャーが手前のウィンドウを知らせていません。"
                                "ほかのウィンドウマネージャーをお使いください。");
}

void X11Desktop::readEvents() {
    if (m_xcb.isBroken()) {
        m_notifier.setEnabled(false);
        return;
    }
    takeEvents();
}

void X11Desktop::takeEvents() {
    // Waiting for a reply puts events that came before it into xcb's queue, where no notifier sees them.
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_xcb.connection())}) {
        take(*event);
    }
}

void X11Desktop::take(const xcb_generic_event_t& event) {
    if (const auto switchedAt = m_frontWindow.newsIn(event)) {
        m_switchedAt = switchedAt;
        tellLater();
        return;
    }
    const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
    if ((event.response_type & ~0x80U) == XCB_PROPERTY_NOTIFY && change.window == m_window &&
        m_reader.isTitle(change.atom)) {
        m_titleEvent = momentOf(change.time);
        m_hasTitleEvent = true;
        tellLater();
    }
}

void X11Desktop::settle() {
    std::optional<Moment> switchedAt;
    xcb_window_t window = XCB_NONE;
    for (int look = 0; look < mostLooks; ++look) {
        window = m_frontWindow.id();
        takeEvents(); // the one that told of this window may be among them
        if (!m_switchedAt) {
            break;
        }
        switchedAt = std::exchange(m_switchedAt, std::nullopt);
    }
    if (window != m_window) {
        follow(window, switchedAt.value_or(Moment::clock::now()));
        tellLater();
    }
    select(); // the window manager may have gone, and the events to ask for are others then
}

void X11Desktop::readFront() {
    for (int look = 0; look < mostLooks; ++look) {
        settle();
        m_front = m_window == XCB_NONE ? std::nullopt : m_reader.read(m_window);
        takeEvents();
        if (!m_switchedAt) {
            break;
        }
    }
    if (m_front) {
        noteTitle(m_front->title);
    }
}

void X11Desktop::select() {
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | m_frontWindow.eventsOfFront();
    if (m_window != XCB_NONE && std::exchange(m_selected, events) != events) {
        m_xcb.select(m_window, events);
    }
    xcb_flush(m_xcb.connection());
}

void X11Desktop::follow(xcb_window_t window, std::optional<Moment> since) {
    if (m_window != XCB_NONE) {
        m_xcb.select(m_window, XCB_EVENT_MASK_NO_EVENT);
    }
    m_window = window;
    m_selected = XCB_EVENT_MASK_NO_EVENT;
    select();
    m_since = since;
    m_title = window == XCB_NONE ? QString() : m_reader.title(window).value_or(QString());
    m_titledSince = since; // it came with its window, as far as anybody knows
    m_titleEvent.reset();
    m_hasTitleEvent = false;
    m_hasNewTitle = false;
}

void X11Desktop::noteTitle(const QString& title) {
    if (std::exchange(m_title, title) != title) {
        m_titledSince = m_titleEvent.value_or(Moment::clock::now());
        m_hasNewTitle = true;
        tellLater();
    }
}

void X11Desktop::tellLater() {
    // From the event loop: this may run inside a tick, which would drop it.
    if (!std::exchange(m_willTell, true)) {
        QMetaObject::invokeMethod(this, &X11Desktop::tell, Qt::QueuedConnection);
    }
}

void X11Desktop::tell() {
    settle();
    if (std::exchange(m_hasTitleEvent, false)) {
        if (const auto title = m_reader.title(m_window)) {
            noteTitle(*title);
        }
        takeEvents();
    }
    m_willTell = false;
    if (m_switchedAt || m_hasTitleEvent) {
        tellLater();
    }
    if (m_window == XCB_NONE) {
        m_nothingActive.start();
    } else {
        announce();
    }
    if (std::exchange(m_hasNewTitle, false)) {
        Q_EMIT titleChanged();
    }
}

void X11Desktop::announce() {
    m_nothingActive.stop();
    if (std::exchange(m_announced, m_window) != m_window) {
        Q_EMIT activeWindowChanged();
    }
}

} // namespace kestu
