// SPDX-License-Identifier: GPL-3.0-or-later
//
// A session of an X server. LinuxPlatform owns one.
#pragma once

#include "platform/linux/DesktopSession.h"
#include "platform/linux/X11Desktop.h"
#include "platform/linux/X11DisplayPower.h"
#include "platform/linux/X11Input.h"
#include "platform/linux/Xcb.h"

#include <memory>

namespace kestu {

class X11Session final : public DesktopSession {
public:
    /// Null when there is no X server; `why` then says so.
    [[nodiscard]] static std::unique_ptr<X11Session> open(IsHeld isHeld, QString& why);

    [[nodiscard]] Workspace& workspace() override { return m_desktop; }
    [[nodiscard]] UserInput& userInput() override { return m_input; }
    [[nodiscard]] DisplayPower& displayPower() override { return m_displayPower; }
    [[nodiscard]] QString source() const override;
    [[nodiscard]] Ability windows() override;
    [[nodiscard]] Ability titles() override {
        return {.kind = Ability::Kind::yes};
    } // of whatever is in front
    [[nodiscard]] Ability idle() override;

private:
    X11Session(std::unique_ptr<Xcb> forEvents, std::unique_ptr<Xcb> forQuestions, IsHeld isHeld);

    // Two connections, because the reply to a question takes events off the wire that nobody then sees.
    std::unique_ptr<Xcb> m_forEvents;
    std::unique_ptr<Xcb> m_forQuestions;
    X11Desktop m_desktop;
    X11Input m_input;
    X11DisplayPower m_displayPower;
};

} // namespace kestu
