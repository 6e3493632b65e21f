// SPDX-License-Identifier: GPL-3.0-or-later
//
// Several who may know whether the displays are switched off, as one.
#pragma once

#include "platform/linux/DisplayPower.h"

#include <memory>
#include <vector>

namespace kestu {

class DisplayPowers final : public DisplayPower {
    Q_OBJECT

public:
    /// All of them tell of changes.
    explicit DisplayPowers(std::vector<std::unique_ptr<DisplayPower>> powers);

    /// What the first of them says that knows.
    [[nodiscard]] State state() override;
    [[nodiscard]] bool tellsChanges() const override { return true; }

private:
    std::vector<std::unique_ptr<DisplayPower>> m_powers;
};

} // namespace kestu
