// SPDX-License-Identifier: GPL-3.0-or-later
//
// Who keeps the display from sleeping.
#pragma once

#include "platform/Workspace.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace kestu {

/// The names under which assertions are listed. The first two keep the display on.
namespace assertionType {
inline constexpr QStringView preventUserIdleDisplaySleep = u"PreventUserIdleDisplaySleep";
inline constexpr QStringView noDisplaySleepAssertion = u"NoDisplaySleepAssertion";
inline constexpr QStringView preventUserIdleSystemSleep = u"PreventUserIdleSystemSleep";
} // namespace assertionType

class DisplayAssertions {
public:
    virtual ~DisplayAssertions() = default;

    /// The types of the assertions that this application holds, empty for none; absent when the system
    /// cannot tell. Answers within 0.3 seconds.
    [[nodiscard]] virtual std::optional<QStringList> heldBy(const FrontmostApplication& application) = 0;
};

} // namespace kestu
