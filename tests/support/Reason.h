// SPDX-License-Identifier: GPL-3.0-or-later
//
// Why the desktop refused something.
#pragma once

#include "platform/PlatformError.h"

#include <string>

namespace kestu::test {

/// What the PlatformError of `action` says; "done" when there was none.
std::string reasonOf(const auto& action) {
    try {
        action();
    } catch (const PlatformError& error) {
        return error.description().toStdString();
    }
    return "done";
}

} // namespace kestu::test
