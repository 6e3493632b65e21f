// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/BrowserAddress.h"

#include "platform/linux/PrivateWindows.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace kestu {

namespace {

using namespace std::chrono_literals;

constexpr auto wholeWait = 1s;
constexpr auto betweenLooks = 50ms;
constexpr std::size_t mostAcquaintances = 16;

using Window = AccessibleWindow;

QList<Window> windowsOf(AccessibilityBus& bus, const Accessible& program, const QDeadlineTimer& deadline) {
    const QList<Accessible> objects =
        accessible::readAccessibles(bus.ask(accessible::childrenQuestion(program), deadline));
    QList<QDBusMessage> questions;
    for (const Accessible& object : objects) {
        questions << accessible::nameQuestion(object) << accessible::statesQuestion(object);
    }
    const QList<QDBusMessage> replies = bus.askAll(questions, deadline);
    QList<Window> windows;
    for (qsizetype i = 0; i < objects.size(); ++i) {
        windows << Window{.object = objects.at(i),
                          .name = accessible::readName(replies.at(2 * i)),
                          .isActive = accessible::readIsActive(replies.at(2 * i + 1))};
    }
    return windows;
}

/// The window in front, whose title is known. A browser marks its active window some time after the switch,
/// so one that has the title goes before one that has the mark: else the page of the window left behind
/// would be recorded under the title of the new one. Several with the title: the mark decides.
std::optional<Window> frontWindow(const QList<Window>& windows, const QString& title) {
    QList<Window> candidates;
    std::copy_if(windows.begin(), windows.end(), std::back_inserter(candidates),
                 [&title](const Window& window) { return !title.isEmpty() && window.name.contains(title); });
    if (candidates.isEmpty()) {
        candidates = windows;
    }
    const auto active = std::find_if(candidates.begin(), candidates.end(),
                                     [](const Window& window) { return window.isActive; });
    if (active != candidates.end()) {
        return *active;
    }
    return candidates.size() == 1 ? std::optional(candidates.first()) : std::nullopt;
}

/// The one of several that is in front, when nothing but the title is known of it; absent when it may be any.
std::optional<Window> onlyWindow(const QList<Window>& windows) {
    if (windows.size() == 1) {
        return windows.first();
    }
    QList<Window> active;
    std::copy_if(windows.begin(), windows.end(), std::back_inserter(active),
                 [](const Window& window) { return window.isActive; });
    return active.size() == 1 ? std::optional(active.first()) : std::nullopt;
}

/// Empty while the document has no address of its own: "about:blank" is what every page is until it loads.
QString addressIn(const QMap<QString, QString>& attributes) {
    static const QStringList spellings{QStringLiteral("DocURL"), QStringLiteral("URI")}; // Firefox, Chromium
    for (const QString& spelling : spellings) {
        QString address = attributes.value(spelling);
        if (!address.isEmpty() && address != u"about:blank") {
            return address;
        }
    }
    return {};
}

} // namespace

BrowserAddress::BrowserAddress(AccessibilityBus& bus, ApplicationIds::EntrySource entries,
                               const QString& procRoot)
    : m_bus(bus)
    , m_ids(std::move(entries), procRoot) {}

std::vector<BrowserScript> BrowserAddress::furtherBrowsers() const {
    return {{.bundleId = QStringLiteral("org.mozilla.firefox"),
             .statement = QStringLiteral("return URL of front document")},
            {.bundleId = QStringLiteral("org.chromium.Chromium"),
             .statement = QStringLiteral("return URL of active tab of front window")}};
}

std::optional<QString> BrowserAddress::run(const AddressRequest& request) {
    // Asking ourselves could only time out: this thread is the one that would answer.
    if (request.processId == QCoreApplication::applicationPid()) {
        return std::nullopt;
    }
    const QDeadlineTimer deadline(wholeWait);
    switchOn();
    if (isPrivateWindow(request.title)) {
        return std::nullopt;
    }
    Acquaintance& browser = acquaintance(request);
    // A browser that is not on the bus (a Chromium without its start flag) or that was only just told to join
    // makes the main thread wait once, not with every change of its title.
    const bool mayWait = browser.gaveAddress || !browser.waitedInVain;
    const QString address = waitForAddress(request, mayWait, deadline);
    browser.gaveAddress |= !address.isEmpty();
    browser.waitedInVain |= deadline.hasExpired();
    return address.isEmpty() ? std::nullopt : std::optional(address);
}

