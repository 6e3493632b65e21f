// SPDX-License-Identifier: GPL-3.0-or-later
//
// What is in front right now? Asked by the tracker every two seconds; owned by it. Every failing query
// degrades to a value: no sample, an empty title, an absent address.
#pragma once

#include "storage/Records.h"

#include <QHash>
#include <QString>

#include <cstdint>
#include <optional>

namespace kestu {

class BrowserScripting;
class Workspace;

class WindowInspector final {
public:
    WindowInspector(Workspace& workspace, BrowserScripting& scripting);

    /// The current observation; absent when nothing is to be recorded.
    [[nodiscard]] std::optional<Sample> sample();

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
