// SPDX-License-Identifier: GPL-3.0-or-later
//
// A widget in which the user's words stand before they are stored. Who is about to take it away asks first.
#pragma once

namespace kestu {

class DraftHolder {
public:
    DraftHolder() = default;
    virtual ~DraftHolder() = default;
    DraftHolder(const DraftHolder&) = delete;
    DraftHolder& operator=(const DraftHolder&) = delete;

    /// Whether something is typed or changed that is stored nowhere.
    [[nodiscard]] virtual bool holdsDraft() const = 0;
};

} // namespace kestu
