// SPDX-License-Identifier: GPL-3.0-or-later
//
// Asking a browser for the address of the page that it shows.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace kestu {

/// A browser whose address can be read, and the statement that asks for it.
struct BrowserScript {
    QString bundleId;
    QString statement;
};

struct AddressRequest {
    QString source; // the whole script, for systems that run scripts
    QString bundleId;
    QString title; // of the focused window
    std::int64_t processId = 0;
};

class BrowserScripting {
public:
    virtual ~BrowserScripting() = default;

    /// Browsers of this system beyond those that capture knows itself.
    [[nodiscard]] virtual std::vector<BrowserScript> furtherBrowsers() const = 0;

    /// The address, within about one second; absent on any failure and for a private window.
    [[nodiscard]] virtual std::optional<QString> run(const AddressRequest& request) = 0;
};

} // namespace kestu
