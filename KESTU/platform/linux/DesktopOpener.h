// SPDX-License-Identifier: GPL-3.0-or-later
//
// Opening folders and web pages with the programs that the desktop has set for them.
#pragma once

#include "platform/Opener.h"

namespace kestu {

class DesktopOpener final : public Opener {
public:
    /// Existing folders only: a file would be run or shown by whatever claims its kind.
    void openFolder(const QString& path) override;

    /// Addresses of the web (http, https) only.
    void openAddress(const QUrl& address) override;

    /// Existing files only.
    void openPage(const QString& path) override;
};

} // namespace kestu
