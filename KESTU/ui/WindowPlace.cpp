// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/WindowPlace.h"

#include "app/AppModel.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QMap>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>

namespace kestu {
namespace {

using namespace std::chrono_literals;

/// Of a window that was never shown: no window manager of ours has a wider one.
constexpr QMargins widestFrame{8, 36, 8, 8};

/// A screen that changes tells so several times, and window managers move windows themselves.
constexpr auto untilSettled = 500ms;

struct Place {
    QRect content; // without its frame, while it is not maximised
    QMargins frame;
    bool isMaximized = false;
};

const QString maximizedKey = QStringLiteral("maximized");
const std::array<QString, 8> keys{QStringLiteral("x"),          QStringLiteral("y"),
                                  QStringLiteral("width"),      QStringLiteral("height"),
                                  QStringLiteral("frameLeft"),  QStringLiteral("frameTop"),
                                  QStringLiteral("frameRight"), QStringLiteral("frameBottom")};

QMap<QString, QString> toText(const Place& place) {
    const std::array values{place.content.x(),      place.content.y(),   place.content.width(),
                            place.content.height(), place.frame.left(),  place.frame.top(),
                            place.frame.right(),    place.frame.bottom()};
    QMap<QString, QString> text{
        {maximizedKey, place.isMaximized ? QStringLiteral("yes") : QStringLiteral("no")}};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        text.insert(keys[i], QString::number(values[i]));
    }
    return text;
}

/// None of a text in which anything is missing or absurd: people edit it.
std::optional<Place> fromText(const QMap<QString, QString>& text) {
    constexpr int farthest = 100'000;
    std::array<int, keys.size()> values{};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        bool isNumber = false;
        values[i] = text.value(keys[i]).toInt(&isNumber);
        if (!isNumber || values[i] < -farthest || values[i] > farthest) {
            return std::nullopt;
        }
    }
    const auto [x, y, width, height, left, top, right, bottom] = values;
    if (width <= 0 || height <= 0 || std::min({left, top, right, bottom}) < 0) {
        return std::nullopt;
    }
    return Place{.content = QRect(x, y, width, height),
                 .frame = QMargins(left, top, right, bottom),
                 .isMaximized = text.value(maximizedKey) == QStringLiteral("yes")};
}

/// As large as it was, on any screen that may show it.
QSize sizeAnywhere(const QSize& wanted) {
    QSize largest;
    for (const QScreen* screen : QGuiApplication::screens()) {
        largest = largest.expandedTo(screen->availableSize());
    }
    return largest.isEmpty() ? wanted : wanted.boundedTo(largest);
}

QMargins frameOf(const QWidget& window) {
    const QRect outer = window.frameGeometry();
    const QRect inner = window.geometry();
    return {inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
            outer.bottom() - inner.bottom()};
}

/// That with the mouse first.
QList<QRect> roomOfScreens() {
    QList<QRect> rooms;
    const QScreen* mouse = QGuiApplication::screenAt(QCursor::pos());
    for (const QScreen* screen : QGuiApplication::screens()) {
        screen == mouse ? rooms.prepend(screen->availableGeometry())
                        : rooms.append(screen->availableGeometry());
    }
    return rooms;
}

} // namespace

bool mayPlaceWindows() {
    return !QGuiApplication::platformName().startsWith(u"wayland");
}

QRect fitted(const QRect& wanted, const QMargins& frame, const QList<QRect>& screens) {
    if (screens.isEmpty()) {
        return wanted;
    }
    const auto covered = [&wanted](const QRect& screen) {
        const QSize common = screen.intersected(wanted).size();
        return std::max(common.width(), 0) * std::max(common.height(), 0);
    };
    const QRect room =
        std::max_element(screens.begin(), screens.end(), [&](const QRect& left, const QRect& right) {
            return covered(left) < covered(right);
        })->marginsRemoved(frame);
    const QSize size = wanted.size().boundedTo(room.size());
    return {QPoint(std::clamp(wanted.x(), room.left(), room.right() + 1 - size.width()),
                   std::clamp(wanted.y(), room.top(), room.bottom() + 1 - size.height())),
            size};
}

WindowPlace::WindowPlace(QWidget& window, AppModel& model)
    : QObject(&window)
    , m_window(window)
    , m_model(model) {
    restore();
    m_window.installEventFilter(this);
    m_fitTimer.setSingleShot(true);
    m_fitTimer.setInterval(untilSettled);
    connect(&m_fitTimer, &QTimer::timeout, this, &WindowPlace::fit);
    connect(qGuiApp, &QGuiApplication::screenRemoved, &m_fitTimer, qOverload<>(&QTimer::start));
    connect(qGuiApp, &QGuiApplication::screenAdded, this, &WindowPlace::follow);
    for (QScreen* screen : QGuiApplication::screens()) {
        follow(screen);
    }
}

void WindowPlace::follow(QScreen* screen) {
    connect(screen, &QScreen::availableGeometryChanged, &m_fitTimer, qOverload<>(&QTimer::start));
}

void WindowPlace::restore() {
    const auto place = fromText(m_model.windowPlace());
    if (!place) { // where to, the window manager decides
        m_window.resize(fitted(QRect({}, m_window.size()), widestFrame, roomOfScreens().first(1)).size());
        return;
    }
    if (mayPlaceWindows()) {
        m_window.setGeometry(fitted(place->content, place->frame, roomOfScreens()));
    } else {
        m_window.resize(sizeAnywhere(place->content.size()));
    }
    if (place->isMaximized) {
        m_window.setWindowState(Qt::WindowMaximized);
    }
}

/// After the screens have changed.
void WindowPlace::fit() {
    if (mayPlaceWindows() && m_window.isVisible() && m_window.windowState() == Qt::WindowNoState) {
        m_window.setGeometry(fitted(m_window.geometry(), frameOf(m_window), roomOfScreens()));
    }
}

bool WindowPlace::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide && !event->spontaneous()) {
        remember();
    }
    return QObject::eventFilter(watched, event);
}

void WindowPlace::remember() {
    const auto shaped = Qt::WindowMaximized | Qt::WindowFullScreen;
    Place place{.content = m_window.windowState() & shaped ? m_window.normalGeometry() : m_window.geometry(),
                .frame = frameOf(m_window),
                .isMaximized = m_window.isMaximized()};
    if (!mayPlaceWindows()) {
        // The user's next session may have places again.
        const Place former = fromText(m_model.windowPlace()).value_or(Place{});
        place.content.moveTopLeft(former.content.topLeft());
        place.frame = former.frame;
    }
    m_model.setWindowPlace(toText(place));
}

} // namespace kestu
