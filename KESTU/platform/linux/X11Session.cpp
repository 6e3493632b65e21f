// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/X11Session.h"

#include <utility>

namespace kestu {

std::unique_ptr<X11Session> X11Session::open(IsHeld isHeld, QString& why) {
    auto forEvents = Xcb::connect(why);
    auto forQuestions = forEvents ? Xcb::connect(why) : nullptr;
    if (!forQuestions) {
        return nullptr;
    }
    return std::unique_ptr<X11Session>(
        new X11Session(std::move(forEvents), std::move(forQuestions), std::move(isHeld)));
}

X11Session::X11Session(std::unique_ptr<Xcb> forEvents, std::unique_ptr<Xcb> forQuestions, IsHeld isHeld)
    : m_forEvents(std::move(forEvents))
    , m_forQuestions(std::move(forQuestions))
    , m_desktop(*m_forEvents, std::move(isHeld))
    , m_input(*m_forQuestions)
    , m_displayPower(*m_forQuestions) {
    connect(&m_desktop, &X11Desktop::activeWindowChanged, this, &DesktopSession::activated);
    connect(&m_desktop, &X11Desktop::titleChanged, this, &DesktopSession::titleChanged);
}

QString X11Session::source() const {
    return QStringLiteral("X11");
}

Ability X11Session::windows() {
    const QString why = m_desktop.whyUnseen();
    return {.kind = why.isEmpty() ? Ability::Kind::yes : Ability::Kind::no, .note = why};
}

Ability X11Session::idle() {
    return {.kind = m_forQuestions->isBroken() ? Ability::Kind::no : Ability::Kind::yes};
}

} // namespace kestu
