// SPDX-License-Identifier: GPL-3.0-or-later
//
// Starting at login by an entry in the user's autostart folder, which every desktop's session reads. The
// file is the whole state: whoever deletes it or switches it off in the desktop's own settings is obeyed.
#pragma once

#include "platform/LoginItem.h"

#include <QString>

namespace kestu {

class AutostartEntry final : public LoginItem {
public:
    /// `folder` holds the entry; `executable` is the absolute path of the program to start.
    AutostartEntry(const QString& folder, QString executable);

    [[nodiscard]] bool isEnabled() const override;
    void enable() override;
    void disable() override;

private:
    QString m_path;
    QString m_executable;
};

/// The autostart folder in the user's configuration folder.
[[nodiscard]] QString userAutostartFolder();

} // namespace kestu