void BrowserAddress::switchOn() {
    // Once: who switches it off again while we run, wants it off.
    if (!m_isSwitchedOn) {
        m_isSwitchedOn = m_bus.isEnabled() || m_bus.enable();
    }
}

QString BrowserAddress::waitForAddress(const AddressRequest& request, bool mayWait,
                                       const QDeadlineTimer& deadline) {
    try {
        Sight sight = lookAt(request, deadline);
        while (mayWait && !sight.isPrivate && sight.address.isEmpty() && !deadline.hasExpired()) {
            std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(
                betweenLooks, std::chrono::nanoseconds(deadline.remainingTimeNSecs())));
            sight = lookAt(request, deadline);
        }
        return sight.address;
    } catch (const NoAnswer&) {
        return {}; // hung, no bus, or the time is over: no address is an ordinary answer
    }
}

BrowserAddress::Sight BrowserAddress::lookAt(const AddressRequest& request, const QDeadlineTimer& deadline) {
    if (request.processId <= 0) {
        const QList<Window> windows = windowsTitled(request, deadline);
        // One of that title is private, and it may be the one.
        if (std::any_of(windows.begin(), windows.end(),
                        [](const Window& window) { return isPrivateWindow(window.name); })) {
            return {.isPrivate = true, .address = {}};
        }
        const auto window = onlyWindow(windows);
        return window ? lookIn(*window, deadline) : Sight{};
    }
    const auto program = m_bus.program(request.processId, deadline);
    if (!program) {
        return {};
    }
    const auto window = frontWindow(windowsOf(m_bus, *program, deadline), request.title);
    return window ? lookIn(*window, deadline) : Sight{};
}

BrowserAddress::Sight BrowserAddress::lookIn(const Window& window, const QDeadlineTimer& deadline) {
    if (isPrivateWindow(window.name)) {
        return {.isPrivate = true, .address = {}};
    }
    const QList<Accessible> pages =
        accessible::readAccessibles(m_bus.ask(accessible::shownPageQuestion(window.object), deadline));
    if (pages.isEmpty()) {
        return {};
    }
    const QDBusMessage attributes =
        m_bus.ask(accessible::documentAttributesQuestion(pages.first()), deadline);
    return {.isPrivate = false, .address = addressIn(accessible::readAttributes(attributes))};
}

/// The windows of all programs that are this browser and bear that title: exactly, or, where none does, with
/// the browser's own words around it.
QList<AccessibleWindow> BrowserAddress::windowsTitled(const AddressRequest& request,
                                                      const QDeadlineTimer& deadline) {
    QList<Window> exact;
    QList<Window> around;
    if (request.title.isEmpty()) {
        return {};
    }
    for (const auto& [root, processId] : m_bus.programs(deadline)) {
        if (processId <= 0 || processId == QCoreApplication::applicationPid() ||
            m_ids.of({.processId = processId}).bundleId != request.bundleId) {
            continue;
        }
        for (const Window& window : windowsOf(m_bus, root, deadline)) {
            if (window.name == request.title) {
                exact << window;
            } else if (window.name.contains(request.title)) {
                around << window;
            }
        }
    }
    return exact.isEmpty() ? around : exact;
}

BrowserAddress::Acquaintance& BrowserAddress::acquaintance(const AddressRequest& request) {
    const auto known =
        std::find_if(m_acquaintances.begin(), m_acquaintances.end(), [&request](const Acquaintance& browser) {
            return browser.processId == request.processId &&
                   (request.processId > 0 || browser.bundleId == request.bundleId);
        });
    if (known != m_acquaintances.end()) {
        return *known;
    }
    if (m_acquaintances.size() == mostAcquaintances) {
        m_acquaintances.pop_front();
    }
    return m_acquaintances.emplace_back(
        Acquaintance{.processId = request.processId, .bundleId = request.bundleId});
}

} // namespace kestu
