// SPDX-License-Identifier: GPL-3.0-or-later
//
// Everything that the system must give, in one hand. main creates one; tests create a fake.
#pragma once

#include "platform/SystemWords.h"

namespace kestu {

class Accessibility;
class Appearance;
class BrowserScripting;
class DisplayAssertions;
class LoginItem;
class Opener;
class SettingsStore;
class SoftwareUpdates;
class SystemEvents;
class UserInput;
class Workspace;

class Platform {
public:
    virtual ~Platform() = default;

    [[nodiscard]] virtual Workspace& workspace() = 0;
    [[nodiscard]] virtual BrowserScripting& browserScripting() = 0;
    [[nodiscard]] virtual UserInput& userInput() = 0;
    [[nodiscard]] virtual DisplayAssertions& displayAssertions() = 0;
    [[nodiscard]] virtual SystemEvents& systemEvents() = 0;
    [[nodiscard]] virtual SettingsStore& settingsStore() = 0;
    [[nodiscard]] virtual LoginItem& loginItem() = 0;
    [[nodiscard]] virtual Opener& opener() = 0;
    [[nodiscard]] virtual Accessibility& accessibility() = 0;
    [[nodiscard]] virtual SoftwareUpdates& softwareUpdates() = 0;
    [[nodiscard]] virtual Appearance& appearance() = 0;

    /// What the screens say of this system while it can tell this much, with the records in that folder.
    [[nodiscard]] virtual SystemWords words(const Abilities& abilities, const QString& dataFolder) const = 0;
};

} // namespace kestu
