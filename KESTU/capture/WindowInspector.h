// SPDX-License-Identifier: GPL-3.0-or-later
//
// What is in front right now? Asked by the tracker every two seconds; owned by it. Every failing query
// degrades to a value: no sample, an empty title, an absent address.
#pragma once

#include "base/Time.h"
#include "storage/Records.h"

#include <QHash>
#include <QString>

#include <cstdint>
#include <optional>

namespace kestu {

class BrowserScripting;
class Workspace;

/// The window in front.
struct WindowInFront {
    QString bundleId;
    QString appName;
    QString title;
    std::int64_t processId = 0;
    // How long ago the window came to the front and its title came; absent when unknown.
    std::optional<Seconds> inFrontFor{};
    std::optional<Seconds> titledFor{};
    bool isOwnPanel = false;
    bool isIgnored = false; // a process of the system's that is never recorded
};

class WindowInspector final {
public:
    WindowInspector(Workspace& workspace, BrowserScripting& scripting);

    /// What is in front; absent for nothing. Answers within milliseconds, for no browser is asked.
    [[nodiscard]] std::optional<WindowInFront> front();

    /// The observation that this window makes, with the address that a browser shows in it.
    [[nodiscard]] Sample sample(const WindowInFront& front);

private:
    /// The last question to a browser and its answer; that there was no address is remembered too.
    struct UrlCache {
        QString bundleId;
        QString title;
        std::optional<QString> url;
    };

    [[nodiscard]] std::optional<QString> browserURL(const QString& bundleId, const QString& title,
                                                    std::int64_t processId);

    Workspace& m_workspace;
    BrowserScripting& m_scripting;
    QHash<QString, QString> m_browserScripts; // bundle id -> statement
    std::optional<UrlCache> m_urlCache;
};

} // namespace kestu
