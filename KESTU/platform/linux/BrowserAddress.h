// SPDX-License-Identifier: GPL-3.0-or-later
//
// The address of the page that a browser shows, from the accessibility bus: of the document that is showing
// in the browser's active window. Where the session does not tell whose process the window in front is, it is
// the window of that title among the windows of that browser. Owned by the Linux platform, together with the
// bus.
#pragma once

#include "platform/BrowserScripting.h"
#include "platform/linux/AccessibilityBus.h"
#include "platform/linux/ApplicationResolver.h"

#include <QDeadlineTimer>
#include <QString>

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

namespace kestu {

struct AccessibleWindow {
    Accessible object;
    QString name;
    bool isActive = false;
};

class BrowserAddress final : public BrowserScripting {
public:
    /// `bus` must outlive this. `entries` and `procRoot` tell which programs are which browser.
    explicit BrowserAddress(AccessibilityBus& bus,
                            ApplicationIds::EntrySource entries = installedDesktopEntries,
                            const QString& procRoot = QStringLiteral("/proc"));
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
        std::int64_t processId = 0; // 0 when unknown; it is known by its id then
        QString bundleId;
        bool gaveAddress = false;
        bool waitedInVain = false;
    };

    void switchOn();
    [[nodiscard]] QString waitForAddress(const AddressRequest& request, bool mayWait,
                                         const QDeadlineTimer& deadline);
    [[nodiscard]] Sight lookAt(const AddressRequest& request, const QDeadlineTimer& deadline);
    [[nodiscard]] Sight lookIn(const AccessibleWindow& window, const QDeadlineTimer& deadline);
    [[nodiscard]] QList<AccessibleWindow> windowsTitled(const AddressRequest& request,
                                                        const QDeadlineTimer& deadline);
    [[nodiscard]] Acquaintance& acquaintance(const AddressRequest& request);

    AccessibilityBus& m_bus;
    ApplicationIds m_ids;
    bool m_isSwitchedOn = false;
    std::deque<Acquaintance> m_acquaintances; // the oldest first, a handful
};

} // namespace kestu
