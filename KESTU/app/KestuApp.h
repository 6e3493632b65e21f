// SPDX-License-Identifier: GPL-3.0-or-later
//
// The start and the stop: what runs while KESTU runs, brought up and taken down in order. main owns it.
#pragma once

#include "app/AppModel.h"

#include <memory>

namespace kestu {

class Platform;

class KestuApp final {
public:
    /// Takes over the opened store; `platform` outlives this.
    KestuApp(std::unique_ptr<Repository> repository, Platform& platform, AppModel::Environment environment);

    [[nodiscard]] AppModel& model() { return m_model; }

    /// Launching has finished: reads the settings and starts recording.
    void start();

    /// The application ends: closes the open activity at this moment.
    void stop();

private:
    AppModel m_model;
};

/// What the user is told when the store cannot be opened.
[[nodiscard]] QString storeFailureMessage(const DatabaseError& error);

} // namespace kestu
