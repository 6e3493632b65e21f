// SPDX-License-Identifier: GPL-3.0-or-later
//
// The address of the page that a browser shows, from the accessibility bus: of the document that is showing
// in the browser's active window. Owned by the Linux platform, together with the bus.
#pragma once

#include "platform/BrowserScripting.h"
#include "platform/linux/AccessibilityBus.h"

#include <QDeadlineTimer>
#include <QString>

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

namespace kestu {

class BrowserAddress final : public BrowserScripting {
public:
    /// `bus` must outlive this.
    explicit BrowserAddress(AccessibilityBus& bus);
    BrowserAddress(const BrowserAddress&) = delete;
    BrowserAddress& operator=(const BrowserAddress&) = delete;

    [[nodiscard]] std::vector<BrowserScript> furtherBrowsers() const override;

    /// Switches the accessibility bus on when first called. Blocks without running the event loop: some tens
    /// of milliseconds for a page that is there, up to a second for one that is not there yet, 0.3 seconds
    /// for a browser that hangs.
    [[nodiscard]] std::optional<QString> run(const AddressRequest& request) override;

private:
    /// What one look at a browser saw.
    struct Sight {
        bool isPrivate = false;
        QString address; // empty while it is not there
    };

    /// What is known of a browser that was asked before.
    struct Acquaintance {
        std::int64_t processId = 0;
        bool gaveAddress = false;
        bool waitedInVain = false;
    };

    void switchOn();
    [[nodiscard]] QString waitForAddress(const AddressRequest& request, bool mayWait,
                                         const QDeadlineTimer& deadline);
    [[nodiscard]] Sight lookAt(const AddressRequest& request, const QDeadlineTimer& deadline);
    [[nodiscard]] Acquaintance& acquaintance(std::int64_t processId);

    AccessibilityBus& m_bus;
    bool m_isSwitchedOn = false;
    std::deque<Acquaintance> m_acquaintances; // the oldest first, a handful
};

} // namespace kestu
