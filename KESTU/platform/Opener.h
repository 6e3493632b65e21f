// SPDX-License-Identifier: GPL-3.0-or-later
//
// Opening folders and web pages with the user's own programs.
#pragma once

#include <QString>
#include <QUrl>

namespace kestu {

class Opener {
public:
    virtual ~Opener() = default;

    /// @throws PlatformError when no program could be started for it.
    virtual void openFolder(const QString& path) = 0;
    virtual void openAddress(const QUrl& address) = 0;

    /// A page on this machine, in the web browser.
    virtual void openPage(const QString& path) = 0;
};

} // namespace kestu
